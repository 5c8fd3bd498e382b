#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

using Events = std::vector<std::uint32_t>;

class RunDriver : public RunTest {};

TEST_F(RunDriver, WithoutMaterialsEndsAtOnce) {
    useKinds({4, 3});
    host().takeJournal();
    EXPECT_EQ(component().start(), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
log finishedAllAnalysis: "auto trim result: \n"
listener: event 2, 100
)");
}

TEST_F(RunDriver, EndCarriesAZeroedBlockWithOneHundred) {
    component().start();
    ASSERT_EQ(listener.heard().size(), 1U);
    const HeardEvent& end = listener.heard()[0];
    EXPECT_EQ(end.sender, static_cast<KOR::IDmBaseObj*>(&component()));
    EXPECT_EQ(end.category, 1U);
    EXPECT_EQ(end.event, 2U);
    KOR::TaskEventPayload expected{};
    expected.progress = 100;
    EXPECT_EQ(std::memcmp(&*end.payload, &expected, sizeof expected), 0);
}

TEST_F(RunDriver, StartReturnsTheStatusOfTheFirstStart) {
    insert(video("clip.mp4", 100 * second));
    useKinds({4, 3});
    EXPECT_EQ(component().start(), KOR::statusOk);
    component().stop();
    task(0).answer("setSource", KOR::statusFailed);
    EXPECT_EQ(component().start(), KOR::statusFailed);
}

TEST_F(RunDriver, StartForgetsTheRunBefore) {
    insert(photo("photo.jpg"));
    component().start();
    probe().scenceRanges() = {{1, 2}};
    probe().keyFramesOfScences() = {{{0, 0.5, 1}}};
    probe().scenceScores() = {{0, 0.5, 1}};
    component().start();
    EXPECT_EQ(probe().results().size(), 1U);
    EXPECT_TRUE(probe().scenceRanges().empty());
    EXPECT_TRUE(probe().keyFramesOfScences().empty());
    EXPECT_TRUE(probe().scenceScores().empty());
}

