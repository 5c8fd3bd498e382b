#include <thread>

#include "validator/component/groups.h"
#include "validator/component/runs.h"

namespace validator {
namespace {

/// A run over two videos whose first task runs.
struct Running {
    explicit Running(Stage& theStage) : stage(theStage) {
        stage.component().addCallBack(&listener);
        stage.insert(clip("a.mp4"));
        stage.insert(clip("b.mp4"));
        stage.useKinds({4, 3, 1});
        stage.component().start();
        stage.journal();
    }

    void stop() const { expectEqual("stop()", stage.component().stop(), KOR::statusOk); }

    Stage& stage;
    RecordingListener listener;
};

void givesZero(Stage& stage) {
    expectEqual("stop() without tasks", stage.component().stop(), KOR::statusOk);
    stage.insert(clip());
    stage.useKinds({4, 3});
    expectEqual("stop() before a run", stage.component().stop(), KOR::statusOk);
    stage.component().start();
    expectEqual("stop() during a run", stage.component().stop(), KOR::statusOk);
    expectEqual("stop() after a stop", stage.component().stop(), KOR::statusOk);
    stage.runToEnd();
    expectEqual("stop() after a run", stage.component().stop(), KOR::statusOk);
}

void stopsEveryTask(Stage& stage) {
    const Running run(stage);
    run.stop();
    expectLines("what stop() did", stage.journal(),
                {"task0.stop", "listener: event 4, 0", "task1.stop", "task2.stop"});
}

void stopsPastFailures(Stage& stage) {
    const Running run(stage);
    for (std::size_t i = 0; i < 3; ++i)
        stage.task(i).answer("stop", KOR::statusFailed);
    run.stop();
    expectLines("what stop() did", stage.journal("task"),
                {"task0.stop", "task1.stop", "task2.stop"});
}

void tellsNothingItself(Stage& stage) {
    const Running run(stage);
    stage.task(0).stopSilently();
    run.stop();
    expectEqual("the events", run.listener.events(), Events{});
}

void ignoresFinishBehind(Stage& stage) {
    const Running run(stage);
    run.stop();
    stage.journal();
    stage.task(0).finish();
    expectLines("what the finish led to", stage.journal(), {});
}

void rescalesProgressBehind(Stage& stage) {
    const Running run(stage);
    run.stop();
    stage.task(0).progress(40);
    expectEqual("the events", run.listener.events(), Events{4, 1});
    expectEqual("the percentage", run.listener.lastProgress(), 6);
}

void passesOnBehind(Stage& stage) {
    const Running run(stage);
    run.stop();
    KOR::TaskEventPayload payload{};
    stage.task(0).send(1, 3, &payload);
    stage.task(0).send(1, 4, &payload);
    expectEqual("the events", run.listener.events(), Events{4, 3, 4});
    expectSame("the payload of event 3", run.listener.heard()[1].payloadAddress, &payload);
    expectSame("the payload of event 4", run.listener.heard()[2].payloadAddress, &payload);
}

void comesToNoEnd(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4});
    stage.component().start();
    stage.component().stop();
    stage.task(0).finish();
    expectEqual("the events", listener.events(), Events{4});
    for (const std::string& text : stage.logTexts())
        expectEqual("the log tells of the end", text.starts_with("auto trim result"), false);
}

void keepsRecords(Stage& stage) {
    const Running run(stage);
    for (std::size_t i = 0; i < 3; ++i)
        stage.task(i).finish();
    run.stop();
    expectLines("the records", recordLines(stage),
                {"a.mp4 [0, 400000000) at 100000000: 0.12000000029999999 {0.0, 0.0, 0.0, 0.0}",
                 "a.mp4 [410000000, 1000000000) at 600000000: 0.1770000003 {0.0, 0.0, 0.0, 0.0}"});
}

void allowsAnotherRun(Stage& stage) {
    const Running run(stage);
    stage.task(0).finish();
    run.stop();
    stage.journal();
    stage.runToEnd();
    expectLines(
        "the starts", startsSinceLastLook(stage),
        {"task0 a.mp4", "task1 a.mp4", "task2 a.mp4", "task0 b.mp4", "task1 b.mp4", "task2 b.mp4"});
    expectEqual("the events", run.listener.events(), Events{4, 2});
}

void cancelsNoLaterRun(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    stage.component().stop();
    expectEqual("start()", stage.component().start(), KOR::statusOk);
    host().finishAllTasks();
    expectEqual("the events", listener.events(), Events{2});
}

void harmsNoEndedRun(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    stage.runToEnd();
    const Lines before = recordLines(stage);
    stage.component().stop();
    expectLines("the records", recordLines(stage), before);
    expectEqual("the events", listener.events(), Events{2});
}

void worksFromAnotherThread(Stage& stage) {
    const Running run(stage);
    KOR::Status answer = KOR::statusFailed;
    std::thread([&] { answer = stage.component().stop(); }).join();
    expectEqual("stop()", answer, KOR::statusOk);
    expectLines("what stop() did", stage.journal(),
                {"task0.stop", "listener: event 4, 0", "task1.stop", "task2.stop"});
    stage.task(0).finish();
    expectLines("what a finish behind it led to", stage.journal(), {});
}

