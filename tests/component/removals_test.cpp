#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

using Events = std::vector<std::uint32_t>;

/// Three long videos, each with one keyframe of its own in one scene.
class RemovalsMidRun : public RunTest {
protected:
    RemovalsMidRun() {
        for (const char* const name : {"a.mp4", "b.mp4", "c.mp4"}) {
            insert(video(name, 100 * second).keyFrames({50 * second}));
        }
        useKinds({4, 3});
        component().start();
        host().takeJournal();
    }

    void finishTasks(int count) {
        for (int i = 0; i < count; ++i)
            host().runningTask()->finish();
    }
};

TEST_F(RemovalsMidRun, OfTheNextMaterialSkipIt) {
    component().removeMaterialAt(1);
    host().finishAllTasks();
    EXPECT_EQ(starts(), (Lines{"task1 a.mp4", "task0 c.mp4", "task1 c.mp4"}));
    EXPECT_EQ(probe().results().size(), 2U);
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(RemovalsMidRun, OfTheLastMaterialUnderAnalysisEndTheRun) {
    finishTasks(5);
    component().removeMaterialAt(2);
    journal();
    task(1).finish();
    EXPECT_EQ(starts(), Lines());
    EXPECT_EQ(listener.events(), Events{2});
    EXPECT_EQ(probe().results().size(), 2U);
}

TEST_F(RemovalsMidRun, OfEverythingInTheSecondTaskEndTheRun) {
    finishTasks(1);
    component().clearMaterials();
    task(1).finish();
    EXPECT_EQ(listener.events(), Events{2});
    EXPECT_TRUE(probe().results().empty());
}

TEST_F(RemovalsMidRun, OfEverythingLaterEndTheRunToo) {
    finishTasks(4);
    component().clearMaterials();
    task(0).finish();
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(RemovalsMidRun, WithoutScenesInTheLostVideoEndTheRun) {
    component().clearMaterials();
    task(0).finish();
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(RemovalsMidRun, LeaveProgressInBounds) {
    finishTasks(4);
    component().removeMaterialAt(2);
    component().removeMaterialAt(1);
    task(0).progress(50);
    EXPECT_GE(listener.lastProgress(), 0);
    EXPECT_LE(listener.lastProgress(), 100);
    component().clearMaterials();
    task(0).progress(50);
    EXPECT_EQ(listener.lastProgress(), 0);
}

TEST_F(RemovalsMidRun, LeaveTheMaterialToTheRunningTaskAlone) {
    FakeMedia& removed = *task(0).source();
    // The test's, the component's and the task's own.
    EXPECT_EQ(removed.refCount(), 3U);
    component().removeMaterialAt(0);
    EXPECT_EQ(removed.refCount(), 2U);
    task(0).finish();
    EXPECT_EQ(task(1).source()->spec.fileName, "b.mp4");
}

TEST_F(RemovalsMidRun, InsideTheResultQueryEndTheRun) {
    task(0).onCall("getResultList", [this] { component().clearMaterials(); });
    task(0).finish();
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(RemovalsMidRun, InsideAPreparationAreSurvived) {
    task(1).onCall("setSource", [this] { component().clearMaterials(); });
    task(0).finish();
    EXPECT_TRUE(task(1).running());
    task(1).finish();
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(RemovalsMidRun, OfAPhotoUnderFaceAnalysisEndTheRun) {
    component().stop();
    component().clearMaterials();
    insert(photo("photo.jpg"));
    setParam("photoNeedAnalysis", 1);
    useKinds({4, 1});
    // The tasks of the first list stay in front, so the second one of those serves.
    component().start();
    ASSERT_TRUE(task(1).running());
    component().clearMaterials();
    journal();
    while (FakeTask* const running = host().runningTask())
        running->finish();
    EXPECT_EQ(listener.events().back(), 2U);
}

using InsertionsMidRun = RemovalsMidRun;

TEST_F(InsertionsMidRun, BehindTheCurrentMaterialAreRun) {
    insert(video("d.mp4", 100 * second));
    host().finishAllTasks();
    EXPECT_EQ(starts().back(), "task1 d.mp4");
}

TEST_F(InsertionsMidRun, InsideTheEndWaitForTheNextRun) {
    listener.onEvent = [&](std::uint32_t) { insert(photo("late.jpg")); };
    host().finishAllTasks();
    EXPECT_EQ(listener.events(), Events{2});
    EXPECT_EQ(probe().results().size(), 3U);
}

}  // namespace
}  // namespace fake_host
