#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/text.h"
#include "tests/component/RestoreTest.h"
#include "tests/support/storedText.h"

namespace fake_host {
namespace {

std::string quoted(std::string_view text) {
    std::string quotes = "\"\"";
    return quotes.insert(1, text);
}

/// Which texts restoring takes, and what it reads from them.
using ResultRestoreText = RestoreTest;

const std::string invalid = "cache result invalidate";

std::string repeated(const std::string& text, std::size_t count) {
    std::string all;
    all.reserve(text.size() * count);
    for (std::size_t i = 0; i < count; ++i)
        all += text;
    return all;
}

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

// The text as a whole.

TEST_F(ResultRestoreText, WithoutAnObjectIsInvalid) {
    for (const char* const text : {"", " ", " \t\r\n", "null", "[]", "[1]", "\"version\"", "1",
                                   "true", "{", "}", "nonsense", "{\"version\"}", "'{}'"})
        expectDeleted(text, invalid);
}

TEST_F(ResultRestoreText, MayStandBetweenWhitespace) {
    EXPECT_EQ(restored(" \t\r\n" + ResultText{}.text() + "\n\r\t ").size(), 1U);
}

TEST_F(ResultRestoreText, BehindTheRootIsInvalid) {
    for (const char* const tail : {"x", "}", ",", "{}", "\n{}", "0", "/**/", "\v", "\f"})
        expectDeleted(ResultText{}.text() + tail, invalid);
}

TEST_F(ResultRestoreText, WithANulByteIsInvalid) {
    const std::string nul(1, '\0');
    const std::string text = ResultText{}.text();
    for (const std::string& broken :
         {nul, nul + text, text + nul, text + nul + "garbage", text + "\n" + nul + nul,
          "{" + nul + text.substr(1), ResultText{.version = "\"1.0.0.1" + nul + "\""}.text()})
        expectDeleted(broken, invalid);
}

TEST_F(ResultRestoreText, MayHaveTheLineEndsOfOtherPlatforms) {
    ASSERT_TRUE(save({{0.5, 1, 3, 2, nullptr, {}}, {0.25, 3, 5, 4, nullptr, {}}}));
    const std::string text = contentOf(file());
    EXPECT_EQ(restored(replaced(text, lineEnd, "\n")).size(), 2U);
    EXPECT_EQ(restored(replaced(text, lineEnd, "\r\n")).size(), 2U);
}

TEST_F(ResultRestoreText, WithAByteOrderMarkIsInvalid) {
    expectDeleted("\xEF\xBB\xBF" + ResultText{}.text(), invalid);
}

TEST_F(ResultRestoreText, IsPlainJson) {
    const std::string text = ResultText{}.text();
    expectDeleted("/* results */" + text, invalid);
    expectDeleted(text + "// results", invalid);
    expectDeleted(replaced(text, "}]}", "}],}"), invalid);
    expectDeleted(replaced(text, "}]", "},]"), invalid);
    expectDeleted(replaced(text, "\"", "'"), invalid);
    expectDeleted(replaced(text, "0.5", "NaN"), invalid);
    expectDeleted(replaced(text, "0.5", "Infinity"), invalid);
    expectDeleted(replaced(text, "0.5", "+0.5"), invalid);
    expectDeleted(replaced(text, "0.5", ".5"), invalid);
    expectDeleted(replaced(text, "0.5", "1e999"), invalid);
    expectDeleted(replaced(text, "0.5", "-1e999"), invalid);
    expectDeleted(replaced(text, "0.5", "1.7976931348623159e308"), invalid);
    expectDeleted(replaced(text, "0.5", "1" + std::string(400, '0')), invalid);
}

TEST_F(ResultRestoreText, OfOpeningBracketsIsInvalid) {
    for (const char* const open : {"[", "{\"a\":", "[{\"a\":"})
        expectDeleted(repeated(open, 1000000), invalid);
    expectDeleted(repeated("[", 1000000) + repeated("]", 1000000), invalid);
    const std::string valid = ResultText{}.text();
    expectDeleted(valid.substr(0, valid.size() - 1) + ", \"more\": " + repeated("[", 1000000),
                  invalid);
}

TEST_F(ResultRestoreText, MayNestDeeplyInWhatIsNotRead) {
    const std::string deep = repeated("[", 1000000) + repeated("]", 1000000);
    const std::string valid = ResultText{}.text();
    EXPECT_EQ(restored(valid.substr(0, valid.size() - 1) + ", \"more\": " + deep + "}").size(), 1U);
}

TEST_F(ResultRestoreText, MayHoldMembersThatNobodyKnows) {
    EXPECT_EQ(restored(R"({"more": null, "version": "1.0.0.1", "analysisTypes": "4,3", "": {},
                           "minScenceDuration": 2, "scenceDetectionThreshold": 3.0,
                           "result": [{"note": [1, 2], "begin": 7, "Begin": "x"}], "Result": 1})")
                  .at(0)
                  .begin,
              7);
}

TEST_F(ResultRestoreText, MayHoldItsMembersInAnyOrder) {
    EXPECT_EQ(restored(R"({"result": [{}], "scenceDetectionThreshold": 3, "minScenceDuration": 2,
                           "analysisTypes": "4,3", "version": "1.0.0.1"})")
                  .size(),
              1U);
}

