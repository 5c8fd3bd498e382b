#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

using Configuration = ComponentTest;

KOR::KorValue holding(std::int32_t value) {
    KOR::KorValue holder{};
    holder.type = KOR::KorValue::int32;
    holder.asInt32 = value;
    return holder;
}

TEST_F(Configuration, DefaultsHoldWhenNothingIsSet) {
    EXPECT_EQ(probe().minScenceDuration(), 2);
    EXPECT_EQ(probe().scenceDetectionThreshold(), 3.0);
    EXPECT_EQ(probe().minNeedAnalysisDuartion(), 2);
    EXPECT_EQ(probe().photoNeedAnalysis(), 0);
}

TEST_F(Configuration, KeysAreTheirOwnNames) {
    EXPECT_STREQ(KOR::analysisParamKey::minScenceDuration, "minScenceDuration");
    EXPECT_STREQ(KOR::analysisParamKey::scenceDetectionThreshold, "scenceDetectionThreshold");
    EXPECT_STREQ(KOR::analysisParamKey::minNeedAnalysisDuartion, "minNeedAnalysisDuartion");
    EXPECT_STREQ(KOR::analysisParamKey::photoNeedAnalysis, "photoNeedAnalysis");
}

TEST_F(Configuration, EachKeySetsItsParameter) {
    setParam("minScenceDuration", 5);
    setThreshold(0.1);
    setParam("minNeedAnalysisDuartion", 7);
    setParam("photoNeedAnalysis", 1);
    EXPECT_EQ(probe().minScenceDuration(), 5);
    EXPECT_EQ(probe().scenceDetectionThreshold(), 0.1);
    EXPECT_EQ(probe().minNeedAnalysisDuartion(), 7);
    EXPECT_EQ(probe().photoNeedAnalysis(), 1);
}

TEST_F(Configuration, KeysAreComparedByContent) {
    const std::string key = "minScence" + std::string("Duration");
    setParam(key.c_str(), 9);
    EXPECT_EQ(probe().minScenceDuration(), 9);
}

TEST_F(Configuration, IntegersAreWidenedWithTheirSign) {
    setParam("minScenceDuration", -1);
    setParam("minNeedAnalysisDuartion", std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(probe().minScenceDuration(), -1);
    EXPECT_EQ(probe().minNeedAnalysisDuartion(), std::int64_t{-2147483648});
}

TEST_F(Configuration, NothingIsClamped) {
    setParam("minScenceDuration", 0);
    setThreshold(-1.5);
    setParam("photoNeedAnalysis", -3);
    EXPECT_EQ(probe().minScenceDuration(), 0);
    EXPECT_EQ(probe().scenceDetectionThreshold(), -1.5);
    EXPECT_EQ(probe().photoNeedAnalysis(), -3);
}

TEST_F(Configuration, UnknownKeysChangeNothing) {
    const KOR::KorValue value = holding(11);
    for (const char* const key :
         {"minSceneDuration", "minscenceduration", "MinScenceDuration", "minScenceDuration ",
          "minScenceDuratio", "sceneDetectionThreshold", "minNeedAnalysisDuration",
          "minNeedAnalysisduartion", "PhotoNeedAnalysis", ""}) {
        EXPECT_EQ(component().setAnalysisParam(key, &value), KOR::statusFailed) << key;
    }
    EXPECT_EQ(probe().minScenceDuration(), 2);
    EXPECT_EQ(probe().scenceDetectionThreshold(), 3.0);
    EXPECT_EQ(probe().minNeedAnalysisDuartion(), 2);
    EXPECT_EQ(probe().photoNeedAnalysis(), 0);
}

TEST_F(Configuration, NullKeyOrValueIsRefused) {
    const KOR::KorValue value = holding(11);
    EXPECT_EQ(component().setAnalysisParam(nullptr, &value), KOR::statusFailed);
    EXPECT_EQ(component().setAnalysisParam("minScenceDuration", nullptr), KOR::statusFailed);
    EXPECT_EQ(probe().minScenceDuration(), 2);
}

TEST_F(Configuration, TypeOfTheValueIsIgnored) {
    KOR::KorValue value = holding(11);
    value.type = KOR::KorValue::text;
    component().setAnalysisParam("minScenceDuration", &value);
    EXPECT_EQ(probe().minScenceDuration(), 11);
}

TEST_F(Configuration, ValueMayBeARecordOfSixteenBytes) {
    std::vector<unsigned char> record(16, 0);
    const double threshold = 4.5;
    std::memcpy(record.data() + 8, &threshold, sizeof threshold);
    const auto* const value = reinterpret_cast<const KOR::KorValue*>(record.data());
    EXPECT_EQ(component().setAnalysisParam("scenceDetectionThreshold", value), KOR::statusOk);
    EXPECT_EQ(probe().scenceDetectionThreshold(), 4.5);
}

TEST_F(Configuration, IntegerIsReadFromFourBytesOnly) {
    KOR::KorValue value{};
    value.asInt64 = (std::int64_t{1} << 32) + 6;
    component().setAnalysisParam("minScenceDuration", &value);
    EXPECT_EQ(probe().minScenceDuration(), 6);
}

}  // namespace
}  // namespace fake_host
