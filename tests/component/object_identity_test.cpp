#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

using ObjectIdentity = ComponentTest;

class CountingObserver final : public KOR::IDmDestroyObserver {
public:
    void objectDestroyed() override { ++calls; }

    int calls = 0;
};

TEST_F(ObjectIdentity, FreshComponentHasOneReference) {
    EXPECT_EQ(component().refCount(), 1U);
}

TEST_F(ObjectIdentity, LastReleaseReturnsZeroAndDestroys) {
    CountingObserver observer;
    KOR::IKorMaterialAnalysis* const other = createMaterialAnalysis();
    other->setDestroyObserver(&observer);
    EXPECT_EQ(other->release(), 0U);
    EXPECT_EQ(observer.calls, 1);
}

TEST_F(ObjectIdentity, ReferencesCountUpAndDown) {
    EXPECT_EQ(component().addRef(), 2U);
    EXPECT_EQ(component().addRef(), 3U);
    EXPECT_EQ(component().release(), 2U);
    EXPECT_EQ(component().release(), 1U);
    EXPECT_EQ(component().refCount(), 1U);
}

TEST_F(ObjectIdentity, ObserverHearsOfTheLastReleaseOnly) {
    CountingObserver observer;
    KOR::IKorMaterialAnalysis* const other = createMaterialAnalysis();
    other->addRef();
    other->setDestroyObserver(&observer);
    EXPECT_EQ(other->getDestroyObserver(), &observer);
    other->release();
    EXPECT_EQ(observer.calls, 0);
    other->release();
    EXPECT_EQ(observer.calls, 1);
}

TEST_F(ObjectIdentity, ObserverCanBeTakenOff) {
    CountingObserver observer;
    KOR::IKorMaterialAnalysis* const other = createMaterialAnalysis();
    EXPECT_EQ(other->getDestroyObserver(), nullptr);
    other->setDestroyObserver(&observer);
    other->setDestroyObserver(nullptr);
    other->release();
    EXPECT_EQ(observer.calls, 0);
}

/// Looks at a dying component, which may still be named but no longer revived.
class RevivingObserver final : public KOR::IDmDestroyObserver {
public:
    explicit RevivingObserver(KOR::IDmBaseObj& object) : object_(object) {}

    void objectDestroyed() override {
        countSeen = object_.refCount();
        revived = object_.addRef();
        releasedAgain = object_.release();
    }

    std::uint32_t countSeen = 99;
    std::uint32_t revived = 99;
    std::uint32_t releasedAgain = 99;

private:
    KOR::IDmBaseObj& object_;
};

TEST_F(ObjectIdentity, DeadComponentCannotBeRevived) {
    KOR::IKorMaterialAnalysis* const other = createMaterialAnalysis();
    RevivingObserver observer(*other);
    other->setDestroyObserver(&observer);
    EXPECT_EQ(other->release(), 0U);
    EXPECT_EQ(observer.countSeen, 0U);
    EXPECT_EQ(observer.revived, 0U);
    EXPECT_EQ(observer.releasedAgain, 0U);
}

TEST_F(ObjectIdentity, QueryKnowsItsInterfaceByName) {
    EXPECT_EQ(component().queryInterface("IKorMaterialAnalysis"), &component());
    EXPECT_EQ(component().refCount(), 1U);
}

TEST_F(ObjectIdentity, QueryGivesTheOneBaseObject) {
    void* const found = component().queryInterface("IDmBaseObj");
    EXPECT_EQ(found, static_cast<KOR::IDmBaseObj*>(&component()));
    EXPECT_EQ(static_cast<KOR::IDmBaseObj*>(found)->refCount(), 1U);
}

TEST_F(ObjectIdentity, QueryDeniesTheTaskInterface) {
    EXPECT_EQ(component().queryInterface("IKorBaseTask"), nullptr);
}

TEST_F(ObjectIdentity, QueryDeniesEveryOtherName) {
    for (const char* const name :
         {"IKorCallBack", "ikormaterialanalysis", "IKorMaterialAnalysi", "IKorMaterialAnalysis ",
          "IDmBaseObject", "IBsMediaAnalysisTask", ""}) {
        EXPECT_EQ(component().queryInterface(name), nullptr) << name;
    }
    EXPECT_EQ(component().queryInterface(nullptr), nullptr);
}