TEST_F(ResultRestoreText, CountsTheFirstOfTwoEqualMembers) {
    const std::string valid = ResultText{.result = R"([{"begin": 7, "begin": "8"}])"}.text();
    for (const char* const again : {R"("version": "2")", R"("version": 1)", R"("result": null)",
                                    R"("result": [{}, {}])", R"("analysisTypes": "3,4")"}) {
        const std::string text = valid.substr(0, valid.size() - 1) + ", " + again + "}";
        const Records records = restored(text);
        ASSERT_EQ(records.size(), 1U);
        EXPECT_EQ(records[0].begin, 7);
    }
    expectDeleted(R"({"version": "2", )" + valid.substr(1), "version changed");
}

// The members of the root.

TEST_F(ResultRestoreText, NeedsEveryMemberOfItsHead) {
    expectDeleted(ResultText{.version = ""}.text(), "No version");
    expectDeleted(ResultText{.analysisTypes = ""}.text(), "No analysisTypes");
    expectDeleted(ResultText{.minScenceDuration = ""}.text(), "No minScenceDuration");
    expectDeleted(ResultText{.scenceDetectionThreshold = ""}.text(), "No scenceDetectionThreshold");
    expectDeleted("{}", "No version");
    expectDeleted(R"({"Version": "1.0.0.1"})", "No version");
}

TEST_F(ResultRestoreText, NeedsItsVersionToTheLetter) {
    for (const char* const other :
         {"1.0.0.2", "1.0.0.1 ", " 1.0.0.1", "1.0.0", "1.0.0.10", "", "1.0.0.1\\u0000",
          "1.0.0.1\\u0000more", "\\u00001.0.0.1", "1.0.0.1\\n", "1.0.0.l"})
        expectDeleted(ResultText{.version = quoted(other)}.text(), "version changed");
    EXPECT_EQ(restored(ResultText{.version = R"("1\u002e0.0.1")"}.text()).size(), 1U);
}

TEST_F(ResultRestoreText, NeedsItsKindsToTheLetter) {
    for (const char* const other : {"3,4", "4", "", "4,3,", "4, 3", "4,3 ", "4,03", "4,3,1", "+4,3",
                                    "4,3\\u0000", "4,3\\u0000,1", "4;3"})
        expectDeleted(ResultText{.analysisTypes = quoted(other)}.text(), "analysisTypes changed");
}

