#pragma once

#include <atomic>

#include "validator/check/expect.h"
#include "validator/host/Flag.h"
#include "validator/host/Run.h"

namespace validator {

/// A run that is stopped while its first event of progress is being told.
///
/// It may come to its end just before stop() takes hold of it: see withStopped().
struct HeldRun {
    HeldRun(const HostLibrary& host, KOR::IDmMediaSource* source) : run(host, {1}, source) {
        run.listener.doInside([this](const Told& told) {
            if (told.event != KOR::taskEventProgress) return;
            holdUntil(isStopping);
            // stop() waits for this event, and so cannot have returned.
            if (hasStopped.isSetWithin(linger)) wasEarly = true;
        });
    }

    /// Starts the run, and calls `stop` while an event is being told.
    template <typename Stop>
    void stopBy(Stop stop) {
        run.start();
        run.listener.waitForProgress();
        isStopping.set();
        expectReturn("stop()", [&] {
            stop();
            hasStopped.set();
        });
    }

    void stop() {
        stopBy([this] { run.task->stop(); });
    }

    Flag isStopping;
    Flag hasStopped;
    std::atomic<bool> wasEarly{false};
    Run run;
};

/// How often a run may be over before it is stopped.
inline constexpr int attempts = 10;

/// Calls `action` with a HeldRun that was stopped by `stop`, after as many tries as that takes.
/// Fails where each run ends by itself before.
template <typename Stop, typename Action>
void withStopped(const HostLibrary& host, KOR::IDmMediaSource* source, Stop stop, Action action) {
    for (int i = 0; i < attempts; ++i) {
        HeldRun held(host, source);
        held.stopBy([&] { stop(held.run); });
        if (held.run.listener.milestones() == finished) continue;
        action(held);
        return;
    }
    fail("the events of a run that is stopped", "event 4 as the last", "event 2 each time");
}

template <typename Action>
void withStopped(const HostLibrary& host, KOR::IDmMediaSource* source, Action action) {
    withStopped(
        host, source, [](Run& run) { run.task->stop(); }, action);
}

template <typename Action>
void withStopped(const HostLibrary& host, Action action) {
    const Material video = host.video();
    withStopped(host, video.source, action);
}

}  // namespace validator
