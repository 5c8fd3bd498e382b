#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

using Ranges = std::vector<KOR::ScenceRange>;
using KeyFrames = std::vector<std::vector<KOR::KeyFrameScore>>;

/// A task of kind 6 that has found what `spec` says in the first material.
class ResultIntake : public ComponentTest {
protected:
    FakeTask& found(const MediaSpec& spec) {
        useKinds({6});
        FakeMedia& material = insert(spec);
        task(0).setSource(&material, 0, 0);
        probe().moveTo(0, 0);
        host().takeJournal();
        return task(0);
    }

    Ranges scenesKept(const std::vector<KOR::TickRange>& scenes, std::int32_t minimum = 2) {
        setParam("minScenceDuration", minimum);
        FakeTask& finished = found(video("clip.mp4", 1000 * second).scenes(scenes));
        EXPECT_EQ(probe().scenceDetectFinished(&finished), KOR::statusOk);
        return probe().scenceRanges();
    }

    KeyFrames walked(const Ranges& scenes, const std::vector<std::int64_t>& keyFrames) {
        FakeTask& finished = found(video("clip.mp4", 1000).keyFrames(keyFrames));
        probe().scenceRanges() = scenes;
        EXPECT_EQ(probe().keyFrameDetectFinishedInternal(&finished), KOR::statusOk);
        return probe().keyFramesOfScences();
    }

    /// The positions taken in, scene by scene.
    std::vector<std::vector<std::int64_t>> positionsWalked(
        const Ranges& scenes, const std::vector<std::int64_t>& keyFrames) {
        std::vector<std::vector<std::int64_t>> positions;
        for (const auto& scene : walked(scenes, keyFrames)) {
            positions.emplace_back();
            for (const auto& keyFrame : scene)
                positions.back().push_back(keyFrame.pos);
        }
        return positions;
    }
};

using Positions = std::vector<std::vector<std::int64_t>>;

class SceneIntake : public ResultIntake {};

TEST_F(SceneIntake, KeepsScenesInTheirOrder) {
    const Ranges kept = scenesKept({{0, 3 * second}, {3 * second, 9 * second}});
    EXPECT_EQ(kept, (Ranges{{0, 3 * second}, {3 * second, 9 * second}}));
}

TEST_F(SceneIntake, DropsASceneOneTickTooShort) {
    EXPECT_EQ(scenesKept({{0, 19999999}, {0, 5 * second}}), (Ranges{{0, 5 * second}}));
}

TEST_F(SceneIntake, KeepsASceneOfExactlyTheMinimum) {
    EXPECT_EQ(scenesKept({{5, 20000005}}), (Ranges{{5, 20000005}}));
}

TEST_F(SceneIntake, AllScenesTooShortMakeOneOfTheWhole) {
    EXPECT_EQ(scenesKept({{0, 1}, {1, second}}), (Ranges{{0, 1000 * second}}));
}

TEST_F(SceneIntake, NoScenesMakeOneOfTheWhole) {
    EXPECT_EQ(scenesKept({}), (Ranges{{0, 1000 * second}}));
}

TEST_F(SceneIntake, MinimumOfZeroKeepsAnEmptyScene) {
    EXPECT_EQ(scenesKept({{7, 7}}, 0), (Ranges{{7, 7}}));
}

TEST_F(SceneIntake, MinimumOfZeroKeepsASlightlyReversedScene) {
    EXPECT_EQ(scenesKept({{9999999, 0}}, 0), (Ranges{{9999999, 0}}));
}

TEST_F(SceneIntake, MinimumOfZeroDropsASceneReversedByASecond) {
    EXPECT_EQ(scenesKept({{10000000, 0}, {1, 2}}, 0), (Ranges{{1, 2}}));
}

TEST_F(SceneIntake, NegativeMinimumKeepsReversedScenes) {
    EXPECT_EQ(scenesKept({{15000000, 0}, {20000000, 0}}, -1), (Ranges{{15000000, 0}}));
}

TEST_F(SceneIntake, ExtremeBoundsDoNotOverflow) {
    constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(scenesKept({{0, highest}, {lowest, highest}}).front(),
              (KOR::ScenceRange{0, highest}));
}