TEST_F(ResultRestoreText, KnowsEveryListOfKinds) {
    struct Case {
        std::vector<std::int32_t> kinds;
        const char* text;
    };
    for (const Case& one :
         {Case{{}, R"("")"}, Case{{-12}, R"("-12")"}, Case{{3, 4}, R"("3,4")"},
          Case{{6, 6, 6}, R"("6,6,6")"},
          Case{{std::numeric_limits<std::int32_t>::min(), 0}, R"("-2147483648,0")"}}) {
        probe().setAnalysisKindsOnly(one.kinds);
        EXPECT_EQ(restored(ResultText{.analysisTypes = one.text}.text()).size(), 1U);
        expectDeleted(ResultText{.analysisTypes = R"("4,3")"}.text(), "analysisTypes changed");
    }
}

TEST_F(ResultRestoreText, NeedsTheSameMinimumAsAnInteger) {
    for (const char* const other :
         {"3", "-2", "1", "0", "2.0", "2.5", "2e0", "20e-1", "1e18", "1e300", "4294967298",
          "9223372036854775807", "9223372036854775808", "18446744073709551615",
          "18446744073709551616", "-9223372036854775809"})
        expectDeleted(ResultText{.minScenceDuration = other}.text(), "minScenceDuration changed");
}

TEST_F(ResultRestoreText, KnowsEveryMinimum) {
    struct Case {
        std::int64_t minimum;
        const char* text;
    };
    for (const Case& one :
         {Case{0, "0"}, Case{0, "-0"}, Case{-3, "-3"}, Case{4294967298, "4294967298"},
          Case{std::numeric_limits<std::int64_t>::max(), "9223372036854775807"},
          Case{std::numeric_limits<std::int64_t>::min(), "-9223372036854775808"}}) {
        probe().minScenceDuration() = one.minimum;
        EXPECT_EQ(restored(ResultText{.minScenceDuration = one.text}.text()).size(), 1U);
    }
    // Neither bound is mistaken for the number next to it, which reads as the same double.
    probe().minScenceDuration() = std::numeric_limits<std::int64_t>::max();
    for (const char* const other : {"9223372036854775808", "9223372036854775806"})
        expectDeleted(ResultText{.minScenceDuration = other}.text(), "minScenceDuration changed");
    probe().minScenceDuration() = std::numeric_limits<std::int64_t>::min();
    for (const char* const other : {"9223372036854775808", "-9223372036854775809"})
        expectDeleted(ResultText{.minScenceDuration = other}.text(), "minScenceDuration changed");
}

TEST_F(ResultRestoreText, NeedsAThresholdThatIsNear) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    struct Case {
        const char* text;
        double current;
        bool near;
    };
    for (const Case& one : {Case{"3", 3.0, true},
                            Case{"3.0", 3.001, true},
                            Case{"3.001", 3.0, true},
                            Case{"3.0", 3.0011, false},
                            Case{"3.0011", 3.0, false},
                            Case{"3.0", 2.9989, false},
                            Case{"0.001", 0.0, true},
                            Case{"0.0", 0.001, true},
                            Case{"-0.001", 0.0, true},
                            Case{"0.0010000000000000002", 0.0, false},
                            Case{"-0.0010000000000000002", 0.0, false},
                            Case{"-3.0", 3.0, false},
                            Case{"0", -0.0, true},
                            Case{"18446744073709551615", 0x1p64, true},
                            Case{"1e308", -1e308, false},
                            Case{"-1e308", 1e308, false},
                            Case{"3.0", nan, true},
                            Case{"1e308", -nan, true},
                            Case{"3.0", infinity, false},
                            Case{"3.0", -infinity, false}}) {
        SCOPED_TRACE(one.current);
        probe().scenceDetectionThreshold() = one.current;
        const std::string text = ResultText{.scenceDetectionThreshold = one.text}.text();
        if (one.near) {
            EXPECT_EQ(restored(text).size(), 1U);
        } else {
            expectDeleted(text, "scenceDetectionThreshold changed");
        }
    }
}

