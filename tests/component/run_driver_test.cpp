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

class Progress : public RunTest {
protected:
    /// Two videos of 100 and 300 ticks, both analysed.
    void twoVideos(std::size_t taskCount) {
        insert(video("a.mp4", 100));
        insert(video("b.mp4", 300));
        setParam("minNeedAnalysisDuartion", 0);
        useKinds(std::vector<std::int32_t>(taskCount, 2));
    }
};

TEST_F(Progress, CountsTasksOfTheFirstVideo) {
    twoVideos(2);
    component().start();
    task(0).progress(50);
    // A quarter of a quarter.
    EXPECT_EQ(listener.lastProgress(), 6);
}

TEST_F(Progress, CountsWhatWasDoneBefore) {
    twoVideos(2);
    probe().moveTo(1, 1);
    // The second half of the task list, half done, on three quarters, behind one quarter: 81.25.
    EXPECT_EQ(probe().overallProgressAt(50), 81);
}

TEST_F(Progress, DividesWithoutLosingFractions) {
    insert(video("a.mp4", 100));
    useKinds({2, 2, 2});
    probe().moveTo(0, 2);
    EXPECT_EQ(probe().overallProgressAt(50), 83);
}

TEST_F(Progress, OfAPhotoIgnoresTheTaskList) {
    insert(video("a.mp4", 300));
    MediaSpec shown = photo("shown.jpg").mediaLength(1);
    shown.durationTicks = 100;
    insert(shown);
    useKinds({4, 1});
    probe().moveTo(1, 1);
    EXPECT_EQ(probe().overallProgressAt(50), 87);
}

TEST_F(Progress, TruncatesTowardZero) {
    insert(video("a.mp4", 100));
    useKinds({4, 3});
    probe().moveTo(0, 0);
    EXPECT_EQ(probe().overallProgressAt(33), 16);
    EXPECT_EQ(probe().overallProgressAt(-33), -16);
}

TEST_F(Progress, IsScaled) {
    insert(video("a.mp4", 100));
    useKinds({4, 3});
    probe().moveTo(0, 0);
    probe().progressScale() = 0.5;
    EXPECT_EQ(probe().overallProgressAt(50), 12);
}

TEST_F(Progress, OfNoDurationAtAllIsZero) {
    insert(video("empty.mp4", 0));
    useKinds({4, 3});
    probe().moveTo(0, 1);
    EXPECT_EQ(probe().overallProgressAt(50), 0);
}

