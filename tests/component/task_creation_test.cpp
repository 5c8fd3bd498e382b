#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

using Kinds = std::vector<std::int32_t>;

using TaskCreation = ComponentTest;

TEST_F(TaskCreation, NullListIsRefused) {
    EXPECT_EQ(component().setAnalysisKinds(nullptr), KOR::statusFailed);
}

TEST_F(TaskCreation, EmptyListMakesNothing) {
    useKinds({});
    EXPECT_EQ(journal(), Lines());
    EXPECT_EQ(probe().analysisKinds(), Kinds());
}

TEST_F(TaskCreation, EachKindAsksForItsTaskTypes) {
    useKinds({1, 2, 3, 4, 5, 6, 7});
    EXPECT_EQ(trace(), R"(
createMediaAnalysisTask(3)
task0.addCallBack
createMediaAnalysisTask(2)
task1.addCallBack
createMediaAnalysisTask(9)
task2.addCallBack
createMediaAnalysisTask(1)
task3.addCallBack
createMediaAnalysisTask(8)
task4.addCallBack
createMediaAnalysisTask(1, 9)
task5.addCallBack
createMediaAnalysisTask(3, 8)
task6.addCallBack
)");
    EXPECT_EQ(probe().analysisKinds(), (Kinds{1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(TaskCreation, UnknownKindsAreIgnored) {
    useKinds({8, 0, 4});
    EXPECT_EQ(trace(), R"(
createMediaAnalysisTask(1)
task0.addCallBack
)");
    EXPECT_EQ(probe().analysisKinds(), Kinds{4});
    EXPECT_EQ(probe().taskCount(), 1U);
}

TEST_F(TaskCreation, NegativeAndHugeKindsAreIgnored) {
    useKinds({-1, 2147483647, -2147483647 - 1});
    EXPECT_EQ(probe().taskCount(), 0U);
    EXPECT_EQ(probe().analysisKinds(), Kinds());
}

TEST_F(TaskCreation, TaskIsHeldByOneReference) {
    useKinds({4});
    EXPECT_EQ(task(0).refCount(), 1U);
}

TEST_F(TaskCreation, SecondCallKeepsTheFirstTasksInFront) {
    useKinds({4, 3});
    useKinds({6});
    EXPECT_EQ(probe().taskCount(), 3U);
    EXPECT_EQ(probe().analysisKinds(), Kinds{6});
}

TEST_F(TaskCreation, NullTaskLeavesItsKindRecorded) {
    host().faults.failMaking(Product::task, 1);
    useKinds({4, 3});
    EXPECT_EQ(probe().taskCount(), 1U);
    EXPECT_EQ(probe().analysisKinds(), (Kinds{4, 3}));
}

TEST_F(TaskCreation, KindWithoutATypeListIsSkipped) {
    const auto kinds = intList({4, 3, 6});
    host().faults.failMaking(Product::intList, 2);
    EXPECT_EQ(component().setAnalysisKinds(kinds.get()), KOR::statusOk);
    EXPECT_EQ(probe().analysisKinds(), (Kinds{4, 6}));
    EXPECT_EQ(trace(), R"(
createMediaAnalysisTask(1)
task0.addCallBack
createMediaAnalysisTask(1, 9)
task1.addCallBack
)");
}

TEST_F(TaskCreation, StaysOkWhenNoTaskCanBeMade) {
    host().faults.failEveryMaking(Product::task);
    useKinds({4, 3});
    EXPECT_EQ(probe().taskCount(), 0U);
    EXPECT_EQ(probe().analysisKinds(), (Kinds{4, 3}));
}

}  // namespace
}  // namespace fake_host
