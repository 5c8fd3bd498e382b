#include <atomic>

#include "validator/host/Flag.h"
#include "validator/host/Observer.h"
#include "validator/host/Run.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

/// What is seen of a task whose last reference another thread gives back while an event is told.
struct Farewell {
    bool wasEarly = false;
    bool isBusyAfterwards = false;
    int timesObserved = 0;
    Milestones milestones;
    std::size_t eventsAtOnce = 0;
    std::size_t eventsLater = 0;
};

Farewell releasedWhileRunning(const HostLibrary& host) {
    const Material video = host.video();
    Flag isReleasing;
    Flag hasReleased;
    std::atomic<bool> wasEarly{false};
    Observer observer;
    Run run(host, {1}, video.source);
    run.listener.doInside([&](const Told& told) {
        if (told.event != KOR::taskEventProgress) return;
        holdUntil(isReleasing);
        if (hasReleased.isSetWithin(linger)) wasEarly = true;
    });
    run.task->setDestroyObserver(&observer);
    run.start();
    run.listener.waitForProgress();
    isReleasing.set();
    expectReturn("the last release()", [&] {
        run.task.reset();
        hasReleased.set();
    });
    Farewell farewell;
    farewell.isBusyAfterwards = run.listener.isBusy();
    farewell.eventsAtOnce = run.listener.events().size();
    letTimePass(host);
    farewell.wasEarly = wasEarly;
    farewell.timesObserved = observer.times();
    farewell.milestones = run.listener.milestones();
    farewell.eventsLater = run.listener.events().size();
    return farewell;
}

void isSilent(HostLibrary& host) {
    const Farewell farewell = releasedWhileRunning(host);
    // A run may have come to its end just before.
    expect(farewell.milestones.empty() || farewell.milestones == finished,
           "the events of a task that is released while it runs", "progress only",
           shown(farewell.milestones));
    expectEqual("the events some time later", farewell.eventsLater, farewell.eventsAtOnce);
}

void waits(HostLibrary& host) {
    const Farewell farewell = releasedWhileRunning(host);
    expect(!farewell.wasEarly && !farewell.isBusyAfterwards,
           "the last release() while an event is told on another thread",
           "to return when the event has been told", "it returned before");
}

void tellsObserver(HostLibrary& host) {
    expectEqual("calls of objectDestroyed() of a task that is released while it runs",
                releasedWhileRunning(host).timesObserved, 1);
}

/// Releases a task inside its first event of this number; nobody may be told of anything then.
void expectSilenceAfterReleaseInside(const HostLibrary& host, std::uint32_t event) {
    const Material video = host.video();
    Flag isReleased;
    Listener& second = *new Listener;
    Observer observer;
    Run run(host, {1}, video.source);
    run.task->addCallBack(&second);
    run.task->setDestroyObserver(&observer);
    std::size_t seconds = 0;
    run.listener.doInside([&](const Told& told) {
        if (told.event != event || isReleased.isSet()) return;
        seconds = second.events().size();
        run.task.reset();
        isReleased.set();
    });
    run.start();
    if (!isReleased.isSetWithin(patience)) {
        failForTime("the last release() inside event " + shown(event), "it has not returned");
    }
    const std::size_t count = run.listener.events().size();
    letTimePass(host);
    expectEqual("calls of objectDestroyed()", observer.times(), 1);
    expectEqual("the events behind the one in which the task was released",
                run.listener.events().size() - count, std::size_t{0});
    expectEqual("the events that the next listener is told of", second.events().size() - seconds,
                std::size_t{0});
}

void insideProgress(HostLibrary& host) {
    expectSilenceAfterReleaseInside(host, KOR::taskEventProgress);
}

void insideFinished(HostLibrary& host) {
    expectSilenceAfterReleaseInside(host, KOR::taskEventFinished);
}

void insideFailed(HostLibrary& host) {
    Flag isReleased;
    Run run(host, {1});
    run.listener.doInside([&](const Told& told) {
        if (told.event != KOR::taskEventFailed) return;
        run.task.reset();
        isReleased.set();
    });
    run.start();
    if (!isReleased.isSetWithin(patience)) {
        failForTime("the last release() inside event 3", "it has not returned");
    }
    letTimePass(host);
    expectEqual("the events", run.listener.milestones(), Milestones{3});
}

void needsTheLastReference(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    run.listener.doInside([&](const Told& told) {
        if (told.event != KOR::taskEventProgress) return;
        run.task->addRef();
        run.task->release();
    });
    run.finish();
    expectEqual("the events", run.listener.milestones(), finished);
}

void ofThousands(HostLibrary& host) {
    for (int i = 0; i < 5000; ++i)
        host.task({1, 9});
    std::vector<Held<KOR::IKorBaseTask>> tasks;
    for (int i = 0; i < 1000; ++i)
        tasks.push_back(host.task({3, 8}));
    tasks.clear();
    letTimePass(host);
}

void ofShortLives(HostLibrary& host) {
    const Material video = host.video();
    std::vector<Listener*> listeners;
    std::vector<std::size_t> counts;
    for (int i = 0; i < 60; ++i) {
        Run run(host, {1, 9}, video.source);
        run.start();
        if (i % 3 == 0) run.listener.waitForEnd();
        if (i % 3 == 1) expectReturn("stop()", [&] { run.task->stop(); });
        expectReturn("the last release()", [&] { run.task.reset(); });
        listeners.push_back(&run.listener);
        counts.push_back(run.listener.events().size());
    }
    letTimePass(host);
    for (std::size_t i = 0; i < listeners.size(); ++i)
        expectEqual("the events of a task some time after its end", listeners[i]->events().size(),
                    counts[i]);
    expectEqual("refCount() of the material", video.object->refCount(), 1);
}

}  // namespace

const std::vector<HostCheck> destructionChecks = {
    {"destruction.is-silent", "A task that is released while it runs sends nothing more.",
     isSilent},
    {"destruction.waits-for-the-event",
     "The last release waits for an event that is being told on another thread.", waits},
    {"destruction.tells-observer", "The observer of a task that is released while it runs is told.",
     tellsObserver},
    {"destruction.inside-progress",
     "A task may be released inside progress; from then on nobody is told of anything.",
     insideProgress},
    {"destruction.inside-finished",
     "A task may be released inside event 2; listeners behind that one are not told.",
     insideFinished},
    {"destruction.inside-failed", "A task may be released inside event 3; event 2 does not come.",
     insideFailed},
    {"destruction.needs-the-last-reference",
     "A run goes on while references come and go, as long as one stays.", needsTheLastReference},
    {"destruction.of-thousands", "Thousands of tasks may be made and released without a run.",
     ofThousands},
    {"destruction.of-short-lives",
     "Tasks may be released at any time of their runs, and leave the material alone.",
     ofShortLives},
};

}  // namespace validator
