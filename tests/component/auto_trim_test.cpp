#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

using Scores = std::vector<KOR::KeyFrameScore>;
using KeyFrames = std::vector<std::vector<KOR::KeyFrameScore>>;

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// Works on as many scenes as the keyframes need.
class Ranking : public ComponentTest {
protected:
    const Scores& ranked(const KeyFrames& keyFrames) {
        probe().scenceRanges().assign(keyFrames.size(), {0, 1000});
        probe().keyFramesOfScences() = keyFrames;
        EXPECT_EQ(probe().rankScenceScores(), KOR::statusOk);
        return probe().scenceScores();
    }
};

TEST_F(Ranking, TakesTheBestOfEachScene) {
    EXPECT_EQ(ranked({{{0, 0.1, 10}, {0, 0.9, 20}, {0, 0.5, 30}}, {{1, 0.3, 40}, {1, 0.2, 50}}}),
              (Scores{{0, 0.9, 20}, {1, 0.3, 40}}));
}

TEST_F(Ranking, OrdersByPosition) {
    EXPECT_EQ(ranked({{{0, 0.3, 900}}, {{1, 0.2, 100}}, {{2, 0.9, 500}}}),
              (Scores{{1, 0.2, 100}, {2, 0.9, 500}, {0, 0.3, 900}}));
}

TEST_F(Ranking, SkipsScenesWithoutKeyFrames) {
    EXPECT_EQ(ranked({{}, {{1, 0.2, 100}}, {}}), (Scores{{1, 0.2, 100}}));
}

TEST_F(Ranking, TakesOneOfTheBestInATie) {
    const Scores scores = ranked({{{0, 0.5, 10}, {0, 0.7, 20}, {0, 0.7, 30}}});
    ASSERT_EQ(scores.size(), 1U);
    EXPECT_EQ(scores[0].score, 0.7);
    EXPECT_TRUE(scores[0].pos == 20 || scores[0].pos == 30);
}

TEST_F(Ranking, CutsTheScenesDownToTheirBest) {
    ranked({{{0, 0.1, 10}, {0, 0.9, 20}}, {}, {{2, 0.4, 30}}});
    EXPECT_EQ(probe().keyFramesOfScences(), (KeyFrames{{{0, 0.9, 20}}, {}, {{2, 0.4, 30}}}));
}

TEST_F(Ranking, WithoutScenesLeavesTheScoresAsTheyWere) {
    probe().scenceScores() = {{0, 0.5, 1}};
    probe().scenceRanges() = {{0, 10}};
    probe().keyFramesOfScences().clear();
    EXPECT_EQ(probe().rankScenceScores(), KOR::statusOk);
    EXPECT_EQ(probe().scenceScores(), (Scores{{0, 0.5, 1}}));
}

TEST_F(Ranking, WithEmptyScenesClearsTheScores) {
    probe().scenceScores() = {{0, 0.5, 1}};
    EXPECT_EQ(ranked({{}, {}}), Scores());
}

TEST_F(Ranking, ReadsNoMoreListsThanThereAre) {
    probe().scenceRanges().assign(5, {0, 10});
    probe().keyFramesOfScences() = {{{0, 0.1, 3}}};
    EXPECT_EQ(probe().rankScenceScores(), KOR::statusOk);
    EXPECT_EQ(probe().scenceScores(), (Scores{{0, 0.1, 3}}));
}

TEST_F(Ranking, ReadsNoMoreListsThanScenes) {
    probe().scenceRanges() = {{0, 10}};
    probe().keyFramesOfScences() = {{{0, 0.1, 3}}, {{1, 0.2, 13}}};
    EXPECT_EQ(probe().rankScenceScores(), KOR::statusOk);
    EXPECT_EQ(probe().scenceScores(), (Scores{{0, 0.1, 3}}));
}

TEST_F(Ranking, NaNRanksLowestWhereverItStands) {
    EXPECT_EQ(ranked({{{0, notANumber, 1}, {0, -5.0, 2}}, {{1, -9.0, 3}, {1, notANumber, 4}}}),
              (Scores{{0, -5.0, 2}, {1, -9.0, 3}}));
}

TEST_F(Ranking, NaNAloneIsStillTheBest) {
    const Scores scores = ranked({{{0, notANumber, 1}, {0, notANumber, 2}}});
    ASSERT_EQ(scores.size(), 1U);
    EXPECT_TRUE(std::isnan(scores[0].score));
}