TEST_F(SceneIntake, ReplacesTheScenesBefore) {
    FakeTask& finished = found(video("clip.mp4", 50 * second).scenes({{0, 5 * second}}));
    probe().scenceRanges() = {{1, 2}, {3, 4}};
    probe().scenceDetectFinished(&finished);
    EXPECT_EQ(probe().scenceRanges(), (Ranges{{0, 5 * second}}));
}

TEST_F(SceneIntake, FallbackAsksTheMediaForItsOwnDuration) {
    // A photo's own duration differs from the length that it counts for elsewhere.
    MediaSpec spec = photo("photo.jpg");
    spec.durationTicks = 77;
    FakeTask& finished = found(spec);
    probe().scenceDetectFinished(&finished);
    EXPECT_EQ(probe().scenceRanges(), (Ranges{{0, 77}}));
}

TEST_F(SceneIntake, LogsItsFinish) {
    FakeTask& finished = found(video("clip.mp4", 50 * second));
    probe().scenceDetectFinished(&finished);
    EXPECT_EQ(trace(), R"(
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
)");
}

TEST_F(SceneIntake, NullTaskFailsKeepsScenesAndLogs) {
    found(video("clip.mp4", 50 * second));
    probe().scenceRanges() = {{1, 2}};
    EXPECT_EQ(probe().scenceDetectFinished(nullptr), KOR::statusFailed);
    EXPECT_EQ(probe().scenceRanges(), (Ranges{{1, 2}}));
    EXPECT_EQ(logTexts(), Lines{"----Finish Scence Detect---素材idx: 0\n"});
}

TEST_F(SceneIntake, MissingListStillAsksAndFallsBack) {
    FakeTask& finished = found(video("clip.mp4", 50 * second).scenes({{0, 5 * second}}));
    host().faults.failEveryMaking(Product::owningList);
    EXPECT_EQ(probe().scenceDetectFinished(&finished), KOR::statusOk);
    EXPECT_EQ(probe().scenceRanges(), (Ranges{{0, 50 * second}}));
    EXPECT_EQ(trace(), R"(
task0.getResultList(1, 0, null, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
)");
}

TEST_F(SceneIntake, FailedQueryCountsAsNoScenes) {
    FakeTask& finished = found(video("clip.mp4", 50 * second).scenes({{0, 5 * second}}));
    finished.answer("getResultList", KOR::statusFailed);
    EXPECT_EQ(probe().scenceDetectFinished(&finished), KOR::statusOk);
    EXPECT_EQ(probe().scenceRanges(), (Ranges{{0, 50 * second}}));
}

class DurationScore : public ResultIntake {};

TEST_F(DurationScore, GrowsWithTheSceneOfTheKeyFrame) {
    const KeyFrames taken = walked({{0, 100}, {100, 200}}, {50, 100, 150});
    const double score = (101.0 * 0.3) / 1000.0;
    EXPECT_EQ(taken, (KeyFrames{{{0, score, 50}}, {{1, score, 100}, {1, score, 150}}}));
    EXPECT_NEAR(score, 0.0303, 1e-12);
}

TEST_F(DurationScore, OfASceneAsLongAsTheMaterial) {
    const KeyFrames taken = walked({{0, 1000}}, {999});
    EXPECT_EQ(taken, (KeyFrames{{{0, (1001.0 * 0.3) / 1000.0, 999}}}));
}

TEST_F(DurationScore, LogsTheFirstScoreOfEachScene) {
    walked({{0, 100}, {100, 300}}, {50, 60, 150});
    EXPECT_EQ(trace(), R"(
log keyFrameDetectFinishedInternal: "duration score result: {"
task0.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.030300]"
log keyFrameDetectFinishedInternal: "[1:0.060300]"
log keyFrameDetectFinishedInternal: "}\n"
)");
}

TEST_F(DurationScore, NoScenesAskForNothing) {
    EXPECT_EQ(walked({}, {50}), KeyFrames());
    EXPECT_EQ(trace(), R"(
log keyFrameDetectFinishedInternal: "duration score result: {"
log keyFrameDetectFinishedInternal: "}\n"
)");
}

TEST_F(DurationScore, NoKeyFramesLeaveAnEmptyListPerScene) {
    EXPECT_EQ(walked({{0, 100}, {100, 200}}, {}), (KeyFrames{{}, {}}));
    EXPECT_EQ(logTexts(), (Lines{"duration score result: {", "}\n"}));
}