TEST_F(Progress, BeyondItsTypeIsClamped) {
    insert(video("a.mp4", 100));
    useKinds({4, 3});
    probe().moveTo(0, 0);
    probe().progressScale() = 1e300;
    EXPECT_EQ(probe().overallProgressAt(50), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(probe().overallProgressAt(-50), std::numeric_limits<std::int32_t>::min());
}

TEST_F(Progress, ThatIsNoNumberIsZero) {
    insert(video("a.mp4", 100));
    useKinds({4, 3});
    probe().moveTo(0, 0);
    probe().progressScale() = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(probe().overallProgressAt(50), 0);
}

TEST_F(Progress, OfEndlessMaterialsStaysAPercentage) {
    insert(video("a.mp4", std::numeric_limits<std::int64_t>::max()));
    insert(video("b.mp4", std::numeric_limits<std::int64_t>::max()));
    useKinds({4, 3});
    probe().moveTo(1, 1);
    const std::int32_t progress = probe().overallProgressAt(50);
    EXPECT_GE(progress, 0);
    EXPECT_LE(progress, 100);
}

TEST_F(Progress, ForwardsACopyOfThePayload) {
    insert(video("a.mp4", 100 * second));
    useKinds({4, 3});
    component().start();
    KOR::TaskEventPayload payload{};
    payload.progress = 50;
    payload.reasonCode = 9;
    std::strcpy(payload.reason, "kept");
    task(0).send(1, 1, &payload);
    ASSERT_EQ(listener.heard().size(), 1U);
    const HeardEvent& heard = listener.heard()[0];
    EXPECT_NE(heard.payloadAddress, static_cast<void*>(&payload));
    EXPECT_EQ(heard.sender, static_cast<KOR::IDmBaseObj*>(&component()));
    EXPECT_EQ(heard.category, 1U);
    EXPECT_EQ(heard.payload->progress, 25);
    EXPECT_EQ(heard.payload->reasonCode, 9);
    EXPECT_STREQ(heard.payload->reason, "kept");
    EXPECT_EQ(payload.progress, 50);
}

TEST_F(Progress, WithoutAPayloadCountsAsZeroPercent) {
    insert(video("a.mp4", 100 * second));
    useKinds({4, 3});
    component().start();
    task(0).finish();
    task(1).send(1, 1, nullptr);
    ASSERT_EQ(listener.events(), Events{1});
    EXPECT_EQ(listener.lastProgress(), 50);
}

class Events3And4 : public RunTest {
protected:
    Events3And4() {
        insert(video("a.mp4", 100 * second));
        useKinds({4, 3});
        component().start();
    }
};

TEST_F(Events3And4, AreForwardedAsTheyAre) {
    KOR::TaskEventPayload payload{};
    payload.progress = 77;
    task(0).send(1, 3, &payload);
    task(0).send(1, 4, &payload);
    ASSERT_EQ(listener.events(), (Events{3, 4}));
    for (const HeardEvent& heard : listener.heard()) {
        EXPECT_EQ(heard.payloadAddress, static_cast<void*>(&payload));
        EXPECT_EQ(heard.payload->progress, 77);
        EXPECT_EQ(heard.sender, static_cast<KOR::IDmBaseObj*>(&component()));
    }
}

TEST_F(Events3And4, AreForwardedWithoutAPayload) {
    task(0).send(1, 3, nullptr);
    task(0).send(1, 4, nullptr);
    ASSERT_EQ(listener.events(), (Events{3, 4}));
    EXPECT_EQ(listener.heard()[0].payloadAddress, nullptr);
    EXPECT_EQ(listener.heard()[1].payloadAddress, nullptr);
}

TEST_F(Events3And4, OtherEventsAreIgnored) {
    KOR::TaskEventPayload payload{};
    for (const std::uint32_t event : {0U, 5U, 6U, 0xFFFFFFFFU})
        task(0).send(1, event, &payload);
    EXPECT_TRUE(listener.heard().empty());
    EXPECT_FALSE(task(1).running());
}

TEST_F(Events3And4, OtherCategoriesAreIgnored) {
    KOR::TaskEventPayload payload{};
    for (const std::uint32_t category : {0U, 2U, 0xFFFFFFFFU}) {
        for (const std::uint32_t event : {1U, 2U, 3U, 4U})
            task(0).send(category, event, &payload);
    }
    EXPECT_TRUE(listener.heard().empty());
    EXPECT_FALSE(task(1).running());
}

class Stopping : public RunTest {
protected:
    Stopping() {
        insert(video("a.mp4", 100 * second));
        useKinds({4, 3});
        component().start();
        task(0).stopSilently();
        host().takeJournal();
    }
};

TEST_F(Stopping, StopsEveryTaskInOrderWithoutAnEvent) {
    EXPECT_EQ(component().stop(), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.stop
task1.stop
)");
}

TEST_F(Stopping, StopsTheOtherTasksWhenOneFails) {
    task(0).answer("stop", KOR::statusFailed);
    EXPECT_EQ(component().stop(), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.stop
task1.stop
)");
}

TEST_F(Stopping, LaterFinishDoesNothing) {
    component().stop();
    host().takeJournal();
    task(0).finish();
    EXPECT_EQ(journal(), Lines());
    EXPECT_EQ(probe().currentTaskIndex(), 0);
}

TEST_F(Stopping, LaterProgressAndEventsAreForwarded) {
    component().stop();
    task(0).progress(50);
    task(0).send(1, 3, nullptr);
    task(0).send(1, 4, nullptr);
    EXPECT_EQ(listener.events(), (Events{1, 3, 4}));
}

TEST_F(Stopping, InsideAFinishStartsNoOtherTask) {
    task(0).onCall("getResultList", [this] { component().stop(); });
    task(0).finish();
    EXPECT_EQ(host().startCount, 1);
    EXPECT_TRUE(listener.heard().empty());
}

TEST_F(Stopping, BeforeAnyRunIsHarmless) {
    component().stop();
    EXPECT_EQ(component().stop(), KOR::statusOk);
    component().start();
    EXPECT_TRUE(task(0).running());
}

}  // namespace
}  // namespace fake_host
