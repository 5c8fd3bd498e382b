#include "validator/host/Flag.h"
#include "validator/host/HeldRun.h"
#include "validator/host/Run.h"
#include "validator/host/footage.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

void isRefusedWhileRunning(HostLibrary& host) {
    const Material video = host.video();
    Flag isTried;
    Run run(host, {1}, video.source);
    run.listener.doInside([&](const Told& told) {
        if (told.event == KOR::taskEventProgress) holdUntil(isTried);
    });
    run.start();
    run.listener.waitForProgress();
    expectReturn("start()", [&] {
        expectEqual("start() while a run is on", run.task->start(), KOR::statusFailed);
    });
    isTried.set();
    run.listener.waitForEnd();
    expectEqual("the events", run.listener.milestones(), finished);
}

void isRefusedInsideProgress(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    run.listener.doInside([&](const Told& told) {
        if (told.event != KOR::taskEventProgress) return;
        expectEqual("start() inside progress", run.task->start(), KOR::statusFailed);
    });
    run.start();
    run.listener.waitForProgress();
    run.listener.waitForEnd();
    expectEqual("the events", run.listener.milestones(), finished);
    expect(run.count(1) > 0, "the scenes", "at least one", "none");
}

void isAllowedAfterTheEnd(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    run.finish();
    const std::int64_t count = run.count(1);
    for (const std::size_t times : {2U, 3U}) {
        run.start();
        run.listener.waitForEnd(times);
        expectEqual("the scenes of another run", run.count(1), count);
    }
    expectEqual("the events of three runs", run.listener.milestones(), Milestones{2, 2, 2});
}

void insideFinished(HostLibrary& host) {
    const Material video = host.video();
    constexpr std::size_t runs = 5;
    std::size_t started = 1;
    Run run(host, {1}, video.source);
    run.listener.doInside([&](const Told& told) {
        if (!told.isLast() || started == runs) return;
        ++started;
        expectEqual("setSource() inside event 2", run.analysis.setSource(video.source, 0, 0),
                    KOR::statusOk);
        expectEqual("start() inside event 2", run.task->start(), KOR::statusOk);
    });
    run.start();
    run.listener.waitForEnd(runs);
    expectEqual("the events of five runs", run.listener.milestones(), Milestones(runs, 2));
    expect(!run.listener.hasOverlapped(), "the events", "one at a time", "two at once");
}

void insideStopped(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    bool isStopped = false;
    run.listener.doInside([&](const Told& told) {
        if (told.event == KOR::taskEventProgress && !isStopped) {
            isStopped = true;
            run.task->stop();
        }
        if (told.event != KOR::taskEventStopped) return;
        expectEqual("start() inside event 4", run.task->start(), KOR::statusOk);
    });
    run.start();
    run.listener.waitForProgress();
    run.listener.waitForEnd(2);
    expectEqual("the events of both runs", run.listener.milestones(), Milestones{4, 2});
}

void behindStopInside(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    bool isStopped = false;
    run.listener.doInside([&](const Told& told) {
        if (told.event != KOR::taskEventProgress || isStopped) return;
        isStopped = true;
        run.task->stop();
        expectEqual("start() behind stop() inside progress", run.task->start(), KOR::statusOk);
    });
    run.start();
    run.listener.waitForProgress();
    run.listener.waitForEnd(2);
    const auto events = run.listener.events();
    expectEqual("the event behind the one in which the run was stopped",
                elementOf("events", events, 1).event, std::uint32_t{KOR::taskEventStopped});
    expectEqual("the events of both runs", run.listener.milestones(), Milestones{4, 2});
    expect(run.count(1) > 0, "the scenes of the second run", "at least one", "none");
}

void afterStop(HostLibrary& host) {
    const Material video = host.video();
    withStopped(host, video.source, [&](HeldRun& held) {
        Run& run = held.run;
        expectEqual("setSource()", run.analysis.setSource(video.source, 0, 0), KOR::statusOk);
        run.start();
        run.listener.waitForEnd(2);
        expectEqual("the last event", lastOf("the events", run.listener.milestones()),
                    std::uint32_t{KOR::taskEventFinished});
        expect(run.count(1) > 0, "the scenes", "at least one", "none");
    });
}