TEST_F(Ranking, ManyNaNsBreakNoOrdering) {
    KeyFrames keyFrames(1);
    for (std::int64_t i = 0; i < 100; ++i) {
        keyFrames[0].push_back({0, i % 3 == 0 ? notANumber : static_cast<double>(i % 7), i});
    }
    EXPECT_EQ(ranked(keyFrames).at(0).score, 6.0);
}

TEST_F(Ranking, InfinityIsTheBest) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(ranked({{{0, 1.0, 1}, {0, infinity, 2}, {0, -infinity, 3}}}),
              (Scores{{0, infinity, 2}}));
}

/// The current material is a video.
class Building : public ComponentTest {
protected:
    FakeMedia& material = insert(video("clip.mp4", 1000));

    Building() {
        probe().moveTo(0, 1);
        probe().scenceRanges() = {{0, 300}, {300, 700}, {700, 1000}};
    }
};

TEST_F(Building, MakesARecordForEachScore) {
    probe().scenceScores() = {{2, 0.25, 100}, {0, 0.5, 900}};
    EXPECT_EQ(probe().buildAnalysisResults(), KOR::statusOk);
    const auto results = probe().results();
    ASSERT_EQ(results.size(), 2U);
    EXPECT_EQ(results[0].score, 0.25);
    EXPECT_EQ(results[0].begin, 700);
    EXPECT_EQ(results[0].end, 1000);
    EXPECT_EQ(results[0].posOfMaxScore, 100);
    EXPECT_EQ(results[0].media, &material);
    EXPECT_EQ(results[0].faceRectOfPhoto.width, 0.0);
    EXPECT_EQ(results[1].begin, 0);
    EXPECT_EQ(results[1].end, 300);
    EXPECT_EQ(material.refCount(), 4U);
}

TEST_F(Building, RecordsFollowTheirBestKeyFrames) {
    probe().keyFramesOfScences() = {{{0, 0.1, 900}}, {{1, 0.2, 100}}, {{2, 0.3, 500}}};
    probe().rankScenceScores();
    probe().buildAnalysisResults();
    std::vector<std::vector<std::int64_t>> records;
    for (const auto& record : probe().results()) {
        records.push_back({record.posOfMaxScore, record.begin, record.end});
    }
    EXPECT_EQ(records, (std::vector<std::vector<std::int64_t>>{
                           {100, 300, 700}, {500, 700, 1000}, {900, 0, 300}}));
}

TEST_F(Building, AppendsToTheRecordsBefore) {
    probe().scenceScores() = {{0, 0.5, 1}};
    probe().buildAnalysisResults();
    probe().buildAnalysisResults();
    EXPECT_EQ(probe().results().size(), 2U);
}

TEST_F(Building, SkipsAScoreWhoseSceneIsGone) {
    probe().scenceScores() = {{3, 0.5, 1}, {1, 0.25, 2}, {-1, 0.5, 3}};
    EXPECT_EQ(probe().buildAnalysisResults(), KOR::statusOk);
    ASSERT_EQ(probe().results().size(), 1U);
    EXPECT_EQ(probe().results()[0].posOfMaxScore, 2);
}

TEST_F(Building, WithoutItsMaterialMakesNoRecord) {
    probe().scenceScores() = {{0, 0.5, 1}};
    component().clearMaterials();
    probe().buildAnalysisResults();
    EXPECT_TRUE(probe().results().empty());
}

TEST_F(Building, WritesTheCacheEvenWithoutRecords) {
    material.spec.cacheIn(host().directory());
    probe().scenceScores().clear();
    EXPECT_EQ(probe().buildAnalysisResults(), KOR::statusOk);
    EXPECT_TRUE(std::filesystem::exists(host().directory() / "analysis" / "result.json"));
}

TEST_F(Building, IsOkThoughTheCacheCannotBeWritten) {
    probe().scenceScores() = {{0, 0.5, 1}};
    EXPECT_EQ(probe().buildAnalysisResults(), KOR::statusOk);
    EXPECT_EQ(logTexts(), Lines{"mediaCache path is empty"});
}

using DefaultRecord = ComponentTest;