void worksInsideTaskStart(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    stage.task(0).onCall("start", [&] { stage.component().stop(); });
    stage.component().start();
    expectEqual("the task is running", stage.task(0).running(), false);
    stage.journal();
    stage.task(0).finish();
    expectLines("what a finish behind it led to", stage.journal(), {});
    expectEqual("the events", listener.events(), Events{4});
}

void countsBeforeTasksStop(Stage& stage) {
    const Running run(stage);
    // It comes to its end by itself, right before it would be stopped.
    stage.task(0).stopSilently();
    stage.task(0).onCall("stop", [&] { stage.task(0).finish(); });
    run.stop();
    expectLines("what stop() did", stage.journal(), {"task0.stop", "task1.stop", "task2.stop"});
}

void keepsNextTaskFromStarting(Stage& stage) {
    const Running run(stage);
    stage.task(0).onCall("getResultList", [&] { stage.component().stop(); });
    stage.task(0).finish();
    expectLines("the starts", startsSinceLastLook(stage), {});
    expectEqual("the events", run.listener.events(), Events{});
}

void letsFinishedTaskCount(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip("a.mp4").cacheIn(stage.directory()));
    stage.insert(photo("b.jpg"));
    stage.insert(video("c.mp4", second));
    stage.useKinds({4, 3});
    stage.component().start();
    stage.task(0).finish();
    stage.task(1).onCall("getResultList", [&] { stage.component().stop(); });
    stage.task(1).finish();
    expectLines("the records", recordLines(stage),
                {"a.mp4 [0, 400000000) at 100000000: 0.12000000029999999 {0.0, 0.0, 0.0, 0.0}",
                 "a.mp4 [410000000, 1000000000) at 600000000: 0.1770000003 {0.0, 0.0, 0.0, 0.0}",
                 "b.jpg [0, 1) at 0: 1.0 {0.0, 0.0, 0.0, 0.0}",
                 "c.mp4 [0, 10000000) at 5000000: 1.0 {0.0, 0.0, 0.0, 0.0}"});
    expectEqual("the events", listener.events(), Events{2});
    expect(!stage.resultText().empty(), "the result file", "a text", "none");
}

void keepsFirstTaskFromStarting(Stage& stage) {
    FakeMedia& material = stage.insert(clip());
    useKindsQuietly(stage, {4, 3});
    material.onTypeQuery = [&] { stage.component().stop(); };
    expectEqual("start()", stage.component().start(), KOR::statusFailed);
    material.onTypeQuery = nullptr;
    expectLines("the starts", startsSinceLastLook(stage), {});
}

void stopsTasksEachTime(Stage& stage) {
    const Running run(stage);
    run.stop();
    stage.journal();
    run.stop();
    expectLines("what the second stop() did", stage.journal(),
                {"task0.stop", "task1.stop", "task2.stop"});
}

}  // namespace

const std::vector<ComponentCheck> stopChecks = {
    {"stop.gives-0", "stop() returns 0 at any time.", givesZero},
    {"stop.stops-every-task",
     "stop() stops every task in the order of their kinds, whether or not it runs.",
     stopsEveryTask},
    {"stop.goes-past-failures", "Tasks that cannot be stopped change nothing about stop().",
     stopsPastFailures},
    {"stop.tells-nothing-itself", "stop() tells the listeners only what its tasks say.",
     tellsNothingItself},
    {"stop.ignores-finish-behind-it", "A finish that comes behind stop() leads to nothing.",
     ignoresFinishBehind},
    {"stop.rescales-progress-behind-it", "Progress that comes behind stop() is told of as ever.",
     rescalesProgressBehind},
    {"stop.passes-on-events-behind-it",
     "Events 3 and 4 that come behind stop() are passed on as they are.", passesOnBehind},
    {"stop.comes-to-no-end", "A run that was stopped neither tells nor logs its end.",
     comesToNoEnd},
    {"stop.keeps-records", "stop() keeps the records of the materials that are done.",
     keepsRecords},
    {"stop.allows-another-run", "After stop() a run can start, from the first material on.",
     allowsAnotherRun},
    {"stop.cancels-no-later-run", "stop() without a run does not cancel the next one.",
     cancelsNoLaterRun},
    {"stop.harms-no-ended-run", "After a run's end stop() changes nothing and tells nothing.",
     harmsNoEndedRun},
    {"stop.works-from-another-thread", "stop() may come from another thread.",
     worksFromAnotherThread},
    {"stop.works-inside-task-start", "stop() inside the start of a task cancels the run.",
     worksInsideTaskStart},
    {"stop.counts-before-tasks-stop",
     "A task that finishes while stop() is about to stop it leads to nothing more.",
     countsBeforeTasksStop},
    {"stop.keeps-next-task-from-starting",
     "When stop() comes while results are taken in, the next task is not started.",
     keepsNextTaskFromStarting},
    {"stop.lets-a-finished-task-count",
     "When stop() comes while the last results are taken in, they are kept and written, the "
     "materials that need no task get their records, and the run tells its end.",
     letsFinishedTaskCount},
    {"stop.keeps-first-task-from-starting",
     "When stop() comes while the first material is chosen, start() starts nothing and returns "
     "1001.",
     keepsFirstTaskFromStarting},
    {"stop.stops-tasks-each-time", "A second stop() stops every task once more.",
     stopsTasksEachTime},
};

}  // namespace validator
