#include <algorithm>

#include "validator/host/Flag.h"
#include "validator/host/Run.h"
#include "validator/host/footage.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

/// What tasks may be asked for.
const std::vector<Types> allTypes = {{1}, {9}, {2}, {3}, {8}, {1, 9}, {3, 8}};

/// Calls `action` with the events of a finished run of each kind of task on a video and a photo.
template <typename Action>
void withEachRun(const HostLibrary& host, Action action) {
    const Material video = host.video();
    const Material photo = host.photo();
    for (const Types& types : allTypes) {
        for (const Material* const material : {&video, &photo}) {
            Run run(host, types, material->source);
            if (material == &video) run.setPositions({0, second});
            run.finish();
            action(run, shown(types));
        }
    }
}

void endWithFinished(HostLibrary& host) {
    withEachRun(host, [](const Run& run, const std::string& types) {
        expectEqual("the events of types " + types, run.listener.milestones(), finished);
        expectEqual("the last event of types " + types,
                    lastOf("events", run.listener.events()).event,
                    std::uint32_t{KOR::taskEventFinished});
    });
}

void tellProgress(HostLibrary& host) {
    withEachRun(host, [](const Run& run, const std::string& types) {
        std::int32_t last = 0;
        for (const Told& told : run.listener.events()) {
            if (told.event != KOR::taskEventProgress) continue;
            expect(told.hasPayload, "an event of progress", "a payload", "null");
            expect(told.progress >= 0 && told.progress <= 100, "the progress of types " + types,
                   "0 to 100", shown(told.progress));
            if (told.progress < last) warn("the progress of types " + types + " falls");
            last = told.progress;
        }
    });
}

void nameSender(HostLibrary& host) {
    withEachRun(host, [](const Run& run, const std::string& types) {
        const void* const task = run.task->queryInterface("IDmBaseObj");
        for (const Told& told : run.listener.events()) {
            expectSame("the sender of types " + types, told.sender, task);
            expectEqual("the category of types " + types, told.category, KOR::taskEventCategory);
        }
    });
}

void areKnown(HostLibrary& host) {
    withEachRun(host, [](const Run& run, const std::string& types) {
        for (const Told& told : run.listener.events())
            expect(told.event >= 1 && told.event <= 4, "an event of types " + types, "1 to 4",
                   shown(told.event));
    });
}

void giveNoReason(HostLibrary& host) {
    withEachRun(host, [](const Run& run, const std::string& types) {
        for (const Told& told : run.listener.events()) {
            if (told.event == KOR::taskEventFailed) continue;
            expectEqual("the reason in event " + shown(told.event) + " of types " + types,
                        told.reason, "");
            expectEqual("its code", told.reasonCode, 0);
        }
    });
}

void addNoReference(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    std::uint32_t inside = 0;
    run.listener.doInside([&](const Told& told) {
        if (told.isLast()) inside = told.sender->refCount();
    });
    run.finish();
    expectEqual("refCount() of the sender inside its last event", inside, 1);
}

void comeFromRunsOnly(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1, 9}, video.source);
    run.setMode(KOR::parameterModeExplicit);
    run.setRanges({{0, second}});
    run.setBlock(KOR::SceneParameters{1, 3, 0});
    run.task->setTaskName("name");
    run.task->setPriority(50);
    run.task->getState();
    expectEqual("the events before a start", run.listener.events().size(), std::size_t{0});
    run.finish();
    const std::size_t count = run.listener.events().size();
    run.count(KOR::analysisTypeScene);
    run.analysis.setSource(video.source, 0, 0);
    expectEqual("the events after setSource() behind the end", run.listener.events().size(), count);
}

void survivesPause(HostLibrary& host) {
    const Material video = host.video();
    Flag isPaused;
    Run run(host, {1}, video.source);
    run.listener.doInside([&](const Told& told) {
        if (told.event == KOR::taskEventProgress) holdUntil(isPaused);
    });
    run.start();
    run.listener.waitForProgress();
    const KOR::Status status = run.task->pause();
    isPaused.set();
    if (status == KOR::statusOk) {
        expectEqual("resume() of a paused run", run.task->resume(), KOR::statusOk);
    }
    run.listener.waitForEnd();
    expectEqual("the events", run.listener.milestones(), finished);
}

}  // namespace

const std::vector<HostCheck> eventChecks = {
    {"events.end-with-finished",
     "A run of any type on a video or a photo ends with one event 2, behind progress only.",
     endWithFinished},
    {"events.tell-progress", "Progress lies between 0 and 100.", tellProgress},
    {"events.name-their-sender", "The sender of an event is the task, and its category is 1.",
     nameSender},
    {"events.are-known", "There are no events but 1 to 4.", areKnown},
    {"events.give-no-reason", "Events other than 3 carry no reason.", giveNoReason},
    {"events.add-no-reference", "An event names its sender without a reference.", addNoReference},
    {"events.come-from-runs-only", "Neither before a run nor after it does a task send an event.",
     comeFromRunsOnly},
    {"events.survive-a-pause",
     "A run that is paused and resumed, or whose pause is refused, ends as usual.", survivesPause},
};

}  // namespace validator