TEST_F(DurationScore, SceneWithoutKeyFramesIsNotLogged) {
    EXPECT_EQ(positionsWalked({{0, 100}, {100, 200}, {200, 300}}, {50, 250}),
              (Positions{{50}, {}, {250}}));
    EXPECT_EQ(logTexts(),
              (Lines{"duration score result: {", "[0:0.030300]", "[2:0.030300]", "}\n"}));
}

TEST_F(DurationScore, KeyFrameAtABeginBelongsToThatScene) {
    EXPECT_EQ(positionsWalked({{10, 20}}, {10}), (Positions{{10}}));
}

TEST_F(DurationScore, KeyFrameAtAnEndBelongsToTheNextScene) {
    EXPECT_EQ(positionsWalked({{0, 20}, {20, 40}}, {20}), (Positions{{}, {20}}));
}

TEST_F(DurationScore, KeyFrameInAGapIsDropped) {
    EXPECT_EQ(positionsWalked({{0, 20}, {30, 40}}, {20, 25, 30}), (Positions{{}, {30}}));
}

TEST_F(DurationScore, KeyFrameBeforeTheFirstSceneIsDropped) {
    EXPECT_EQ(positionsWalked({{10, 20}}, {5, 9, 11}), (Positions{{11}}));
}

TEST_F(DurationScore, KeyFrameAfterTheLastSceneIsIgnored) {
    EXPECT_EQ(positionsWalked({{10, 20}}, {15, 20, 12}), (Positions{{15}}));
}

TEST_F(DurationScore, KeyFramesOutOfOrderAreNotSorted) {
    EXPECT_EQ(positionsWalked({{0, 20}, {20, 40}}, {25, 5, 30}), (Positions{{}, {25, 30}}));
}

TEST_F(DurationScore, RebuildsTheKeyFramesFromNothing) {
    FakeTask& finished = found(video("clip.mp4", 1000));
    probe().keyFramesOfScences() = {{{0, 0.5, 1}}, {{1, 0.5, 2}}};
    probe().scenceRanges() = {{0, 100}};
    probe().keyFrameDetectFinishedInternal(&finished);
    EXPECT_EQ(probe().keyFramesOfScences(), KeyFrames{{}});
}

TEST_F(DurationScore, LeavesTheScenesAlone) {
    walked({{0, 100}}, {5});
    EXPECT_EQ(probe().scenceRanges(), (Ranges{{0, 100}}));
}

TEST_F(DurationScore, NullTaskChangesAndLogsNothing) {
    found(video("clip.mp4", 1000));
    probe().keyFramesOfScences() = {{{0, 0.5, 1}}};
    EXPECT_EQ(probe().keyFrameDetectFinishedInternal(nullptr), KOR::statusFailed);
    EXPECT_EQ(probe().keyFramesOfScences(), (KeyFrames{{{0, 0.5, 1}}}));
    EXPECT_EQ(logTexts(), Lines());
}

TEST_F(DurationScore, MissingListEmptiesItsSceneOnly) {
    FakeTask& finished = found(video("clip.mp4", 1000).keyFrames({50, 150, 250}));
    probe().scenceRanges() = {{0, 100}, {100, 200}, {200, 300}};
    host().faults.failMaking(Product::owningList, 2);
    EXPECT_EQ(probe().keyFrameDetectFinishedInternal(&finished), KOR::statusOk);
    const double score = (101.0 * 0.3) / 1000.0;
    EXPECT_EQ(probe().keyFramesOfScences(), (KeyFrames{{{0, score, 50}}, {}, {{2, score, 250}}}));
}

TEST_F(DurationScore, MissingListsEmptyEveryScene) {
    FakeTask& finished = found(video("clip.mp4", 1000).keyFrames({50}));
    probe().scenceRanges() = {{0, 100}, {100, 200}};
    host().faults.failEveryMaking(Product::owningList);
    EXPECT_EQ(probe().keyFrameDetectFinishedInternal(&finished), KOR::statusOk);
    EXPECT_EQ(probe().keyFramesOfScences(), (KeyFrames{{}, {}}));
}

