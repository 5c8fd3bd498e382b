#include <algorithm>
#include <filesystem>

#include "validator/component/groups.h"
#include "validator/component/runs.h"

namespace validator {
namespace {

const std::string noCache = R"(log restoreMaterialAnalysisResult: "mediaCache path is empty")";

void startsFirstTask(Stage& stage) {
    stage.insert(clip("a.mp4"));
    stage.insert(clip("b.mp4"));
    useKindsQuietly(stage, {4, 3});
    stage.component().start();
    expectLines(
        "what start() did", stage.journal(),
        {noCache, "task0.setSource(a.mp4, 0, 0)", "task0.setPriority(100)",
         "task0.setParameterMode(1)", "task0.setParameterBlock(1, 1.0, 3.0, 0)", "task0.start",
         R"(log startScenceDetect: "----Start Scence Detect:---素材idx---0\n")"});
}

void startsNextTaskInsideFinish(Stage& stage) {
    stage.insert(clip());
    useKindsQuietly(stage, {4, 3});
    stage.component().start();
    stage.journal();
    stage.task(0).finish();
    expectLines(
        "what the finish led to", stage.journal(),
        {"task0.getResultList(1, 0, list, 0)",
         R"(log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n")",
         "task1.setSource(clip.mp4, 0, 0)", "task1.setPriority(100)", "task1.setParameterMode(1)",
         "task1.setSceneRanges([0, 400000000) [410000000, 1000000000))", "task1.start",
         R"(log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n")"});
}

void runsInOrder(Stage& stage) {
    for (const char* const name : {"a.mp4", "b.mp4", "c.mp4"})
        stage.insert(clip(name));
    useKindsQuietly(stage, {4, 3, 1});
    stage.runToEnd();
    expectLines("the starts", startsSinceLastLook(stage),
                {"task0 a.mp4", "task1 a.mp4", "task2 a.mp4", "task0 b.mp4", "task1 b.mp4",
                 "task2 b.mp4", "task0 c.mp4", "task1 c.mp4", "task2 c.mp4"});
}

void runsOneTaskAtATime(Stage& stage) {
    stage.insert(clip("a.mp4"));
    stage.insert(clip("b.mp4"));
    useKindsQuietly(stage, {4, 3, 1, 5});
    int most = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        stage.task(i).onCall("start", [&] {
            int running = 0;
            for (std::size_t other = 0; other < 4; ++other)
                running += stage.task(other).running() ? 1 : 0;
            most = std::max(most, running);
        });
    }
    stage.runToEnd();
    expectEqual("the most tasks that ran at once", most, 1);
}

void endsAtOnceWithoutMaterials(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    useKindsQuietly(stage, {4, 3});
    expectEqual("start()", stage.component().start(), KOR::statusOk);
    expectLines("what start() did", stage.journal(),
                {R"(log finishedAllAnalysis: "auto trim result: \n")", "listener: event 2, 100"});
}

void tellsEndOnce(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.insert(photo("photo.jpg"));
    stage.useKinds({4, 3});
    stage.runToEnd();
    expectEqual("the events", listener.events(), Events{2});
    expectEqual("the percentage of the end", listener.lastProgress(), 100);
}

void endsWithTheEvent(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    useKindsQuietly(stage, {4, 3});
    stage.runToEnd();
    const Lines lines = stage.journal();
    expectEqual("the last thing of the run", lastOf("lines", lines), "listener: event 2, 100");
    expectEqual("lines after the end", stage.journal().size(), std::size_t{0});
    expectNull("a task that runs after the end", host().runningTask());
}

void hasRecordsAtItsEnd(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    Lines records;
    onceInside(listener, [&] { records = recordLines(stage); });
    stage.runToEnd();
    expectLines("the records inside event 2", records,
                {"clip.mp4 [0, 400000000) at 100000000: 0.12000000029999999 {0.0, 0.0, 0.0, 0.0}",
                 "clip.mp4 [410000000, 1000000000) at 600000000: 0.1770000003 "
                 "{0.0, 0.0, 0.0, 0.0}"});
}

void runsAgainAlike(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip("a.mp4"));
    stage.insert(clip("b.mp4"));
    useKindsQuietly(stage, {4, 3, 1});
    stage.runToEnd();
    const Lines first = stage.journal();
    stage.runToEnd();
    expectLines("the second run", stage.journal(), first);
}

