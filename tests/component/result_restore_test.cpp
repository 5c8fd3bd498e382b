#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/component/RestoreTest.h"

namespace fake_host {
namespace {

/// What restoring does, whatever the values in the file are.
using ResultRestore = RestoreTest;

const std::string invalid = "cache result invalidate";

KOR::MaterialAnalysisResult record(double score, std::int64_t begin, std::int64_t end,
                                   std::int64_t best, KOR::KorRect face = {}) {
    return {score, begin, end, best, nullptr, face};
}

const Records threeRecords = {
    record(0.12000000029999999, 0, 400000000, 100000000, {12.5, -3.75, 0.25, 1}),
    record(1.0 / 3.0, -5, std::numeric_limits<std::int64_t>::min(), 7),
    record(-0.0, std::numeric_limits<std::int64_t>::max(), 0, -1)};

TEST_F(ResultRestore, GivesBackWhatWasSaved) {
    ASSERT_TRUE(save(threeRecords));
    const Records records = restored(contentOf(file()));
    ASSERT_EQ(records.size(), 3U);
    for (std::size_t i = 0; i < records.size(); ++i) {
        EXPECT_EQ(records[i].score, threeRecords[i].score);
        EXPECT_EQ(records[i].begin, threeRecords[i].begin);
        EXPECT_EQ(records[i].end, threeRecords[i].end);
        EXPECT_EQ(records[i].posOfMaxScore, threeRecords[i].posOfMaxScore);
        EXPECT_EQ(records[i].media, &material);
    }
    EXPECT_EQ(records[0].faceRectOfPhoto.x, 12.0);
    EXPECT_EQ(records[0].faceRectOfPhoto.y, -3.0);
    EXPECT_EQ(records[0].faceRectOfPhoto.width, 0.0);
    EXPECT_EQ(records[0].faceRectOfPhoto.height, 1.0);
}

TEST_F(ResultRestore, LogsUnderItsOwnName) {
    put(ResultText{}.text());
    EXPECT_TRUE(restore());
    const auto lines = host().logLines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].function, "KOR::KorMaterialAnalysis::restoreMaterialAnalysisResult");
    EXPECT_EQ(lines[0].severity, 4U);
    EXPECT_EQ(lines[0].sourceUnit, "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis");
    EXPECT_EQ(lines[0].tag, "");
}

TEST_F(ResultRestore, OfNothingSucceeds) {
    EXPECT_TRUE(restored(ResultText{.result = "[]"}.text()).empty());
    EXPECT_TRUE(restored(ResultText{.result = ""}.text()).empty());
}

TEST_F(ResultRestore, AppendsBehindWhatIsThere) {
    insert(photo("photo.jpg"));
    component().start();
    ASSERT_EQ(probe().results().size(), 1U);
    restored(ResultText{.result = R"([{"begin": 1}, {"begin": 2}])"}.text());
    const Records all = probe().results();
    ASSERT_EQ(all.size(), 3U);
    EXPECT_EQ(all[0].score, 1.0);
    EXPECT_EQ(all[1].begin, 1);
    EXPECT_EQ(all[2].begin, 2);
}

TEST_F(ResultRestore, TwiceAppendsTwice) {
    EXPECT_EQ(restored(ResultText{}.text()).size(), 1U);
    EXPECT_EQ(restored(ResultText{}.text()).size(), 1U);
    EXPECT_EQ(probe().results().size(), 2U);
}

TEST_F(ResultRestore, RecordsHoldTheirMediaUntilTheyEnd) {
    restored(ResultText{.result = "[{}, {}, {}]"}.text());
    EXPECT_EQ(material.refCount(), 4U);
    component().start();
    EXPECT_EQ(material.refCount(), 1U);
}

TEST_F(ResultRestore, LeavesTheRunAndItsSettingsAlone) {
    probe().moveTo(0, 1);
    probe().scenceRanges() = {{1, 2}};
    restored(ResultText{}.text());
    expectDeleted("", invalid);
    EXPECT_EQ(probe().currentMaterialIndex(), 0);
    EXPECT_EQ(probe().currentTaskIndex(), 1);
    EXPECT_EQ(probe().scenceRanges().size(), 1U);
    EXPECT_EQ(probe().analysisKinds(), (std::vector<std::int32_t>{4, 3}));
    EXPECT_EQ(probe().minScenceDuration(), 2);
    EXPECT_EQ(probe().scenceDetectionThreshold(), 3.0);
    EXPECT_EQ(host().directoriesMade, 0);
}

// Where there is no file to speak of.

TEST_F(ResultRestore, OfNoMediaIsSilent) {
    put(ResultText{}.text());
    EXPECT_FALSE(probe().restoreMaterialAnalysisResult(nullptr));
    EXPECT_EQ(logTexts(), Lines());
    EXPECT_TRUE(fileIsThere());
}