TEST_F(ResultRestoreText, OfWrongTypesIsInvalid) {
    for (const char* const value :
         {"null", "true", "false", "1", "1.5", "[]", "[\"1.0.0.1\"]", "{}"}) {
        expectDeleted(ResultText{.version = value}.text(), invalid);
        expectDeleted(ResultText{.analysisTypes = value}.text(), invalid);
    }
    for (const char* const value : {"null", "true", "false", "\"2\"", "\"\"", "[2]", "{}"}) {
        expectDeleted(ResultText{.minScenceDuration = value}.text(), invalid);
        expectDeleted(ResultText{.scenceDetectionThreshold = value}.text(), invalid);
    }
    for (const char* const value : {"null", "true", "1", "\"[]\"", "{}", R"({"begin": 1})"})
        expectDeleted(ResultText{.result = value}.text(), invalid);
    for (const char* const value : {"null", "true", "1", "\"\"", "[]", "[{}]"})
        expectDeleted(ResultText{.result = "[" + std::string(value) + "]"}.text(), invalid);
}

TEST_F(ResultRestoreText, IsJudgedInTheOrderOfItsHead) {
    const ResultText broken{.version = R"("2")",
                            .analysisTypes = "1",
                            .minScenceDuration = "{}",
                            .scenceDetectionThreshold = "null",
                            .result = "3"};
    ResultText text = broken;
    expectDeleted(text.text(), "version changed");
    text.version = "";
    expectDeleted(text.text(), "No version");
    text.version = ResultText{}.version;
    expectDeleted(text.text(), invalid);
    text.analysisTypes = R"("3,4")";
    expectDeleted(text.text(), "analysisTypes changed");
    text.analysisTypes = "";
    expectDeleted(text.text(), "No analysisTypes");
    text.analysisTypes = ResultText{}.analysisTypes;
    expectDeleted(text.text(), invalid);
    text.minScenceDuration = "3";
    expectDeleted(text.text(), "minScenceDuration changed");
    text.minScenceDuration = "";
    expectDeleted(text.text(), "No minScenceDuration");
    text.minScenceDuration = ResultText{}.minScenceDuration;
    expectDeleted(text.text(), invalid);
    text.scenceDetectionThreshold = "4";
    expectDeleted(text.text(), "scenceDetectionThreshold changed");
    text.scenceDetectionThreshold = "";
    expectDeleted(text.text(), "No scenceDetectionThreshold");
    text.scenceDetectionThreshold = ResultText{}.scenceDetectionThreshold;
    expectDeleted(text.text(), invalid);
}

// The records.

TEST_F(ResultRestoreText, MayLeaveOutMembersOfRecords) {
    const auto bare = restoredRecord("");
    EXPECT_EQ(std::bit_cast<std::uint64_t>(bare.score), 0U);
    EXPECT_EQ(bare.begin, 0);
    EXPECT_EQ(bare.end, 0);
    EXPECT_EQ(bare.posOfMaxScore, 0);
    EXPECT_EQ(bare.media, &material);
    for (const double value : {bare.faceRectOfPhoto.x, bare.faceRectOfPhoto.y,
                               bare.faceRectOfPhoto.width, bare.faceRectOfPhoto.height})
        EXPECT_EQ(std::bit_cast<std::uint64_t>(value), 0U);
    EXPECT_EQ(restoredRecord(R"("score": 0.5)").score, 0.5);
    EXPECT_EQ(restoredRecord(R"("begin": 5)").begin, 5);
    EXPECT_EQ(restoredRecord(R"("end": 6)").end, 6);
    EXPECT_EQ(restoredRecord(R"("posOfMaxScore": 7)").posOfMaxScore, 7);
    EXPECT_EQ(restoredRecord(R"("faceRectOfPhoto": "1,2,3,4")").faceRectOfPhoto.height, 4.0);
}