void forgetsRecords(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    stage.runToEnd();
    expectEqual("records of the first run", stage.results().size(), std::size_t{2});
    stage.component().start();
    std::size_t records = 1;
    insideProgress(listener, [&] { records = stage.results().size(); });
    expectEqual("records once the second run has begun", records, std::size_t{0});
    host().finishAllTasks();
    expectEqual("records of the second run", stage.results().size(), std::size_t{2});
}

/// What tasks are handed when a second run begins with one that takes what others have found.
void expectHandedInSecondRun(Stage& stage, const std::vector<std::int32_t>& kinds,
                             const std::string& expected) {
    stage.insert(clip());
    stage.useKinds(kinds);
    stage.runToEnd();
    stage.journal();
    stage.component().start();
    const std::string operation = expected.substr(0, expected.find('('));
    expectLines("what the second run hands to its first task", stage.journal(operation),
                {expected});
}

void forgetsRanking(Stage& stage) {
    stage.insert(clip());
    stage.useKinds({4, 3});
    stage.runToEnd();
    stage.component().start();
    stage.task(0).finish();
    // Without its interface nothing is taken in, and what was ranked last stands.
    stage.task(1).hideAnalysisInterface();
    stage.task(1).finish();
    expectLines("the records of the second run", recordLines(stage), {});
}

void handsOnKeyFrames(Stage& stage) {
    stage.insert(clip("a.mp4"));
    stage.insert(clip("b.mp4"));
    useKindsQuietly(stage, {2, 4, 3});
    stage.runToEnd();
    expectLines(
        "the positions for blur", stage.journal("task0.setKeyFramePositions"),
        {"task0.setKeyFramePositions()", "task0.setKeyFramePositions(100000000, 600000000)"});
}

void handsOnScenes(Stage& stage) {
    stage.insert(clip("a.mp4"));
    stage.insert(clip("b.mp4"));
    useKindsQuietly(stage, {3, 4});
    stage.runToEnd();
    expectLines(
        "the scenes for keyframes", stage.journal("task0.setSceneRanges"),
        {"task0.setSceneRanges()", "task0.setSceneRanges([0, 400000000) [410000000, 1000000000))"});
}

void readsNothingOfBlur(Stage& stage) {
    stage.insert(clip());
    useKindsQuietly(stage, {2, 4});
    stage.component().start();
    stage.journal();
    stage.task(0).finish();
    expectLines(
        "what the finish of blur led to", stage.journal(),
        {"task1.setSource(clip.mp4, 0, 0)", "task1.setPriority(100)", "task1.setParameterMode(1)",
         "task1.setParameterBlock(1, 1.0, 3.0, 0)", "task1.start",
         R"(log startScenceDetect: "----Start Scence Detect:---素材idx---0\n")"});
}

void collectsAfterBlur(Stage& stage) {
    stage.insert(clip());
    stage.useKinds({4, 3, 2});
    stage.runToEnd();
    expectLines("the records", recordLines(stage),
                {"clip.mp4 [0, 400000000) at 100000000: 0.12000000029999999 {0.0, 0.0, 0.0, 0.0}",
                 "clip.mp4 [410000000, 1000000000) at 600000000: 0.1770000003 "
                 "{0.0, 0.0, 0.0, 0.0}"});
}

void collectsNothingOfOneKind(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip().cacheIn(stage.directory()));
    stage.useKinds({6});
    stage.runToEnd();
    expectEqual("the events", listener.events(), Events{2});
    expectLines("the records", recordLines(stage), {});
    expect(!std::filesystem::exists(stage.resultFile()), "the result file", "none", "a file");
}

