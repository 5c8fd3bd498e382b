#include <csignal>
#include <future>

#include <gtest/gtest.h>
#include <unistd.h>

#include "autotrim/ExitCode.h"
#include "autotrim/InterruptWatch.h"

namespace autotrim {
namespace {

void expectCallAfter(int signal) {
    std::promise<void> called;
    InterruptWatch watch([&called] { called.set_value(); });
    watch.beginWork();
    kill(getpid(), signal);
    called.get_future().wait();
}

TEST(InterruptWatch, CallsAfterEitherSignal) {
    expectCallAfter(SIGINT);
    expectCallAfter(SIGTERM);
}

TEST(InterruptWatch, EndsWithoutASignal) {
    bool called = false;
    {
        InterruptWatch watch([&called] { called = true; });
        watch.beginWork();
    }
    EXPECT_FALSE(called);
}

TEST(InterruptWatch, LetsSignalsActAsBefore) {
    {
        const InterruptWatch watch([] {});
    }
    sigset_t blocked;
    pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
    EXPECT_EQ(sigismember(&blocked, SIGINT), 0);
    EXPECT_EQ(sigismember(&blocked, SIGTERM), 0);
}

TEST(InterruptWatchDeathTest, ASecondSignalEndsTheProcess) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    EXPECT_EXIT(
        {
            InterruptWatch watch([] { kill(getpid(), SIGINT); });
            watch.beginWork();
            kill(getpid(), SIGINT);
            pause();
        },
        testing::ExitedWithCode(exitInterrupted), "");
}

TEST(InterruptWatchDeathTest, ASignalOutsideTheWorkEndsTheProcess) {
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const auto waitForSignal = [](bool worked) {
        InterruptWatch watch([] {});
        if (worked) {
            watch.beginWork();
            watch.endWork();
        }
        kill(getpid(), SIGTERM);
        pause();
    };
    EXPECT_EXIT(waitForSignal(false), testing::ExitedWithCode(exitInterrupted), "");
    EXPECT_EXIT(waitForSignal(true), testing::ExitedWithCode(exitInterrupted), "");
}

}  // namespace
}  // namespace autotrim
