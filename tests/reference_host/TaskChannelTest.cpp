#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>

#include <gtest/gtest.h>

#include "host/lists.h"
#include "host_kit/ProgressMeter.h"
#include "host_kit/TaskChannel.h"
#include "tests/reference_host/Holder.h"
#include "tests/reference_host/TaskRecorder.h"

namespace reference_host_tests {
namespace {

using host_kit::AnalysisResults;
using host_kit::TaskChannel;

/// A channel whose runs the test itself is: what a run says is said on the test's thread.
class TaskChannelTest : public testing::Test {
protected:
    TaskChannelTest() { channel->addListener(&listener); }

    std::stop_token begin() { return channel->begin().value().get_token(); }

    /// Something to name as the sender.
    Holder<KOR::IKORIntList> sender = hold(createKORIntList());
    std::shared_ptr<TaskChannel> channel = std::make_shared<TaskChannel>(*sender);
    TaskRecorder listener;
};

TEST_F(TaskChannelTest, RunReportsUntilItFinishes) {
    const std::stop_token run = begin();
    channel->progress(run, 40);
    channel->finish(run, {});
    const auto events = listener.events();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].event, KOR::taskEventProgress);
    EXPECT_EQ(events[0].progress, 40);
    EXPECT_EQ(events[0].category, KOR::taskEventCategory);
    EXPECT_EQ(events[0].sender, sender.get());
    EXPECT_EQ(events[1].event, KOR::taskEventFinished);
}

TEST_F(TaskChannelTest, SecondRunHasToWaitForTheFirst) {
    const std::stop_token run = begin();
    EXPECT_FALSE(channel->begin().has_value());
    channel->finish(run, {});
    EXPECT_TRUE(channel->begin().has_value());
}

TEST_F(TaskChannelTest, FailureIsFollowedByTheEnd) {
    const std::stop_token run = begin();
    channel->fail(run, "no picture could be decoded");
    channel->finish(run, {});
    EXPECT_EQ(listener.milestones(), (Milestones{3, 2}));
    EXPECT_EQ(listener.events()[0].reason, "no picture could be decoded");
}

TEST_F(TaskChannelTest, LongReasonIsCutBetweenCharacters) {
    const std::stop_token run = begin();
    std::string reason = "x";
    while (reason.size() < 3000)
        reason += "素";
    channel->fail(run, reason);
    const std::string told = listener.events()[0].reason;
    // 2127 bytes fit in front of the zero: one, and 708 characters of three.
    EXPECT_EQ(told, reason.substr(0, 2125));
}

TEST_F(TaskChannelTest, StopSendsTheLastEvent) {
    const std::stop_token run = begin();
    channel->stop();
    EXPECT_TRUE(run.stop_requested());
    channel->progress(run, 50);
    channel->fail(run, "too late");
    channel->finish(run, {});
    EXPECT_EQ(listener.milestones(), Milestones{4});
    EXPECT_EQ(listener.events().size(), 1U);
}

TEST_F(TaskChannelTest, StopWithoutARunSaysNothing) {
    channel->stop();
    channel->finish(begin(), {});
    channel->stop();
    EXPECT_EQ(listener.milestones(), Milestones{2});
}

TEST_F(TaskChannelTest, StopInsideAnEventFollowsThatEvent) {
    const std::stop_token run = begin();
    listener.inside = [&](const TaskRecorder::Event& entry) {
        if (entry.event != KOR::taskEventProgress) return;
        channel->stop();
        EXPECT_TRUE(listener.events().empty()) << "never two at a time";
    };
    channel->progress(run, 10);
    channel->finish(run, {});
    ASSERT_EQ(listener.events().size(), 2U);
    EXPECT_EQ(listener.events()[0].event, KOR::taskEventProgress);
    EXPECT_EQ(listener.events()[1].event, KOR::taskEventStopped);
}

