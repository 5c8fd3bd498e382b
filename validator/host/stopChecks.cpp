#include "validator/check/onThreads.h"
#include "validator/host/HeldRun.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

void endsRun(HostLibrary& host) {
    withStopped(host, [](const HeldRun& held) {
        expectEqual("the events when stop() has returned", held.run.listener.milestones(), stopped);
        expectEqual("the last event", lastOf("events", held.run.listener.events()).event,
                    std::uint32_t{KOR::taskEventStopped});
    });
}

void waitsForEvent(HostLibrary& host) {
    const Material video = host.video();
    HeldRun held(host, video.source);
    held.stop();
    expect(!held.wasEarly, "stop() while an event is told on another thread",
           "to return when the event has been told", "it returned before");
    expect(!held.run.listener.isBusy(), "the listener when stop() has returned", "not being called",
           "being called");
}

void isTheEnd(HostLibrary& host) {
    withStopped(host, [&](const HeldRun& held) {
        const std::size_t count = held.run.listener.events().size();
        letTimePass(host);
        expectEqual("the events some time after stop()", held.run.listener.events().size(), count);
    });
}

void sendsNothingWhenIdle(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    run.task->stop();
    expectEqual("the events of stop() before a run", run.listener.events().size(), std::size_t{0});
    run.finish();
    const std::size_t count = run.listener.events().size();
    run.task->stop();
    letTimePass(host);
    expectEqual("the events of stop() after a run", run.listener.events().size(), count);
    expect(run.count(1) > 0, "the scenes after stop() behind the end", "at least one", "none");
}

/// Calls stop() so often inside the first event `event`, and returns what was told, in short.
std::vector<std::uint32_t> toldWhenStoppedInside(const HostLibrary& host, Run& run,
                                                 std::uint32_t event, int times) {
    bool isCalled = false;
    std::size_t before = 0;
    run.listener.doInside([&](const Told& told) {
        if (told.event != event || isCalled) return;
        isCalled = true;
        before = run.listener.events().size();
        for (int i = 0; i < times; ++i)
            run.task->stop();
    });
    run.start();
    run.listener.waitForEnd();
    if (!isCalled) skip("there was no event " + shown(event));
    letTimePass(host);
    std::vector<std::uint32_t> numbers;
    for (const Told& told : run.listener.events())
        numbers.push_back(told.event);
    return {numbers.begin() + static_cast<std::ptrdiff_t>(before), numbers.end()};
}

void insideProgress(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    expectEqual("the events behind the one in which stop() was called",
                toldWhenStoppedInside(host, run, KOR::taskEventProgress, 1), stopped);
}

void twiceInside(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    expectEqual("the events behind the one in which stop() was called three times",
                toldWhenStoppedInside(host, run, KOR::taskEventProgress, 3), stopped);
}

void insideFailed(HostLibrary& host) {
    Run run(host, {1});
    bool isCalled = false;
    run.listener.doInside([&](const Told& told) {
        if (told.event != KOR::taskEventFailed || isCalled) return;
        isCalled = true;
        run.task->stop();
    });
    run.finish();
    letTimePass(host);
    expectEqual("the events of a run that is stopped inside event 3", run.listener.milestones(),
                Milestones{3, 4});
}

void insideFinished(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    expectEqual("the events behind event 2 in which stop() was called",
                toldWhenStoppedInside(host, run, KOR::taskEventFinished, 1), Milestones{});
    expect(run.count(1) > 0, "the scenes of that run", "at least one", "none");
}

void insideStopped(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    run.listener.doInside([&](const Told& told) {
        if (told.event != KOR::taskEventFinished) run.task->stop();
    });
    run.finish();
    letTimePass(host);
    expectEqual("the events where each calls stop()", run.listener.milestones(), stopped);
}

void twice(HostLibrary& host) {
    const Material video = host.video();
    const auto stopTwice = [](Run& run) {
        run.task->stop();
        run.task->stop();
    };
    withStopped(host, video.source, stopTwice, [](const HeldRun& held) {
        expectEqual("the events of a run that is stopped twice", held.run.listener.milestones(),
                    stopped);
    });
}

void fromThreads(HostLibrary& host) {
    const Material video = host.video();
    const auto stopOnThreads = [](Run& run) { onThreads([&](int) { run.task->stop(); }); };
    withStopped(host, video.source, stopOnThreads, [](const HeldRun& held) {
        expectEqual("the events of a run that four threads stop", held.run.listener.milestones(),
                    stopped);
        expect(!held.run.listener.hasOverlapped(), "the events", "one at a time", "two at once");
    });
}

void leavesNoResults(HostLibrary& host) {
    withStopped(host, [](const HeldRun& held) {
        expectEqual("the scenes of a run that was stopped", held.run.count(1), 0);
    });
}

void isNoFailure(HostLibrary& host) {
    const Material video = host.video();
    const std::string before = video.cache();
    withStopped(
        host, video.source, [](Run& run) { run.task->stop(); },
        [&](const HeldRun&) {
            expect(!before.empty(), "media_cache before the run", "a text", "none");
            letTimePass(host);
            expectEqual("media_cache after a run that was stopped", video.cache(), before);
        });
}

void rightAfterStart(HostLibrary& host) {
    const Material video = host.video();
    for (int i = 0; i < 20; ++i) {
        Run run(host, {1}, video.source);
        run.start();
        expectReturn("stop()", [&] { run.task->stop(); });
        const Milestones events = run.listener.milestones();
        expect(events == stopped || events == finished,
               "the events when stop() has returned, right after start()", "{4}, or {2}",
               shown(events));
    }
}

}  // namespace

const std::vector<HostCheck> stopChecks = {
    {"stop.ends-a-run", "When stop returns, a run has sent event 4 as its last, and no other end.",
     endsRun},
    {"stop.waits-for-the-event",
     "stop returns when an event that is being told on another thread has been told.",
     waitsForEvent},
    {"stop.is-the-end", "When stop has returned, no event of that run comes any more.", isTheEnd},
    {"stop.sends-nothing-when-idle",
     "Before a run and after it, stop sends nothing and takes no results away.",
     sendsNothingWhenIdle},
    {"stop.inside-progress",
     "Called from inside an event, stop returns, and event 4 alone follows.", insideProgress},
    {"stop.several-times-inside",
     "Called several times from inside an event, stop leads to one event 4.", twiceInside},
    {"stop.inside-failed", "Called from inside event 3, stop leads to event 4 instead of 2.",
     insideFailed},
    {"stop.inside-finished",
     "Called from inside event 2, stop sends nothing: the run has ended, with its results.",
     insideFinished},
    {"stop.inside-stopped", "Called from inside event 4, stop sends nothing more.", insideStopped},
    {"stop.twice", "A run that is stopped twice sends one event 4.", twice},
    {"stop.from-threads", "A run that several threads stop at once sends one event 4.",
     fromThreads},
    {"stop.leaves-no-results", "A run that was stopped has no results, which is no failure.",
     leavesNoResults},
    {"stop.is-no-failure", "A run that was stopped leaves media_cache as it is.", isNoFailure},
    {"stop.right-after-start",
     "stop right after start leaves a run that has ended by the time it returns, in one way.",
     rightAfterStart},
};

}  // namespace validator