TEST_F(ResultRestoreText, GivesScoresToTheLastBit) {
    struct Case {
        const char* text;
        double score;
    };
    using Limits = std::numeric_limits<double>;
    for (const Case& one :
         {Case{"0.12000000029999999", 0.12000000029999999},
          Case{"0.3333333333333333", 1.0 / 3.0},
          Case{"7", 7.0},
          Case{"-7", -7.0},
          Case{"0.0", 0.0},
          Case{"-0.0", -0.0},
          Case{"5e-324", Limits::denorm_min()},
          Case{"-5e-324", -Limits::denorm_min()},
          Case{"2.225073858507201e-308", 2.225073858507201e-308},
          Case{"2.2250738585072014e-308", Limits::min()},
          Case{"1e-400", 0.0},
          Case{"1.7976931348623157e308", Limits::max()},
          Case{"-1.7976931348623157e308", -Limits::max()},
          Case{"9007199254740993", 9007199254740992.0},
          Case{"9007199254740993.0", 9007199254740992.0},
          Case{"9007199254740993.00000000000000000000000000001", 9007199254740994.0},
          Case{"0e0", 0.0},
          Case{"-0e10", -0.0},
          Case{"0.0e-999", 0.0},
          Case{"-1e-400", -0.0},
          Case{"18446744073709551615", 0x1p64},
          Case{"9223372036854775807", 0x1p63},
          Case{"1e23", 1e23},
          Case{"8.41e21", 8.41e21},
          Case{"9.5e-7", 9.5e-7},
          Case{"123456789012345678901234567890", 1.2345678901234568e29}}) {
        const double score = restoredRecord("\"score\": " + std::string(one.text)).score;
        EXPECT_EQ(std::bit_cast<std::uint64_t>(score), std::bit_cast<std::uint64_t>(one.score))
            << one.text << " gives " << asText(score);
    }
}

TEST_F(ResultRestoreText, GivesPositionsExactly) {
    struct Case {
        const char* text;
        std::int64_t position;
    };
    for (const Case& one :
         {Case{"0", 0}, Case{"-0", 0}, Case{"-1", -1}, Case{"4294967296", 1LL << 32},
          Case{"9007199254740993", 9007199254740993},
          Case{"9223372036854775807", std::numeric_limits<std::int64_t>::max()},
          Case{"-9223372036854775808", std::numeric_limits<std::int64_t>::min()}}) {
        const std::string text = one.text;
        const auto record = restoredRecord("\"begin\": " + text + ", \"end\": " + text +
                                           ", \"posOfMaxScore\": " + text);
        EXPECT_EQ(record.begin, one.position);
        EXPECT_EQ(record.end, one.position);
        EXPECT_EQ(record.posOfMaxScore, one.position);
    }
}

TEST_F(ResultRestoreText, OfRecordsWithWrongTypesIsInvalid) {
    for (const char* const value : {"null", "true", "\"0.5\"", "[0.5]", "{}"})
        expectDeleted(textOfRecord("\"score\": " + std::string(value)), invalid);
    for (const char* const key : {"begin", "end", "posOfMaxScore"}) {
        for (const char* const value :
             {"null", "true", "\"1\"", "[1]", "{}", "1.5", "1.0", "1e3", "-0.0",
              "9223372036854775808", "-9223372036854775809", "1e300"})
            expectDeleted(textOfRecord(quoted(key) + ": " + value), invalid);
    }
    for (const char* const value : {"null", "true", "1", "1.5", "[1, 2, 3, 4]", "{}"})
        expectDeleted(textOfRecord("\"faceRectOfPhoto\": " + std::string(value)), invalid);
}