TEST_F(TaskChannelTest, StopInsideTheFailureReplacesTheEnd) {
    const std::stop_token run = begin();
    listener.inside = [&](const TaskRecorder::Event& entry) {
        if (entry.event == KOR::taskEventFailed) channel->stop();
    };
    channel->fail(run, "broken");
    channel->finish(run, {});
    EXPECT_EQ(listener.milestones(), (Milestones{3, 4}));
}

TEST_F(TaskChannelTest, StopInsideTheEndChangesNothing) {
    const std::stop_token run = begin();
    listener.inside = [&](const TaskRecorder::Event&) { channel->stop(); };
    channel->finish(run, {});
    EXPECT_EQ(listener.milestones(), Milestones{2});
}

TEST_F(TaskChannelTest, RunBegunInsideTheEndCanBeStoppedThere) {
    std::stop_token next;
    listener.inside = [&](const TaskRecorder::Event& entry) {
        if (entry.event != KOR::taskEventFinished) return;
        next = begin();
        channel->stop();
    };
    channel->finish(begin(), {});
    channel->finish(next, {});
    EXPECT_EQ(listener.milestones(), (Milestones{2, 4}));
}

TEST_F(TaskChannelTest, StopOnAnotherThreadWaitsForTheEvent) {
    const std::stop_token run = begin();
    std::promise<void> entered;
    std::promise<void> stopping;
    std::atomic<bool> left = false;
    listener.inside = [&](const TaskRecorder::Event& entry) {
        if (entry.event != KOR::taskEventProgress) return;
        entered.set_value();
        stopping.get_future().wait();
        left = true;
    };
    std::thread worker([&] { channel->progress(run, 10); });
    entered.get_future().wait();
    stopping.set_value();
    channel->stop();
    EXPECT_TRUE(left);
    worker.join();
    ASSERT_EQ(listener.events().size(), 2U);
    EXPECT_EQ(listener.events()[1].event, KOR::taskEventStopped);
}

TEST_F(TaskChannelTest, NewRunWaitsForTheEndOfTheOldOne) {
    std::thread worker;
    listener.inside = [&](const TaskRecorder::Event& entry) {
        if (entry.event != KOR::taskEventFinished || worker.joinable()) return;
        worker = std::thread([this, next = begin()] { channel->finish(next, {}); });
        // The other thread has nothing to wait for but this event.
        EXPECT_TRUE(listener.events().empty());
    };
    channel->finish(begin(), {});
    worker.join();
    EXPECT_EQ(listener.milestones(), (Milestones{2, 2}));
}

TEST_F(TaskChannelTest, ResultsAreCompleteInsideTheEnd) {
    std::size_t scenes = 0;
    listener.inside = [&](const TaskRecorder::Event&) {
        scenes = channel->results()->scenes.size();
    };
    AnalysisResults found;
    found.scenes = {{0, 5}, {5, 9}};
    channel->finish(begin(), std::make_shared<const AnalysisResults>(found));
    EXPECT_EQ(scenes, 2U);
    EXPECT_EQ(channel->results()->scenes.size(), 2U);
    begin();
    EXPECT_EQ(channel->results(), nullptr) << "the next run forgets them";
}

TEST_F(TaskChannelTest, ClosedChannelIsSilent) {
    const std::stop_token run = begin();
    channel->close();
    channel->progress(run, 10);
    channel->finish(run, {});
    EXPECT_TRUE(run.stop_requested());
    EXPECT_TRUE(listener.events().empty());
}

TEST_F(TaskChannelTest, ClosingInsideAnEventSparesTheOtherListeners) {
    TaskRecorder second;
    channel->addListener(&second);
    listener.inside = [&](const TaskRecorder::Event&) { channel->close(); };
    channel->finish(begin(), {});
    EXPECT_EQ(listener.milestones(), Milestones{2});
    EXPECT_TRUE(second.events().empty()) << "the sender is gone";
}