TEST_F(ResultRestore, OfASourcelessMediaIsSilent) {
    put(ResultText{}.text());
    material.spec.withoutSourceMedia();
    EXPECT_FALSE(restore());
    material.spec.isSourceMedia = true;
    material.spec.withoutSource();
    EXPECT_FALSE(restore());
    EXPECT_EQ(logTexts(), Lines());
    EXPECT_EQ(probe().results().size(), 0U);
    EXPECT_EQ(contentOf(file()), ResultText{}.text());
}

TEST_F(ResultRestore, WithoutAMediaCacheSaysSo) {
    put(ResultText{}.text());
    material.spec.mediaCache.clear();
    EXPECT_FALSE(restore());
    EXPECT_EQ(trace(), R"(
log restoreMaterialAnalysisResult: "mediaCache path is empty"
)");
    EXPECT_EQ(probe().results().size(), 0U);
    EXPECT_EQ(contentOf(file()), ResultText{}.text());
}

TEST_F(ResultRestore, OfAMissingFileMakesNothing) {
    expectRefusal("analysisCachePath not exists");
    EXPECT_FALSE(fileIsThere());
    material.spec.cacheIn(host().directory() / "deep");
    EXPECT_FALSE(restore());
    EXPECT_FALSE(std::filesystem::exists(host().directory() / "deep"));
    EXPECT_EQ(host().directoriesMade, 0);
}

TEST_F(ResultRestore, FindsTheFileBehindATrailingSlash) {
    put(ResultText{}.text());
    material.spec.mediaCache += "/";
    EXPECT_TRUE(restore());
}

TEST_F(ResultRestore, FindsTheFileWhereTheUtf8OfItsPathLeads) {
    const auto directory = host().directory() / u8"\u7d20\u6750 \u00e9\U0001F3AC";
    std::filesystem::create_directories(directory / "analysis");
    const auto itsFile = directory / "analysis" / "result.json";
    std::ofstream(itsFile) << ResultText{}.text();
    material.spec.cacheIn(directory);
    EXPECT_TRUE(restore());
    EXPECT_EQ(probe().results().size(), 1U);
    std::ofstream(itsFile) << "broken";
    EXPECT_FALSE(restore());
    EXPECT_FALSE(std::filesystem::exists(itsFile));
}

// What stands at the path and is no file that opens.

TEST_F(ResultRestore, OfADirectoryIsRefusedAndLeavesIt) {
    std::filesystem::create_directories(file());
    expectRefusal("analysisCachePath open failed");
    EXPECT_TRUE(std::filesystem::is_directory(file()));
}

// Hosts that do less than they should.

TEST_F(ResultRestore, WithoutALoggerDoesTheSame) {
    for (bool Faults::*const silence : {&Faults::loggerAbsent, &Faults::severityDisabled}) {
        host().faults.*silence = true;
        put(ResultText{}.text());
        EXPECT_TRUE(restore());
        EXPECT_EQ(contentOf(file()), ResultText{}.text());
        put("broken");
        EXPECT_FALSE(restore());
        EXPECT_FALSE(fileIsThere());
        EXPECT_FALSE(restore());
        std::filesystem::create_directories(file());
        EXPECT_FALSE(restore());
        EXPECT_TRUE(fileIsThere());
        std::filesystem::remove(file());
        EXPECT_EQ(logTexts(), Lines());
        host().faults.*silence = false;
    }
    EXPECT_EQ(probe().results().size(), 2U);
}

TEST_F(ResultRestore, RefusesEvenWhatCannotBeRemoved) {
    host().faults.removalsFail = true;
    put("broken");
    expectRefusal(invalid);
    EXPECT_EQ(contentOf(file()), "broken");
}

// Files that were cut off.

TEST_F(ResultRestore, RefusesEveryBeginningOfAFile) {
    ASSERT_TRUE(save(threeRecords));
    const std::string whole = contentOf(file());
    for (std::size_t size = 0; size < whole.size(); ++size)
        expectDeleted(whole.substr(0, size), invalid);
    EXPECT_EQ(restored(whole).size(), 3U);
}

TEST_F(ResultRestore, TakesNoLongFileByItsBeginning) {
    const std::string blanks(64 << 20, ' ');
    expectDeleted(ResultText{}.text() + blanks + "x", invalid);
}

TEST_F(ResultRestore, RefusesWhatANonFiniteNumberLeaves) {
    ASSERT_TRUE(save({record(std::numeric_limits<double>::quiet_NaN(), 1, 2, 3)}));
    expectDeleted(contentOf(file()), invalid);
    setThreshold(std::numeric_limits<double>::infinity());
    ASSERT_TRUE(save({record(0.5, 1, 2, 3)}));
    expectDeleted(contentOf(file()), invalid);
}

}  // namespace
}  // namespace fake_host