TEST_F(RunDriver, PhotoGetsItsDefaultRecordOnly) {
    insert(photo("photo.jpg"));
    useKinds({4, 1});
    journal();
    component().start();
    EXPECT_EQ(starts(), Lines());
    EXPECT_EQ(probe().results().size(), 1U);
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(RunDriver, VideoAtTheLimitIsNotAnalysed) {
    insert(video("short.mp4", 2 * second));
    useKinds({4, 3});
    component().start();
    EXPECT_EQ(host().startCount, 0);
    EXPECT_EQ(probe().results().size(), 1U);
}

TEST_F(RunDriver, VideoOneTickLongerIsAnalysed) {
    insert(video("long.mp4", 2 * second + 1));
    useKinds({4, 3});
    component().start();
    EXPECT_TRUE(task(0).running());
    EXPECT_TRUE(probe().results().empty());
}

TEST_F(RunDriver, LimitOfTwelveSecondsGivesTheWholeVideo) {
    insert(video("short.mp4", 120000000));
    setParam("minNeedAnalysisDuartion", 12);
    useKinds({4, 3});
    component().start();
    ASSERT_EQ(probe().results().size(), 1U);
    EXPECT_EQ(probe().results()[0].score, 1.0);
    EXPECT_EQ(probe().results()[0].begin, 0);
    EXPECT_EQ(probe().results()[0].end, 120000000);
    EXPECT_EQ(probe().results()[0].posOfMaxScore, 60000000);
}

TEST_F(RunDriver, LimitOfTwelveSecondsIsExact) {
    insert(video("long.mp4", 120000001));
    setParam("minNeedAnalysisDuartion", 12);
    useKinds({4, 3});
    component().start();
    EXPECT_TRUE(task(0).running());
}

TEST_F(RunDriver, LargestLimitDoesNotOverflow) {
    insert(video("clip.mp4", 2147483647LL * second));
    insert(video("longer.mp4", 2147483647LL * second + 1));
    setParam("minNeedAnalysisDuartion", std::numeric_limits<std::int32_t>::max());
    useKinds({4, 3});
    journal();
    component().start();
    EXPECT_EQ(starts(), Lines{"task0 longer.mp4"});
}

TEST_F(RunDriver, NegativeLimitAnalysesEvenEmptyVideos) {
    insert(video("empty.mp4", 0));
    setParam("minNeedAnalysisDuartion", -1);
    useKinds({4, 3});
    component().start();
    EXPECT_TRUE(task(0).running());
}

TEST_F(RunDriver, LimitCountsFromTheNextMaterialOn) {
    insert(video("first.mp4", 10 * second));
    insert(video("second.mp4", 10 * second));
    useKinds({4, 3});
    component().start();
    setParam("minNeedAnalysisDuartion", 10);
    journal();
    host().finishAllTasks();
    EXPECT_EQ(starts(), Lines{"task1 first.mp4"});
}

TEST_F(RunDriver, RunsEveryTaskOnEveryLongVideo) {
    insert(video("a.mp4", 10 * second));
    insert(video("b.mp4", 10 * second));
    useKinds({4, 3, 2});
    journal();
    runToEnd();
    EXPECT_EQ(starts(), (Lines{"task0 a.mp4", "task1 a.mp4", "task2 a.mp4",  //
                               "task0 b.mp4", "task1 b.mp4", "task2 b.mp4"}));
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(RunDriver, StartsTheNextTaskInsideTheFinish) {
    insert(video("a.mp4", 10 * second));
    useKinds({4, 3});
    component().start();
    EXPECT_FALSE(task(1).running());
    task(0).finish();
    EXPECT_TRUE(task(1).running());
}

TEST_F(RunDriver, SingleTaskCollectsNothing) {
    insert(video("a.mp4", 10 * second).scenes({{0, 10 * second}}).keyFrames({5}));
    useKinds({6});
    runToEnd();
    EXPECT_TRUE(probe().results().empty());
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(RunDriver, FailedTaskStillLeadsOn) {
    insert(video("a.mp4", 10 * second));
    useKinds({4, 3});
    component().start();
    task(0).fail(7, "no picture");
    EXPECT_TRUE(task(1).running());
    ASSERT_EQ(listener.events(), Events{3});
    EXPECT_EQ(listener.heard()[0].payload->reasonCode, 7);
    EXPECT_STREQ(listener.heard()[0].payload->reason, "no picture");
}

TEST_F(RunDriver, TaskWithoutItsInterfaceIsTakenForNull) {
    insert(video("a.mp4", 10 * second));
    useKinds({4, 3});
    task(0).hideAnalysisInterface();
    EXPECT_EQ(component().start(), KOR::statusFailed);
    EXPECT_EQ(host().startCount, 0);
}

TEST_F(RunDriver, TaskLosingItsInterfaceFailsItsHandlerOnly) {
    insert(video("a.mp4", 10 * second));
    useKinds({4, 3});
    component().start();
    task(0).hideAnalysisInterface();
    task(0).finish();
    EXPECT_TRUE(task(1).running());
    EXPECT_TRUE(probe().scenceRanges().empty());
}

TEST_F(RunDriver, RefusedStartStallsUntilStartedAgain) {
    insert(video("a.mp4", 10 * second));
    useKinds({4, 3});
    task(0).answer("start", KOR::statusFailed);
    EXPECT_EQ(component().start(), KOR::statusFailed);
    EXPECT_TRUE(listener.heard().empty());
    task(0).answer("start", KOR::statusOk);
    EXPECT_EQ(component().start(), KOR::statusOk);
    host().finishAllTasks();
    EXPECT_EQ(listener.events(), Events{2});
}

class PhotoAnalysis : public RunTest {
protected:
    /// Runs the kinds over one photo and gives the starts.
    Lines startsOfAPhotoWith(const std::vector<std::int32_t>& kinds) {
        insert(photo("photo.jpg"));
        setParam("photoNeedAnalysis", 1);
        useKinds(kinds);
        journal();
        runToEnd();
        EXPECT_EQ(probe().results().size(), 1U);
        EXPECT_EQ(listener.events(), Events{2});
        return starts();
    }
};

TEST_F(PhotoAnalysis, RunsTheFaceTaskOnly) {
    EXPECT_EQ(startsOfAPhotoWith({4, 1}), Lines{"task1 photo.jpg"});
}

TEST_F(PhotoAnalysis, FallsBackToFaceAndEntropy) {
    EXPECT_EQ(startsOfAPhotoWith({4, 7}), Lines{"task1 photo.jpg"});
}

TEST_F(PhotoAnalysis, PrefersTheFaceTaskToTheCombinedOne) {
    EXPECT_EQ(startsOfAPhotoWith({4, 7, 1}), Lines{"task2 photo.jpg"});
}

TEST_F(PhotoAnalysis, TakesTheFirstOfSeveralFaceTasks) {
    EXPECT_EQ(startsOfAPhotoWith({4, 3, 1, 1}), (Lines{"task2 photo.jpg", "task3 photo.jpg"}));
}

TEST_F(PhotoAnalysis, GoesOnWithTheTaskAfterTheFaceTask) {
    EXPECT_EQ(startsOfAPhotoWith({4, 1, 3}), (Lines{"task1 photo.jpg", "task2 photo.jpg"}));
}

TEST_F(PhotoAnalysis, WithoutAFaceKindIsSkipped) {
    EXPECT_EQ(startsOfAPhotoWith({4, 3, 5}), Lines());
}

TEST_F(PhotoAnalysis, EveryNonZeroFlagCounts) {
    insert(photo("photo.jpg"));
    setParam("photoNeedAnalysis", -1);
    useKinds({4, 1});
    component().start();
    EXPECT_TRUE(task(1).running());
}

TEST_F(PhotoAnalysis, WithAFaceKindFirstIsSelectedForEver) {
    FakeMedia& still = insert(photo("photo.jpg"));
    setParam("photoNeedAnalysis", 1);
    useKinds({1, 4});
    // Selection would never return, so the parameter is taken back from within it.
    int queries = 0;
    still.onTypeQuery = [&] {
        if (++queries == 5000) setParam("photoNeedAnalysis", 0);
    };
    component().start();
    EXPECT_GT(probe().results().size(), 100U);
    EXPECT_EQ(host().startCount, 0);
    EXPECT_EQ(listener.events(), Events{2});
}

}  // namespace
}  // namespace fake_host