TEST_F(ObjectIdentity, IsATaskOfTypeTen) {
    EXPECT_EQ(component().getTaskType(), 10U);
}

TEST_F(ObjectIdentity, KeepsThreeValuesForItsOwner) {
    std::uint32_t first = 9;
    std::uint32_t second = 9;
    std::uint32_t third = 9;
    EXPECT_EQ(component().getTaskInfo(&first, &second, &third), KOR::statusOk);
    EXPECT_EQ((std::vector{first, second, third}), (std::vector<std::uint32_t>{0, 0, 0}));
    EXPECT_EQ(component().setTaskInfo(1, 2, 0xFFFFFFFF), KOR::statusOk);
    EXPECT_EQ(component().getTaskInfo(&first, &second, &third), KOR::statusOk);
    EXPECT_EQ((std::vector{first, second, third}), (std::vector<std::uint32_t>{1, 2, 0xFFFFFFFF}));
}

TEST_F(ObjectIdentity, TaskInfoWithANullWritesNothing) {
    component().setTaskInfo(1, 2, 3);
    std::uint32_t first = 9;
    std::uint32_t second = 9;
    EXPECT_EQ(component().getTaskInfo(&first, &second, nullptr), KOR::statusFailed);
    EXPECT_EQ(component().getTaskInfo(&first, nullptr, &second), KOR::statusFailed);
    EXPECT_EQ(component().getTaskInfo(nullptr, &first, &second), KOR::statusFailed);
    EXPECT_EQ(first, 9U);
    EXPECT_EQ(second, 9U);
}

TEST_F(ObjectIdentity, CopiesItsName) {
    EXPECT_STREQ(component().getTaskName(), "");
    std::string name = "holiday";
    EXPECT_EQ(component().setTaskName(name.c_str()), KOR::statusOk);
    name = "changed";
    EXPECT_STREQ(component().getTaskName(), "holiday");
    EXPECT_EQ(component().setTaskName(nullptr), KOR::statusFailed);
    EXPECT_STREQ(component().getTaskName(), "holiday");
}

TEST_F(ObjectIdentity, PauseAndResumeAreNotSupported) {
    EXPECT_EQ(component().pause(), KOR::statusFailed);
    EXPECT_EQ(component().resume(), KOR::statusFailed);
    insert(video("long.mp4", 100 * second));
    useKinds({4, 3});
    component().start();
    EXPECT_EQ(component().pause(), KOR::statusFailed);
    EXPECT_EQ(component().resume(), KOR::statusFailed);
    EXPECT_TRUE(task(0).running());
}

TEST_F(ObjectIdentity, StateIsZeroBeforeDuringAndAfterARun) {
    insert(video("long.mp4", 100 * second));
    useKinds({4, 3});
    EXPECT_EQ(component().getState(), 0U);
    component().start();
    EXPECT_EQ(component().getState(), 0U);
    host().finishAllTasks();
    EXPECT_EQ(component().getState(), 0U);
}

TEST_F(ObjectIdentity, PriorityIsOneHundredUntilSet) {
    EXPECT_EQ(component().getPriority(), 100U);
    EXPECT_EQ(component().setPriority(7), KOR::statusOk);
    EXPECT_EQ(component().getPriority(), 7U);
}

TEST_F(ObjectIdentity, OptionsAreAcceptedAndOverwritten) {
    EXPECT_EQ(component().setIntOption(-1, 5), KOR::statusOk);
    EXPECT_EQ(component().setIntOption(-1, 6), KOR::statusOk);
}

TEST_F(ObjectIdentity, NullListenersAreIgnoredOrRefused) {
    EXPECT_EQ(component().addCallBack(nullptr), KOR::statusOk);
    EXPECT_EQ(component().removeCallBack(nullptr), KOR::statusFailed);
    EXPECT_EQ(component().start(), KOR::statusOk);
}

TEST_F(ObjectIdentity, RemovingAnUnknownListenerSucceeds) {
    RecordingListener stranger;
    EXPECT_EQ(component().removeCallBack(&stranger), KOR::statusOk);
}

}  // namespace
}  // namespace fake_host