TEST_F(DurationScore, ExtremeSceneDoesNotOverflow) {
    constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
    const KeyFrames taken = walked({{0, highest}}, {highest - 1});
    ASSERT_EQ(taken.at(0).size(), 1U);
    EXPECT_EQ(taken[0][0].pos, highest - 1);
}

class KeyFrameFinish : public ResultIntake {};

TEST_F(KeyFrameFinish, LogsAfterTheScores) {
    FakeTask& finished = found(video("clip.mp4", 1000).keyFrames({50}));
    probe().scenceRanges() = {{0, 100}};
    EXPECT_EQ(probe().keyFrameDetectFinished(&finished), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
log keyFrameDetectFinishedInternal: "duration score result: {"
task0.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.030300]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
)");
}

TEST_F(KeyFrameFinish, NullTaskFailsAndLogsTheFinishOnly) {
    found(video("clip.mp4", 1000));
    EXPECT_EQ(probe().keyFrameDetectFinished(nullptr), KOR::statusFailed);
    EXPECT_EQ(logTexts(), Lines{"----Finish Keyframe Extract---素材idx: 0\n"});
}

class CombinedFinish : public ResultIntake {};

TEST_F(CombinedFinish, TakesInBothAndLogsEveryScene) {
    FakeTask& finished = found(video("clip.mp4", 52000000)
                                   .scenes({{0, 30000000}, {30000000, 52000000}})
                                   .keyFrames({10000000, 20000000, 40000000}));
    EXPECT_EQ(probe().scenceAndKeyframeDetectFinished(&finished), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
log keyFrameDetectFinishedInternal: "duration score result: {"
task0.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.173077]"
log keyFrameDetectFinishedInternal: "[1:0.126923]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
log scenceAndKeyframeDetectFinished: "----Finish Scence Detect and keyframe extract---素材idx: 0\n"
log scenceAndKeyframeDetectFinished: "fileName detect result: clip.mp4"
log scenceAndKeyframeDetectFinished: "scence [0,30000000) key frame position: { 10000000,20000000 } \n "
log scenceAndKeyframeDetectFinished: "scence [30000000,52000000) key frame position: { 40000000 } \n "
)");
}

TEST_F(CombinedFinish, SceneWithoutKeyFramesPrintsEmptyBraces) {
    FakeTask& finished = found(video("clip.mp4", 52000000));
    probe().scenceAndKeyframeDetectFinished(&finished);
    EXPECT_EQ(logTexts().back(), "scence [0,52000000) key frame position: {  } \n ");
}

TEST_F(CombinedFinish, NegativePositionsPrintTheirSign) {
    FakeTask& finished =
        found(video("clip.mp4", 52000000).scenes({{-30000000, -5}}).keyFrames({-20, -10}));
    probe().scenceAndKeyframeDetectFinished(&finished);
    EXPECT_EQ(logTexts().back(), "scence [-30000000,-5) key frame position: { -20,-10 } \n ");
}

TEST_F(CombinedFinish, NullTaskFailsAndPrintsWhatWasThere) {
    found(video("clip.mp4", 52000000));
    probe().scenceRanges() = {{1, 2}};
    EXPECT_EQ(probe().scenceAndKeyframeDetectFinished(nullptr), KOR::statusFailed);
    // There is no keyframe list for the scene, which prints as an empty one.
    EXPECT_EQ(logTexts(), (Lines{"----Finish Scence Detect---素材idx: 0\n",
                                 "----Finish Keyframe Extract---素材idx: 0\n",
                                 "----Finish Scence Detect and keyframe extract---素材idx: 0\n",
                                 "fileName detect result: clip.mp4",
                                 "scence [1,2) key frame position: {  } \n "}));
}

TEST_F(CombinedFinish, WorksWithoutALogger) {
    FakeTask& finished = found(video("clip.mp4", 52000000).keyFrames({7}));
    host().faults.loggerAbsent = true;
    EXPECT_EQ(probe().scenceAndKeyframeDetectFinished(&finished), KOR::statusOk);
    EXPECT_EQ(probe().keyFramesOfScences().at(0).at(0).pos, 7);
    EXPECT_EQ(logTexts(), Lines());
}

}  // namespace
}  // namespace fake_host
