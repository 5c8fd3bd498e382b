#include <chrono>
#include <cstdio>
#include <string>

#include <gtest/gtest.h>

#include "bench/RunWatch.h"

namespace bench {
namespace {

using std::chrono::seconds;

/// A watch whose clock stands still until it is set forward.
struct WatchedRun {
    void after(int count) { now += seconds(count); }

    void send(std::uint32_t event, std::int32_t progress = 0, const std::string& reason = {}) {
        KOR::TaskEventPayload payload{};
        payload.progress = progress;
        std::snprintf(payload.reason, sizeof payload.reason, "%s", reason.c_str());
        watch.onTaskEvent(nullptr, KOR::taskEventCategory, event, &payload);
    }

    /// Reports these percentages, one each second.
    void report(std::initializer_list<std::int32_t> percentages) {
        for (const std::int32_t percent : percentages) {
            after(1);
            send(KOR::taskEventProgress, percent);
        }
    }

    Course end() {
        send(KOR::taskEventFinished);
        return watch.waitForEnd();
    }

    RunWatch::Clock::time_point now{seconds(1000)};
    RunWatch watch{[this] { return now; }};
};

TEST(RunWatch, TellsOfAnOrderlyRun) {
    WatchedRun run;
    run.report({10, 50, 100});
    const Course course = run.end();
    EXPECT_EQ(course.progressEvents, 3);
    EXPECT_EQ(course.highest, 100);
    EXPECT_FALSE(course.wentBackwards);
    EXPECT_EQ(course.longestStandstill, 1);
    EXPECT_EQ(course.seconds, 3);
    EXPECT_EQ(course.failure, std::nullopt);
}

TEST(RunWatch, SeesProgressGoBackwards) {
    WatchedRun run;
    run.report({10, 50, 49, 60});
    const Course course = run.end();
    EXPECT_TRUE(course.wentBackwards);
    EXPECT_EQ(course.highest, 60);
}

TEST(RunWatch, CountsRepeatedAndFallingPercentagesAsStandstill) {
    WatchedRun run;
    run.report({10, 50, 50, 20, 50, 51, 60});
    EXPECT_EQ(run.end().longestStandstill, 4);
}

TEST(RunWatch, CountsTheTimeBeforeTheFirstPercentage) {
    WatchedRun run;
    run.after(7);
    run.report({10, 20});
    EXPECT_EQ(run.end().longestStandstill, 8);
}

TEST(RunWatch, CountsTheTimeAfterTheLastPercentage) {
    WatchedRun run;
    run.report({10, 20});
    run.after(5);
    const Course course = run.end();
    EXPECT_EQ(course.longestStandstill, 5);
    EXPECT_EQ(course.seconds, 7);
}

TEST(RunWatch, KeepsTheReasonOfAFailure) {
    WatchedRun run;
    run.send(KOR::taskEventFailed, 0, "no such file");
    EXPECT_EQ(run.end().failure, "no such file");
}

}  // namespace
}  // namespace bench