void collectsAfterTheLastTaskOnly(Stage& stage) {
    stage.insert(clip());
    stage.useKinds({4, 3, 5});
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.component().start();
    stage.task(0).finish();
    stage.task(1).finish();
    std::size_t records = 1;
    insideProgress(listener, [&] { records = stage.results().size(); });
    expectEqual("records before the last task", records, std::size_t{0});
    stage.task(2).finish();
    expectEqual("records after the last task", stage.results().size(), std::size_t{2});
}

void pairsKindsWithEarlierTasks(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4});
    useKindsQuietly(stage, {3});
    stage.component().start();
    expectLines("the start", stage.journal("task"),
                {"task0.setSource(clip.mp4, 0, 0)", "task0.setPriority(100)",
                 "task0.setParameterMode(1)", "task0.setSceneRanges()", "task0.start"});
    stage.task(0).finish();
    expectLines("starts of the task without a kind", startsSinceLastLook(stage), {});
    expectEqual("the events", listener.events(), Events{});
}

void pairsKindsBehindAMissingTask(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    host().faults.failMaking(Product::task, 2);
    useKindsQuietly(stage, {4, 3, 1});
    stage.component().start();
    stage.task(0).finish();
    stage.journal();
    // The face task stands where the keyframe task would: it is told to find keyframes.
    stage.task(1).finish();
    expectLines("the finish of the second task", stage.journal("log keyFrameDetectFinished:"),
                {R"(log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n")"});
    expectEqual("the events", listener.events(), Events{2});
}

void keepsItsState(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    expectEqual("getState() before the run", stage.component().getState(), 0);
    stage.component().start();
    stage.task(0).finish();
    std::uint32_t state = 1;
    insideProgress(listener, [&] { state = stage.component().getState(); });
    expectEqual("getState() during the run", state, 0);
    stage.task(1).finish();
    expectEqual("getState() after the run", stage.component().getState(), 0);
}

void takesRestoredAsDone(Stage& stage) {
    stage.insert(clip("a.mp4").cacheIn(stage.directory()));
    stage.insert(clip("b.mp4"));
    stage.useKinds({4, 3});
    stage.runToEnd();
    const Lines records = recordLines(stage);
    stage.journal();
    stage.runToEnd();
    expectLines("the starts of the second run", startsSinceLastLook(stage),
                {"task0 b.mp4", "task1 b.mp4"});
    expectLines("the records of the second run", recordLines(stage), records);
}

void logsDoublesShortly(Stage& stage) {
    stage.insert(video("clip.mp4", 100 * second)
                     .scenes({{0, 1}, {10, 10 + 50 * second}})
                     .keyFrames({0, 20}));
    stage.setParam("minScenceDuration", 0);
    stage.useKinds({4, 3});
    stage.runToEnd();
    Lines ends = stage.logTexts();
    std::erase_if(ends, [](const std::string& text) { return !text.starts_with("fileName: "); });
    expectLines("the lines of the records", ends,
                {"fileName: clip.mp4 begin: 0 end: 1 keyframe pos: 0 socre: 6e-10 face rect: "
                 "{0000} \n",
                 "fileName: clip.mp4 begin: 10 end: 500000010 keyframe pos: 20 socre: 0.15 face "
                 "rect: {0000} \n"});
}

void logsRecordsAtItsEnd(Stage& stage) {
    stage.insert(shownPhoto("a.jpg", 50));
    stage.insert(video("b.mp4", 2 * second));
    stage.runToEnd();
    expectEqual("the log", stage.logTexts(),
                Lines{"auto trim result: \n",
                      "fileName: a.jpg begin: 0 end: 50 keyframe pos: 25 socre: 1 face rect: "
                      "{0000} \n",
                      "fileName: b.mp4 begin: 0 end: 20000000 keyframe pos: 10000000 socre: 1 face "
                      "rect: {0000} \n"});
}

}  // namespace

