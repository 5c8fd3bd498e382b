#include <atomic>
#include <cstddef>
#include <functional>
#include <latch>
#include <set>
#include <stdexcept>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/tasks/inParallel.h"

namespace reference_host_tests {
namespace {

using reference_host::inParallel;
using Step = std::function<void()>;

class InParallel : public testing::Test {
protected:
    std::stop_source stop;
};

void hearNothing(std::size_t) {}

void waitFor(const std::stop_token& stop) {
    while (!stop.stop_requested())
        std::this_thread::yield();
}

TEST_F(InParallel, DoesEachPartOnceAndAtOnce) {
    // Nobody passes before all have come.
    std::latch allAreThere(3);
    std::vector<int> calls(3);
    std::vector<std::thread::id> threads(3);
    inParallel(
        3, stop,
        [&](std::size_t part, const Step&) {
            allAreThere.arrive_and_wait();
            ++calls[part];
            threads[part] = std::this_thread::get_id();
        },
        hearNothing);
    EXPECT_EQ(calls, (std::vector<int>{1, 1, 1}));
    EXPECT_EQ(std::set(threads.begin(), threads.end()).size(), 3U);
}

TEST_F(InParallel, TellsOfTheStepsOfAllPartsOnTheCallingThread) {
    constexpr std::size_t steps = 1000;
    std::vector<std::size_t> heard;
    bool wasElsewhere = false;
    const auto here = std::this_thread::get_id();
    inParallel(
        4, stop,
        [&](std::size_t, const Step& step) {
            for (std::size_t i = 0; i < steps; ++i)
                step();
        },
        [&](std::size_t count) {
            heard.push_back(count);
            wasElsewhere = wasElsewhere || std::this_thread::get_id() != here;
        });
    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(heard.back(), 4 * steps);
    for (std::size_t i = 1; i < heard.size(); ++i)
        EXPECT_LT(heard[i - 1], heard[i]);
    EXPECT_FALSE(wasElsewhere);
}

TEST_F(InParallel, TellsOfAStepWhileThePartsGoOn) {
    std::atomic<bool> heard = false;
    inParallel(
        2, stop,
        [&](std::size_t part, const Step& step) {
            if (part == 1) step();
            heard.wait(false);
        },
        [&](std::size_t count) {
            EXPECT_EQ(count, 1U);
            heard = true;
            heard.notify_all();
        });
    EXPECT_TRUE(heard);
}

TEST_F(InParallel, ThrowsWhatAPartThrowsOnceAllHaveEnded) {
    std::atomic<int> ended = 0;
    const auto work = [&](std::size_t part, const Step&) {
        if (part == 1) throw std::runtime_error("the second part");
        waitFor(stop.get_token());
        ++ended;
    };
    try {
        inParallel(3, stop, work, hearNothing);
        ADD_FAILURE() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()), "the second part");
    }
    EXPECT_EQ(ended, 2);
}

TEST_F(InParallel, ThrowsWhatTheListenerThrowsOnceAllHaveEnded) {
    std::atomic<int> ended = 0;
    const auto work = [&](std::size_t, const Step& step) {
        step();
        waitFor(stop.get_token());
        ++ended;
    };
    const auto refuse = [](std::size_t) { throw std::runtime_error("the listener"); };
    EXPECT_THROW(inParallel(2, stop, work, refuse), std::runtime_error);
    EXPECT_EQ(ended, 2);
}

TEST_F(InParallel, LeavesTheStopAloneWhereNothingFails) {
    inParallel(
        2, stop, [](std::size_t, const Step& step) { step(); }, hearNothing);
    EXPECT_FALSE(stop.stop_requested());
}

TEST_F(InParallel, HasNothingToDoForNoParts) {
    inParallel(
        0, stop, [](std::size_t, const Step&) { ADD_FAILURE(); },
        [](std::size_t) { ADD_FAILURE(); });
}

}  // namespace
}  // namespace reference_host_tests
