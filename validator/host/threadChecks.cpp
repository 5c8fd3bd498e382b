#include <atomic>
#include <memory>
#include <thread>

#include "validator/check/onThreads.h"
#include "validator/host/Flag.h"
#include "validator/host/Run.h"
#include "validator/host/footage.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

void tellOneAtATime(HostLibrary& host) {
    const Material video = host.video();
    Flag isStopping;
    Listener& listener = *new Listener;
    Run run(host, {1}, video.source);
    run.listener.doInside([&](const Told& told) {
        if (told.event != KOR::taskEventProgress) return;
        holdUntil(isStopping);
        std::this_thread::sleep_for(linger);
    });
    run.task->addCallBack(&listener);
    run.start();
    run.listener.waitForProgress();
    isStopping.set();
    expectReturn("stop()", [&] { run.task->stop(); });
    expect(!run.listener.hasOverlapped() && !listener.hasOverlapped(), "the events of one task",
           "one at a time", "two at once");
}

void runOnSeveral(HostLibrary& host) {
    const Material video = host.video();
    const Material photo = host.photo();
    Run scenes(host, {1, 9}, video.source);
    Run pictures(host, {3, 8}, photo.source);
    Flag isOther;
    // The first run is held until the second one has ended.
    scenes.listener.doInside([&](const Told& told) {
        if (told.event == KOR::taskEventProgress) holdUntil(isOther);
    });
    scenes.start();
    scenes.listener.waitForProgress();
    pictures.finish();
    isOther.set();
    scenes.listener.waitForEnd();
    expectEqual("the events of one task", scenes.listener.milestones(), finished);
    expectEqual("the events of the other task", pictures.listener.milestones(), finished);
    expect(scenes.count(1) > 0, "the scenes", "at least one", "none");
    expectEqual("the entropy samples of the photo", pictures.count(8), 1);
}

void runOnOne(HostLibrary& host) {
    const Material video = host.video();
    Run alone(host, {1}, video.source);
    alone.finish();
    std::vector<std::unique_ptr<Run>> runs;
    for (int i = 0; i < 4; ++i) {
        runs.push_back(std::make_unique<Run>(host, Types{1}, video.source));
        runs.back()->start();
    }
    for (const auto& run : runs) {
        run->listener.waitForEnd();
        expectEqual("the events of one of four tasks", run->listener.milestones(), finished);
        expectEqual("the scenes of one of four tasks", run->count(1), alone.count(1));
    }
}

/// The number of scenes of a run that nothing disturbs.
std::int64_t usualScenes(const HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    run.finish();
    return run.count(1);
}

void holdSource(HostLibrary& host) {
    const std::int64_t expected = usualScenes(host);
    Material video = host.video();
    Flag isGone;
    Run run(host, {1}, video.source);
    run.listener.doInside([&](const Told& told) {
        if (told.event == KOR::taskEventProgress) holdUntil(isGone);
    });
    run.start();
    run.listener.waitForProgress();
    expectEqual("the last release() of the material", video.object.release()->release(), 0);
    isGone.set();
    run.listener.waitForEnd();
    expectEqual("the events of a run whose material goes", run.listener.milestones(), finished);
    expectEqual("the scenes of a run whose material goes", run.count(1), expected);
}

void holdSourceBeforeStart(HostLibrary& host) {
    const std::int64_t expected = usualScenes(host);
    Material video = host.video();
    Run run(host, {1}, video.source);
    video.object.reset();
    run.finish();
    expectEqual("the events of a run whose material went before", run.listener.milestones(),
                finished);
    expectEqual("the scenes of a run whose material went before", run.count(1), expected);
}

void answerInside(HostLibrary& host) {
    const Material video = host.video();
    const std::int64_t duration = video.media->getDuration();
    const std::string cache = video.cache();
    Run run(host, {1, 9}, video.source);
    run.listener.doInside([&](const Told&) {
        expectEqual("getDuration() inside an event", video.media->getDuration(), duration);
        expectEqual("media_cache inside an event", video.cache(), cache);
    });
    run.finish();
    expectEqual("the events", run.listener.milestones(), finished);
}

void driveOnThreads(HostLibrary& host) {
    const Material video = host.video();
    constexpr int times = 5;
    std::atomic<int> ended = 0;
    onThreads([&](int) {
        try {
            for (int i = 0; i < times; ++i) {
                Run run(host, {1, 9}, video.source);
                run.finish();
                if (run.listener.milestones() == finished && run.count(1) > 0) ++ended;
            }
        } catch (const Failure&) {
            // It has not counted.
        }
    });
    expectEqual("runs on four threads that ended well", ended.load(), threadCount * times);
}

}  // namespace

const std::vector<HostCheck> threadChecks = {
    {"threads.tell-one-event-at-a-time",
     "A task never tells two events at a time, whatever other threads do with it.", tellOneAtATime},
    {"threads.run-on-two-materials", "Two tasks run at once on two materials.", runOnSeveral},
    {"threads.run-on-one-material", "Several tasks run at once on the same material.", runOnOne},
    {"threads.hold-the-source", "A run goes on when its material is given back meanwhile.",
     holdSource},
    {"threads.hold-the-source-before-start",
     "A task keeps its source when the material is given back before the start.",
     holdSourceBeforeStart},
    {"threads.answer-inside-events", "Materials answer inside the events of their runs.",
     answerInside},
    {"threads.drive-on-threads", "Several threads may each make, run and release tasks.",
     driveOnThreads},
};

}  // namespace validator