TEST_F(DefaultRecord, CoversTheWholeMaterial) {
    FakeMedia& material = insert(video("clip.mp4", 1000));
    probe().moveTo(0, -1);
    EXPECT_EQ(probe().addDefaultResult(0), KOR::statusOk);
    const auto results = probe().results();
    ASSERT_EQ(results.size(), 1U);
    EXPECT_EQ(results[0].score, 1.0);
    EXPECT_EQ(results[0].begin, 0);
    EXPECT_EQ(results[0].end, 1000);
    EXPECT_EQ(results[0].posOfMaxScore, 500);
    EXPECT_EQ(results[0].media, &material);
    EXPECT_EQ(results[0].faceRectOfPhoto.x, 0.0);
    EXPECT_EQ(results[0].faceRectOfPhoto.height, 0.0);
    EXPECT_EQ(material.refCount(), 3U);
}

TEST_F(DefaultRecord, TruncatesItsMiddle) {
    insert(video("clip.mp4", 5));
    probe().moveTo(0, -1);
    probe().addDefaultResult(0);
    EXPECT_EQ(probe().results().at(0).posOfMaxScore, 2);
}

TEST_F(DefaultRecord, TruncatesANegativeMiddleTowardZero) {
    insert(video("clip.mp4", -5));
    probe().moveTo(0, -1);
    probe().addDefaultResult(0);
    EXPECT_EQ(probe().results().at(0).posOfMaxScore, -2);
}

TEST_F(DefaultRecord, ComputesItsMiddleInDouble) {
    // 2^53 + 3 has no double of its own; the nearest one with an even mantissa is 2^53 + 4.
    constexpr std::int64_t duration = (std::int64_t{1} << 53) + 3;
    insert(video("clip.mp4", duration));
    probe().moveTo(0, -1);
    probe().addDefaultResult(0);
    EXPECT_EQ(probe().results().at(0).posOfMaxScore, (std::int64_t{1} << 52) + 2);
}

TEST_F(DefaultRecord, IgnoresItsFlag) {
    insert(video("clip.mp4", 1000));
    probe().moveTo(0, -1);
    probe().addDefaultResult(0);
    probe().addDefaultResult(1);
    EXPECT_EQ(probe().results().at(0).end, probe().results().at(1).end);
}

TEST_F(DefaultRecord, IsNeitherLoggedNorCached) {
    insert(video("clip.mp4", 1000).cacheIn(host().directory()));
    probe().moveTo(0, -1);
    probe().addDefaultResult(0);
    EXPECT_EQ(logTexts(), Lines());
    EXPECT_TRUE(std::filesystem::is_empty(host().directory()));
}

using ClosingLog = ComponentTest;

TEST_F(ClosingLog, WithoutRecordsHasItsHeadOnly) {
    EXPECT_EQ(probe().finishedAllAnalysis(), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
log finishedAllAnalysis: "auto trim result: \n"
)");
}

TEST_F(ClosingLog, PrintsEveryRecord) {
    insert(video("clip.mp4", 1000));
    probe().moveTo(0, 1);
    probe().scenceRanges() = {{-7, 300}};
    probe().scenceScores() = {{0, 1234567.0, 100}, {0, 0.0303, 101}, {0, 0.12345678, 102}};
    probe().buildAnalysisResults();
    probe().addDefaultResult(0);
    host().takeJournal();
    EXPECT_EQ(probe().finishedAllAnalysis(), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: -7 end: 300 keyframe pos: 100 socre: 1.23457e+06 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: -7 end: 300 keyframe pos: 101 socre: 0.0303 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: -7 end: 300 keyframe pos: 102 socre: 0.123457 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 0 end: 1000 keyframe pos: 500 socre: 1 face rect: {0000} \n"
)");
}

TEST_F(ClosingLog, ComesBeforeTheNotification) {
    RecordingListener listener;
    component().addCallBack(&listener);
    probe().finishedAllAnalysis();
    EXPECT_EQ(trace(), R"(
log finishedAllAnalysis: "auto trim result: \n"
listener: event 2, 100
)");
}

TEST_F(ClosingLog, PrintsRecordsOfRemovedMaterials) {
    insert(photo("photo.jpg"));
    component().start();
    component().removeMaterialAt(0);
    host().takeJournal();
    probe().finishedAllAnalysis();
    EXPECT_EQ(logTexts().back(),
              "fileName: photo.jpg begin: 0 end: 1 keyframe pos: 0 socre: 1 face rect: {0000} \n");
}

}  // namespace
}  // namespace fake_host
