#include <algorithm>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "autotrim/AnalysisRun.h"
#include "tests/autotrim/FakeComponent.h"

namespace autotrim {
namespace {

using std::chrono::milliseconds;

/// Waits that are no longer than a test can bear, and long enough not to matter where an event is
/// certain to come.
Patience shortPatience() {
    Patience patience;
    patience.stopEvery = milliseconds(1);
    patience.silence = milliseconds(20);
    patience.silenceAfterFailedStart = milliseconds(10);
    return patience;
}

class Run : public testing::Test {
protected:
    RunEnd run(const Patience& patience = {}) {
        const RunEnd end = runToEnd(
            component, monitor, [this](int percent) { shown.push_back(percent); }, patience);
        EXPECT_EQ(component.listeners(), 0U);
        return end;
    }

    FakeComponent component;
    RunMonitor monitor;
    std::vector<int> shown;
};

TEST_F(Run, IsCompleteWhenItFinishesInsideStart) {
    component.onStart = [this] {
        component.report(KOR::taskEventFinished, 100);
        return KOR::statusOk;
    };
    EXPECT_EQ(run(), RunEnd::complete);
    EXPECT_EQ(shown, std::vector<int>{100});
}

TEST_F(Run, IsCompleteWhenAWorkerFinishesIt) {
    std::thread worker;
    component.onStart = [&] {
        worker = std::thread([this] {
            component.report(KOR::taskEventProgress, 40);
            component.report(KOR::taskEventFinished, 100);
        });
        return KOR::statusOk;
    };
    EXPECT_EQ(run(), RunEnd::complete);
    worker.join();
    EXPECT_EQ(shown.back(), 100);
}

TEST_F(Run, IsJoinedByAStopAfterItsLastEvent) {
    std::thread worker;
    component.onStart = [&] {
        worker = std::thread([this] { component.report(KOR::taskEventFinished, 100); });
        return KOR::statusOk;
    };
    component.onStop = [&worker] { worker.join(); };
    EXPECT_EQ(run(), RunEnd::complete);
    EXPECT_EQ(component.stops, 1);
}

TEST_F(Run, ShowsProgressUntilTheEnd) {
    component.onStart = [this] {
        component.report(KOR::taskEventProgress, 40);
        return KOR::statusOk;
    };
    EXPECT_EQ(runToEnd(component, monitor,
                       [this](int percent) {
                           shown.push_back(percent);
                           if (percent == 40) component.report(KOR::taskEventFinished, 100);
                       }),
              RunEnd::complete);
    EXPECT_EQ(shown, (std::vector<int>{40, 100}));
}

TEST_F(Run, IsCompleteThoughOneTaskFailed) {
    component.onStart = [this] {
        component.report(KOR::taskEventFailed);
        component.report(KOR::taskEventFinished, 100);
        return KOR::statusFailed;
    };
    EXPECT_EQ(run(), RunEnd::complete);
}

TEST_F(Run, StopsWhenInterrupted) {
    component.onStart = [this] {
        monitor.interrupt();
        return KOR::statusOk;
    };
    component.onStop = [this] {
        if (component.stops == 1) component.report(KOR::taskEventStopped);
    };
    EXPECT_EQ(run(), RunEnd::interrupted);
    EXPECT_EQ(component.stops, 2);
}

TEST_F(Run, StopsAgainWhenTheFirstStopMissedATask) {
    component.onStart = [this] {
        monitor.interrupt();
        return KOR::statusOk;
    };
    component.onStop = [this] {
        if (component.stops == 3) component.report(KOR::taskEventStopped);
    };
    EXPECT_EQ(run(), RunEnd::interrupted);
    EXPECT_EQ(component.stops, 4);
}

TEST_F(Run, IsCompleteWhenItFinishesBeforeTheStop) {
    component.onStart = [this] {
        monitor.interrupt();
        component.report(KOR::taskEventFinished, 100);
        return KOR::statusOk;
    };
    EXPECT_EQ(run(), RunEnd::complete);
}

TEST_F(Run, EndsWhenAnInterruptedOneStaysSilent) {
    component.onStart = [this] {
        monitor.interrupt();
        return KOR::statusOk;
    };
    EXPECT_EQ(run(shortPatience()), RunEnd::interrupted);
    EXPECT_EQ(component.stops, shortPatience().stopsInSilence + 1);
}

TEST_F(Run, StallsWhenNothingCouldBeStarted) {
    component.onStart = [] { return KOR::statusFailed; };
    Patience patience = shortPatience();
    patience.silence = std::chrono::hours(1);
    EXPECT_EQ(run(patience), RunEnd::stalled);
}

TEST_F(Run, StallsWhenItFallsSilent) {
    component.onStart = [this] {
        component.report(KOR::taskEventProgress, 50);
        return KOR::statusOk;
    };
    EXPECT_EQ(run(shortPatience()), RunEnd::stalled);
    EXPECT_EQ(shown.front(), 50);
}

TEST_F(Run, StallsWhenStoppedFromElsewhere) {
    component.onStart = [this] {
        component.report(KOR::taskEventStopped);
        return KOR::statusOk;
    };
    EXPECT_EQ(run(), RunEnd::stalled);
}

TEST(RunMonitor, IgnoresOtherCategoriesAndEvents) {
    RunMonitor monitor;
    monitor.onTaskEvent(nullptr, 2, KOR::taskEventFinished, nullptr);
    monitor.onTaskEvent(nullptr, KOR::taskEventCategory, 99, nullptr);
    monitor.onTaskEvent(nullptr, KOR::taskEventCategory, KOR::taskEventProgress, nullptr);
    EXPECT_FALSE(monitor.state().over());
    EXPECT_FALSE(monitor.state().percent);
}

}  // namespace
}  // namespace autotrim