TEST_F(TaskChannelTest, ListenersAreToldInOrderAndAsOftenAsAdded) {
    std::vector<int> calls;
    TaskRecorder second;
    listener.inside = [&](const TaskRecorder::Event&) { calls.push_back(1); };
    second.inside = [&](const TaskRecorder::Event&) { calls.push_back(2); };
    channel->addListener(&second);
    channel->addListener(&listener);
    channel->finish(begin(), {});
    EXPECT_EQ(calls, (std::vector<int>{1, 2, 1}));
}

TEST_F(TaskChannelTest, RemovedListenerIsNotCalledAnyMore) {
    TaskRecorder second;
    channel->addListener(&second);
    channel->addListener(&second);
    listener.inside = [&](const TaskRecorder::Event&) { channel->removeListener(&second); };
    channel->finish(begin(), {});
    channel->finish(begin(), {});
    EXPECT_TRUE(second.events().empty());
    EXPECT_EQ(listener.milestones(), (Milestones{2, 2}));
}

TEST_F(TaskChannelTest, ListenerMayRemoveItself) {
    TaskRecorder second;
    channel->addListener(&second);
    listener.inside = [&](const TaskRecorder::Event&) { channel->removeListener(&listener); };
    channel->finish(begin(), {});
    channel->finish(begin(), {});
    EXPECT_EQ(listener.milestones(), Milestones{2});
    EXPECT_EQ(second.milestones(), (Milestones{2, 2}));
}

TEST_F(TaskChannelTest, AddedListenerHearsFromTheNextEvent) {
    TaskRecorder second;
    listener.inside = [&](const TaskRecorder::Event& entry) {
        if (entry.event == KOR::taskEventProgress) channel->addListener(&second);
    };
    const std::stop_token run = begin();
    channel->progress(run, 5);
    EXPECT_TRUE(second.events().empty());
    channel->finish(run, {});
    EXPECT_EQ(second.milestones(), Milestones{2});
}

/// A clock that stands where the test puts it, and what was told.
struct MeterUnderTest {
    host_kit::ProgressMeter::Clock::time_point now{};
    std::vector<std::int32_t> told;
    host_kit::ProgressMeter meter{[this](std::int32_t percent) { told.push_back(percent); },
                                        [this] { return now; }};
};

TEST(ProgressMeter, TellsTwentyTimesASecond) {
    MeterUnderTest test;
    for (int ms = 0; ms < 1000; ms += 10) {
        test.now = host_kit::ProgressMeter::Clock::time_point(std::chrono::milliseconds(ms));
        test.meter.report(ms / 10);
    }
    EXPECT_EQ(test.told.size(), 20U);
    EXPECT_EQ(test.told.front(), 0);
}

TEST(ProgressMeter, TellsAscendingPercentagesOnce) {
    MeterUnderTest test;
    for (const int percent : {0, 0, 3, 2, 3, 7}) {
        test.now += std::chrono::seconds(1);
        test.meter.report(percent);
    }
    EXPECT_EQ(test.told, (std::vector<std::int32_t>{0, 3, 7}));
}

TEST(ProgressMeter, TellsOfTheEndHoweverSoonItComesAndOnce) {
    MeterUnderTest test;
    test.meter.report(99);
    test.now += std::chrono::milliseconds(1);
    test.meter.report(99);
    test.meter.report(100);
    EXPECT_EQ(test.told, (std::vector<std::int32_t>{99, 100}));
    test.meter.report(100);
    test.now += std::chrono::seconds(1);
    test.meter.report(100);
    EXPECT_EQ(test.told, (std::vector<std::int32_t>{99, 100})) << "once";
}

TEST(ProgressMeter, KeepsWhatComesTooSoonForLater) {
    MeterUnderTest test;
    test.meter.report(1);
    test.now += std::chrono::milliseconds(49);
    test.meter.report(2);
    test.now += std::chrono::milliseconds(1);
    test.meter.report(2);
    EXPECT_EQ(test.told, (std::vector<std::int32_t>{1, 2}));
}

}  // namespace
}  // namespace reference_host_tests
