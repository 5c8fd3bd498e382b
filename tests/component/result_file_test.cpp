#include <cmath>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/paths.h"
#include "tests/support/ComponentTest.h"
#include "tests/support/storedText.h"

namespace fake_host {
namespace {

KOR::MaterialAnalysisResult record(double score, std::int64_t begin, std::int64_t end,
                                   std::int64_t best, KOR::KorRect face = {}) {
    return {score, begin, end, best, nullptr, face};
}

class ResultFile : public ComponentTest {
protected:
    FakeMedia& material = make(video("clip.mp4", 1000).cacheIn(host().directory()));

    std::filesystem::path file() const { return host().directory() / "analysis" / "result.json"; }

    bool save(const std::vector<KOR::MaterialAnalysisResult>& records) {
        std::vector<const KOR::MaterialAnalysisResult*> pointers;
        for (const auto& one : records)
            pointers.push_back(&one);
        return probe().saveMaterialAnalysisResult(&material, pointers);
    }

    /// The file after writing `records`.
    std::string saved(const std::vector<KOR::MaterialAnalysisResult>& records) {
        EXPECT_TRUE(save(records));
        return contentOf(file());
    }
};

TEST_F(ResultFile, HoldsEveryMemberInItsPlace) {
    probe().setAnalysisKindsOnly({4, 3, 1, 5});
    EXPECT_EQ(
        saved({record(0.5, 0, 30000000, 10000000, {10, 20.5, 100, 200.25}), record(1.0, -5, 5, 0)}),
        stored(R"({
    "version": "1.0.0.1",
    "analysisTypes": "4,3,1,5",
    "minScenceDuration": 2,
    "scenceDetectionThreshold": 3.0,
    "result": [
        {
            "score": 0.5,
            "begin": 0,
            "end": 30000000,
            "posOfMaxScore": 10000000,
            "faceRectOfPhoto": "10.000000,20.500000,100.000000,200.250000"
        },
        {
            "score": 1.0,
            "begin": -5,
            "end": 5,
            "posOfMaxScore": 0,
            "faceRectOfPhoto": "0.000000,0.000000,0.000000,0.000000"
        }
    ]
})"));
}

TEST_F(ResultFile, WithoutRecordsOrKindsIsStillWritten) {
    EXPECT_EQ(saved({}), stored(R"({
    "version": "1.0.0.1",
    "analysisTypes": "",
    "minScenceDuration": 2,
    "scenceDetectionThreshold": 3.0,
    "result": []
})"));
}

TEST_F(ResultFile, NamesNegativeAndSingleKinds) {
    probe().setAnalysisKindsOnly({-12});
    EXPECT_NE(saved({}).find(stored("\"analysisTypes\": \"-12\",\n")), std::string::npos);
}

TEST_F(ResultFile, HoldsTheMostNegativeIntegers) {
    constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    probe().minScenceDuration() = lowest;
    const std::string content = saved({record(0.5, lowest, lowest, lowest)});
    EXPECT_NE(content.find(stored("\"minScenceDuration\": -9223372036854775808,\n")),
              std::string::npos);
    EXPECT_NE(content.find(stored("\"begin\": -9223372036854775808,\n")), std::string::npos);
    EXPECT_NE(content.find(stored("\"end\": -9223372036854775808,\n")), std::string::npos);
    EXPECT_NE(content.find(stored("\"posOfMaxScore\": -9223372036854775808,\n")),
              std::string::npos);
}

TEST_F(ResultFile, HoldsTheShortestFormOfNumbers) {
    setThreshold(0.1);
    const std::string content = saved({record(1.0 / 3.0, 0, 0, 0)});
    EXPECT_NE(content.find(stored("\"scenceDetectionThreshold\": 0.1,\n")), std::string::npos);
    EXPECT_NE(content.find(stored("\"score\": 0.3333333333333333,\n")), std::string::npos);
}

TEST_F(ResultFile, HoldsANegativeMinimum) {
    setParam("minScenceDuration", -3);
    EXPECT_NE(saved({}).find(stored("\"minScenceDuration\": -3,\n")), std::string::npos);
}

TEST_F(ResultFile, LeavesOutANonFiniteThreshold) {
    setThreshold(std::numeric_limits<double>::infinity());
    const std::string content = saved({});
    EXPECT_NE(content.find("\"scenceDetectionThreshold\":"), std::string::npos);
    EXPECT_EQ(content.find("\"scenceDetectionThreshold\": i"), std::string::npos);
    EXPECT_EQ(content.find("Inf"), std::string::npos);
    EXPECT_EQ(content.find("null"), std::string::npos);
    EXPECT_NE(content.find("\"result\""), std::string::npos);
}

TEST_F(ResultFile, LeavesOutANonFiniteScore) {
    const std::string content = saved({record(std::nan(""), 7, 8, 9)});
    const std::size_t key = content.find("\"score\":");
    const std::size_t next = content.find("\"begin\"");
    ASSERT_NE(key, std::string::npos);
    ASSERT_NE(next, std::string::npos);
    const std::string between = content.substr(key + 8, next - key - 8);
    EXPECT_EQ(between.find_first_not_of(" ,\r\n"), std::string::npos) << between;
    EXPECT_NE(content.find("\"begin\": 7"), std::string::npos);
}

TEST_F(ResultFile, PrintsNonFiniteFacesAsTheCLibraryDoes) {
    const std::string content =
        saved({record(0.5, 0, 0, 0, {std::numeric_limits<double>::infinity(), -0.0, 1e20, 0.5})});
    EXPECT_NE(content.find("\"inf,-0.000000,100000000000000000000.000000,0.500000\""),
              std::string::npos)
        << content;
}

TEST_F(ResultFile, PrintsTheLongestFaces) {
    constexpr double widest = -std::numeric_limits<double>::max();
    const std::string content = saved({record(0.5, 0, 0, 0, {widest, widest, widest, widest})});
    EXPECT_NE(content.find("\"-17976931348623157"), std::string::npos);
}

TEST_F(ResultFile, MakesTheMissingDirectories) {
    material.spec.cacheIn(host().directory() / "deep" / "down");
    EXPECT_TRUE(save({}));
    EXPECT_TRUE(
        std::filesystem::is_regular_file(host().directory() / "deep/down/analysis/result.json"));
}

TEST_F(ResultFile, LiesWhereTheUtf8OfItsPathLeads) {
    const auto directory = host().directory() / u8"\u7d20\u6750 \u00e9\U0001F3AC";
    material.spec.cacheIn(directory);
    EXPECT_TRUE(save({}));
    EXPECT_TRUE(std::filesystem::is_regular_file(directory / "analysis" / "result.json"));
    EXPECT_EQ(trace(), R"(
log saveMaterialAnalysisResult: "write analysisCachePath: <dir>/素材 é🎬/analysis/result.json"
)");
}

TEST_F(ResultFile, ReplacesALongerFileCompletely) {
    const std::string shorter = saved({});
    saved({record(0.5, 0, 1, 0), record(0.5, 1, 2, 1)});
    EXPECT_EQ(saved({}), shorter);
}

TEST_F(ResultFile, LogsItsPath) {
    save({});
    EXPECT_EQ(trace(), R"(
log saveMaterialAnalysisResult: "write analysisCachePath: <dir>/analysis/result.json"
)");
}

TEST_F(ResultFile, WithoutAMediaCacheIsNotWritten) {
    material.spec.mediaCache.clear();
    EXPECT_FALSE(save({}));
    EXPECT_EQ(trace(), R"(
log saveMaterialAnalysisResult: "mediaCache path is empty"
)");
}

TEST_F(ResultFile, OfNoMediaIsRefusedSilently) {
    EXPECT_FALSE(probe().saveMaterialAnalysisResult(nullptr, {}));
    EXPECT_EQ(logTexts(), Lines());
}

TEST_F(ResultFile, OfASourcelessMediaIsRefusedSilently) {
    material.spec.isSourceMedia = false;
    EXPECT_FALSE(save({}));
    material.spec.isSourceMedia = true;
    material.spec.hasSource = false;
    EXPECT_FALSE(save({}));
    EXPECT_EQ(logTexts(), Lines());
}

TEST_F(ResultFile, ThatCannotBeOpenedIsReported) {
    std::filesystem::create_directories(file());
    EXPECT_FALSE(save({}));
    EXPECT_EQ(logTexts(), (Lines{"write analysisCachePath: " + utf8Of(file()),
                                 "analysisCachePath open failed"}));
}

TEST_F(ResultFile, WithoutItsDirectoryFailsToOpen) {
    host().faults.directoriesFail = true;
    EXPECT_FALSE(save({}));
    EXPECT_EQ(logTexts(), (Lines{"write analysisCachePath: " + utf8Of(file()),
                                 "analysisCachePath open failed"}));
}

TEST_F(ResultFile, NeedsNoDirectoryToBeMadeTwice) {
    std::filesystem::create_directories(file().parent_path());
    host().faults.directoriesFail = true;
    EXPECT_TRUE(save({}));
    EXPECT_EQ(host().directoriesMade, 0);
}

TEST_F(ResultFile, IsTheExampleOfItsPage) {
    constexpr std::int64_t duration = 120000000;
    constexpr std::int64_t cut = 52000000;
    const std::string page = contentOf(RESULT_CACHE_PAGE);
    const std::string fence = "```json\n";
    const std::size_t begin = page.find(fence) + fence.size();
    const std::string example = page.substr(begin, page.find("\n```", begin) - begin);
    probe().setAnalysisKindsOnly({4, 3});
    EXPECT_EQ(saved({record((cut + 1) * 0.3 / duration, 0, cut, 10000000),
                     record((duration - cut + 1) * 0.3 / duration, cut, duration, 80000000)}),
              stored(example));
}

TEST_F(ResultFile, IsWrittenWithoutALogger) {
    host().faults.loggerAbsent = true;
    EXPECT_TRUE(save({}));
    EXPECT_TRUE(std::filesystem::exists(file()));
}

TEST_F(ResultFile, LeavesTheRecordsAlone) {
    insert(photo("photo.jpg"));
    component().start();
    save({});
    EXPECT_EQ(probe().results().size(), 1U);
}

}  // namespace
}  // namespace fake_host