void takesOtherSources(HostLibrary& host) {
    if (!host.hasOurVideo()) skip("there is no second video");
    const Material first = host.video();
    const Material second = host.material(footage::shortVideo(host.occasion().scratch));
    Run run(host, {1}, first.source);
    run.finish();
    expectEqual("the end of the last scene of the first", lastOf("scenes", run.scenes()).end,
                footage::videoTicks);
    run.analysis.setSource(second.source, 0, 0);
    run.start();
    run.listener.waitForEnd(2);
    expectEqual("the end of the last scene of the second", lastOf("scenes", run.scenes()).end,
                footage::shortVideoTicks);
}

void forgetsResults(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1, 9}, video.source);
    run.finish();
    expect(run.count(1) > 0, "the scenes", "at least one", "none");
    run.analysis.setSource(video.source, 0, 0);
    for (const std::int32_t kind : {1, 9})
        expectEqual("the results of kind " + shown(kind) + " after setSource()", run.count(kind),
                    0);
}

void forgetsResultsAtStart(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    bool isSecond = false;
    std::int64_t inside = 0;
    run.listener.doInside([&](const Told& told) {
        if (isSecond && told.event == KOR::taskEventProgress) inside += run.count(1);
    });
    run.finish();
    isSecond = true;
    run.start();
    run.listener.waitForEnd(2);
    expectEqual("the scenes inside the progress of the next run", inside, 0);
}

void forgetsBlocks(HostLibrary& host) {
    if (!host.hasOurVideo()) skip("what is in the video is not known");
    const Material video = host.video();
    Run run(host, {1}, video.source);
    run.setMode(KOR::parameterModeExplicit);
    run.setBlock(KOR::SceneParameters{1.0, 1e9, 0});
    run.analysis.setSource(video.source, 0, 0);
    run.setMode(KOR::parameterModeExplicit);
    run.finish();
    expectEqual("the scenes by a block of the source before", run.count(1), 3);
}

void forgetsMode(HostLibrary& host) {
    if (!host.hasOurVideo()) skip("what is in the video is not known");
    const Material video = host.video();
    Run run(host, {1}, video.source);
    run.setMode(KOR::parameterModeExplicit);
    run.analysis.setSource(video.source, 0, 0);
    run.setBlock(KOR::SceneParameters{1.0, 1e9, 0});
    run.finish();
    expectEqual("the scenes in the mode of the source before", run.count(1), 3);
}

void forgetsLists(HostLibrary& host) {
    const Material video = host.video();
    Run pictures(host, {8}, video.source);
    pictures.setPositions({0, second});
    pictures.analysis.setSource(video.source, 0, 0);
    pictures.finish();
    expectEqual("the results by the positions of the source before", pictures.count(8), 0);
    Run all(host, {9}, video.source);
    all.finish();
    Run run(host, {9}, video.source);
    run.setRanges({{0, second / 2}});
    run.analysis.setSource(video.source, 0, 0);
    run.finish();
    expectEqual("the keyframes by the ranges of the source before", run.keyFrames(),
                all.keyFrames());
}

}  // namespace

const std::vector<HostCheck> restartChecks = {
    {"restart.is-refused-while-running",
     "start fails while a run is on, sends nothing and leaves that run alone.",
     isRefusedWhileRunning},
    {"restart.is-refused-inside-progress", "So it does from inside an event of progress.",
     isRefusedInsideProgress},
    {"restart.after-the-end", "A task may be started again for the same source.",
     isAllowedAfterTheEnd},
    {"restart.inside-finished", "A task may be prepared and started again from inside event 2.",
     insideFinished},
    {"restart.inside-stopped", "A task may be started again from inside event 4.", insideStopped},
    {"restart.behind-stop-inside",
     "A run that is started behind stop inside an event comes behind event 4 of the one before.",
     behindStopInside},
    {"restart.after-stop", "A task that was stopped may be prepared and started again.", afterStop},
    {"restart.with-other-sources", "The same task runs for one source after another.",
     takesOtherSources},
    {"restart.source-forgets-results", "setSource forgets the results of the run before.",
     forgetsResults},
    {"restart.start-forgets-results", "start forgets the results of the run before.",
     forgetsResultsAtStart},
    {"restart.source-forgets-blocks", "setSource forgets the blocks that were set before.",
     forgetsBlocks},
    {"restart.source-forgets-mode", "setSource takes the mode back to the default one.",
     forgetsMode},
    {"restart.source-forgets-lists", "setSource forgets positions and ranges.", forgetsLists},
};

}  // namespace validator