const std::vector<ComponentCheck> runChecks = {
    {"run.starts-first-task-on-first-material",
     "start() prepares and starts the first task on the first material, and does nothing else.",
     startsFirstTask},
    {"run.start-gives-0", "start() returns 0 when the first task could be started.",
     [](Stage& stage) {
         stage.insert(clip());
         stage.useKinds({4, 3});
         expectEqual("start()", stage.component().start(), KOR::statusOk);
     }},
    {"run.starts-next-task-inside-finish",
     "When a task has finished, its results are taken in and the next task is started before its "
     "event returns.",
     startsNextTaskInsideFinish},
    {"run.goes-from-task-to-task-and-on", "Every task runs on a material before the next one does.",
     runsInOrder},
    {"run.has-one-task-at-a-time", "No task is started while another one runs.",
     runsOneTaskAtATime},
    {"run.ends-at-once-without-materials",
     "A run over no materials ends inside start(), which returns 0.", endsAtOnceWithoutMaterials},
    {"run.tells-its-end-once", "A run tells its end exactly once, by event 2 with 100 percent.",
     tellsEndOnce},
    {"run.does-nothing-behind-its-end", "Nothing follows the event that tells a run's end.",
     endsWithTheEvent},
    {"run.has-its-records-at-its-end", "getResults() gives all records inside the end's event.",
     hasRecordsAtItsEnd},
    {"run.logs-its-records-at-its-end", "The end of a run logs every record, in their order.",
     logsRecordsAtItsEnd},
    {"run.logs-doubles-shortly",
     "In the line of a record doubles have up to six digits, with an exponent where they need one.",
     logsDoublesShortly},
    {"run.can-follow-a-run", "A second run does what the first did, from the first material on.",
     runsAgainAlike},
    {"run.forgets-records-at-start", "start() forgets the records of the run before.",
     forgetsRecords},
    {"run.forgets-keyframes-at-start",
     "start() forgets keyframes: a first task that looks at pictures is handed none.",
     [](Stage& stage) {
         expectHandedInSecondRun(stage, {1, 4, 3}, "task0.setKeyFramePositions()");
     }},
    {"run.forgets-scenes-at-start",
     "start() forgets scenes: a first task that finds keyframes is handed none.",
     [](Stage& stage) {
         expectHandedInSecondRun(stage, {3, 4}, "task0.setSceneRanges()");
     }},
    {"run.forgets-ranking-at-start",
     "start() forgets the best keyframes: where none are taken in, there are no records.",
     forgetsRanking},
    {"run.hands-on-keyframes",
     "Until a material's own keyframes are known, tasks get the best ones of the material before.",
     handsOnKeyFrames},
    {"run.hands-on-scenes",
     "Until a material's own scenes are known, tasks get those of the material before.",
     handsOnScenes},
    {"run.reads-nothing-of-blur",
     "A blur task that has finished is asked for nothing and logged nowhere; the next task runs.",
     readsNothingOfBlur},
    {"run.collects-after-blur",
     "Records are made after a material's last task even when that one looks for blur.",
     collectsAfterBlur},
    {"run.collects-nothing-of-one-kind",
     "With one kind alone a video gets no record and no result file.", collectsNothingOfOneKind},
    {"run.collects-after-the-last-task",
     "A video's records are made when its last task has finished, and not before.",
     collectsAfterTheLastTaskOnly},
    {"run.pairs-kinds-with-earlier-tasks",
     "After a second setAnalysisKinds() its kinds go to the tasks of the first one, and a task "
     "without a kind is not started.",
     pairsKindsWithEarlierTasks},
    {"run.pairs-kinds-behind-a-missing-task",
     "Where the host gave no task for a kind, each later task runs as the kind before its own.",
     pairsKindsBehindAMissingTask},
    {"run.takes-restored-videos-as-done",
     "A video whose result file fits starts no task and keeps its records.", takesRestoredAsDone},
    {"run.keeps-its-state-0", "getState() is 0 before, during and after a run.", keepsItsState},
};

}  // namespace validator