TEST_F(ResultRestoreText, IsJudgedCompletelyBeforeItCounts) {
    for (const char* const last :
         {"null", R"({"begin": "1"})", R"({"end": 1.5})", R"({"score": "1"})",
          R"({"posOfMaxScore": null})", R"({"faceRectOfPhoto": 1})"}) {
        const std::string records = R"([{"begin": 1}, {}, )" + std::string(last);
        expectDeleted(ResultText{.result = records + "]"}.text(), invalid);
        expectDeleted(ResultText{.result = records + ", {}]"}.text(), invalid);
    }
}

TEST_F(ResultRestoreText, GivesTheWholeNumbersOfFaces) {
    struct Case {
        const char* text;
        std::vector<double> face;
    };
    const std::vector<double> none = {0, 0, 0, 0};
    constexpr double highest = std::numeric_limits<std::int32_t>::max();
    constexpr double lowest = std::numeric_limits<std::int32_t>::min();
    for (const Case& one : {
             Case{"1,2,3,4", {1, 2, 3, 4}},
             Case{"10.000000,20.500000,100.000000,200.250000", {10, 20, 100, 200}},
             Case{"0.250000,0.999999,1.000000,-0.500000", {0, 0, 1, 0}},
             Case{"12.9,-3.75,-0.9,1.999999", {12, -3, 0, 1}},
             Case{"1,2,3", none},
             Case{"1,2,3,4,5", {1, 2, 3, 4}},
             Case{"1,2,3,4,", {1, 2, 3, 4}},
             Case{"", none},
             Case{"1", none},
             Case{"1 2 3 4", none},
             Case{"1;2;3;4", none},
             Case{",,,", none},
             Case{"1,,3,4", {1, 0, 3, 4}},
             Case{" 7,\\t8,9 , 1 0", {7, 8, 9, 1}},
             Case{"1e3,nan,inf,-inf", {1, 0, 0, 0}},
             Case{"+5,--5,0x10,five", {5, 0, 0, 0}},
             Case{"010,1_000,-,+", {10, 1, 0, 0}},
             Case{"2147483647,-2147483648,2147483646.9,-2147483647.9",
                  {highest, lowest, highest - 1, lowest + 1}},
             Case{"99999999999,-99999999999,2147483648,-2147483649",
                  {highest, lowest, highest, lowest}},
             Case{"99999999999999999999999,-99999999999999999999999,4294967296,-4294967297",
                  {highest, lowest, highest, lowest}},
         }) {
        const auto face = restoredRecord("\"faceRectOfPhoto\": \"" + std::string(one.text) + "\"")
                              .faceRectOfPhoto;
        const std::vector<double> values = {face.x, face.y, face.width, face.height};
        EXPECT_EQ(values, one.face) << one.text;
        // Nothing is below zero that is no whole number below zero.
        EXPECT_TRUE(std::none_of(values.begin(), values.end(), [](double value) {
            return value == 0 && std::signbit(value);
        })) << one.text;
    }
}

TEST_F(ResultRestoreText, GivesManyRecordsInTheirOrder) {
    std::string records = "[{\"begin\": 0}";
    for (int i = 1; i < 10000; ++i)
        records += ", {\"begin\": " + std::to_string(i) + "}";
    const Records all = restored(ResultText{.result = records + "]"}.text());
    ASSERT_EQ(all.size(), 10000U);
    for (std::size_t i = 0; i < all.size(); ++i)
        ASSERT_EQ(all[i].begin, static_cast<std::int64_t>(i));
}

// How many there may be.

std::string emptyElements(std::size_t count) {
    std::string list = "[{}";
    for (std::size_t i = 1; i < count; ++i)
        list += ",{}";
    return ResultText{.result = list + "]"}.text();
}

TEST_F(ResultRestoreText, OfMoreRecordsThanAreEverWrittenIsRefused) {
    constexpr std::size_t most = std::size_t{1} << 19;
    EXPECT_EQ(restored(emptyElements(most)).size(), most);
    expectDeleted(emptyElements(most + 1), invalid);
    EXPECT_EQ(probe().results().size(), most);
}

}  // namespace
}  // namespace fake_host
