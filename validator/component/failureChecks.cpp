#include "validator/component/groups.h"
#include "validator/component/runs.h"

namespace validator {
namespace {

/// A component with a listener, a video with faces and entropies, and all that finds them.
struct Setting {
    explicit Setting(Stage& theStage, const std::vector<std::int32_t>& kinds = {4, 3, 1, 5})
        : stage(theStage) {
        stage.component().addCallBack(&listener);
        stage.insert(video("clip.mp4", 100 * second)
                         .scenes({{0, 40 * second}, {40 * second, 100 * second}})
                         .keyFrames({10 * second, 60 * second})
                         .faceFrames({KOR::FaceDetectFrame{}})
                         .entropies({{0, 8.0}}));
        useKindsQuietly(stage, kinds);
    }

    Stage& stage;
    RecordingListener listener;
};

/// Has a run with one fault come to its end, with a component of its own.
template <typename Break>
void expectEndDespite(Stage& stage, const std::string& fault, Break breakIt) {
    host().reset();
    {
        Setting setting(stage);
        breakIt();
        stage.runToEnd();
        expectEqual("the events, with " + fault, setting.listener.events(), Events{2});
        expectEqual("tasks started, with " + fault, host().startCount.load(), 4);
    }
    stage.releaseComponent();
    expectEqual("lists that are left, with " + fault, host().live.lists.load(), 0);
}

void bearsOneMissingList(Stage& stage) {
    for (const Product list : {Product::owningList, Product::pointerList, Product::longlongList}) {
        for (int nth = 1; nth <= 8; ++nth) {
            const std::string fault = "list " + std::to_string(nth) + " of a sort missing";
            expectEndDespite(stage, fault, [&] { host().faults.failMaking(list, nth); });
        }
    }
}

void bearsNoLists(Stage& stage) {
    expectEndDespite(stage, "no list at all", [] {
        for (const Product list :
             {Product::owningList, Product::pointerList, Product::longlongList})
            host().faults.failEveryMaking(list);
    });
}

void bearsFullLists(Stage& stage) {
    for (const Product list : {Product::owningList, Product::pointerList, Product::longlongList}) {
        expectEndDespite(stage, "lists that take nothing",
                         [&] { host().faults.failAppends(list); });
    }
}

void bearsFailingOperations(Stage& stage) {
    for (const char* const operation :
         {"setSource", "setPriority", "setParameterMode", "setSceneRanges", "setKeyFramePositions",
          "setParameterBlock", "getResultList"}) {
        expectEndDespite(stage, std::string(operation) + "() failing", [&] {
            for (std::size_t i = 0; i < 4; ++i)
                stage.task(i).answer(operation, KOR::statusFailed);
        });
    }
}

void losesWhatTheListHeld(Stage& stage) {
    const std::vector<std::pair<int, Lines>> recordsWithout = {
        {1, {"clip.mp4 [0, 1000000000) at 70: 0.7200000003 {0.0, 0.0, 0.0, 0.0}"}},
        {2, {}},
        {3, {"clip.mp4 [0, 900000000) at 70: 0.2700000003 {0.0, 0.0, 0.0, 0.0}"}},
    };
    stage.insert(video("clip.mp4", 100 * second)
                     .scenes({{0, 90 * second}})
                     .keyFrames({70})
                     .faceFrames({KOR::FaceDetectFrame{}}));
    stage.useKinds({4, 3, 1});
    for (const auto& [nth, expected] : recordsWithout) {
        host().faults.failMaking(Product::owningList, nth);
        stage.runToEnd();
        host().faults = Faults();
        expectLines("the records without list " + std::to_string(nth), recordLines(stage),
                    expected);
    }
}

void showsPreparationInStart(Stage& stage) {
    const std::vector<std::pair<const char*, std::int32_t>> steps = {{"setSource", 4},
                                                                     {"setParameterBlock", 4},
                                                                     {"setParameterBlock", 6},
                                                                     {"setSceneRanges", 3},
                                                                     {"setKeyFramePositions", 1},
                                                                     {"setKeyFramePositions", 2},
                                                                     {"setKeyFramePositions", 5},
                                                                     {"setKeyFramePositions", 7}};
    for (const auto& [operation, kind] : steps) {
        stage.releaseComponent();
        host().reset();
        const Setting setting(stage, {kind});
        stage.task(0).answer(operation, KOR::statusFailed);
        const std::string what = std::string("with ") + operation + "() failing";
        expectEqual("start(), " + what, stage.component().start(), KOR::statusFailed);
        expectEqual("the task runs, " + what, stage.task(0).running(), true);
        stage.component().stop();
    }
}

void startsDespiteMissingList(Stage& stage) {
    const std::vector<std::pair<Product, std::int32_t>> lists = {
        {Product::pointerList, 3}, {Product::longlongList, 1}, {Product::longlongList, 2}};
    for (const auto& [list, kind] : lists) {
        stage.releaseComponent();
        host().reset();
        const Setting setting(stage, {kind});
        host().faults.failEveryMaking(list);
        if (stage.component().start() == KOR::statusOk) {
            warn("start() returns 0 when a list for a task cannot be made");
        }
        expectEqual("the task runs", stage.task(0).running(), true);
        stage.component().stop();
    }
}

void showsRefusedTaskInStart(Stage& stage) {
    const Setting setting(stage);
    stage.task(0).answer("start", KOR::statusFailed);
    expectEqual("start()", stage.component().start(), KOR::statusFailed);
    expectEqual("the events", setting.listener.events(), Events{});
}

void recoversFromRefusedTask(Stage& stage) {
    const Setting setting(stage, {4, 3});
    stage.task(1).answer("start", KOR::statusFailed);
    stage.runToEnd();
    expectEqual("the events of a run whose second task is refused", setting.listener.events(),
                Events{});
    stage.task(1).answer("start", KOR::statusOk);
    expectEqual("stop()", stage.component().stop(), KOR::statusOk);
    stage.runToEnd();
    expectEqual("the events of the next run", setting.listener.events(), Events{2});
}

void startsWithoutSource(Stage& stage) {
    for (const bool isSourceMedia : {true, false}) {
        stage.component().clearMaterials();
        MediaSpec spec = video("clip.mp4", 100 * second);
        FakeMedia& material =
            stage.make(isSourceMedia ? spec.withoutSource() : spec.withoutSourceMedia());
        stage.component().insertMaterials(materialList({&material}).get(), 0);
        if (isSourceMedia) stage.useKinds({4});
        stage.journal();
        expectEqual("start()", stage.component().start(), KOR::statusFailed);
        expectLines(
            "the start", stage.journal("task"),
            {"task0.setSource(null, 0, 0)", "task0.setPriority(100)", "task0.setParameterMode(1)",
             "task0.setParameterBlock(1, 1.0, 3.0, 0)", "task0.start"});
        host().finishAllTasks();
    }
}

void goesOnBehindFailedTasks(Stage& stage) {
    const Setting setting(stage, {4, 3});
    stage.component().start();
    stage.task(0).fail(7, "no pictures");
    stage.task(1).fail(8, "no frames");
    expectEqual("the events", setting.listener.events(), Events{3, 3, 2});
    const HeardEvent heard = firstOf("events", setting.listener.heard());
    expectObject("the payload", heard.payloadAddress);
    const KOR::TaskEventPayload told = heard.payload.value();
    expectEqual("the reason", std::string(told.reason), "no pictures");
    expectEqual("the reason's code", told.reasonCode, 7);
}

void stallsWithoutTasks(Stage& stage) {
    host().faults.failEveryMaking(Product::task);
    const Setting setting(stage);
    expectEqual("start()", stage.component().start(), KOR::statusFailed);
    expectEqual("stop()", stage.component().stop(), KOR::statusOk);
    expectEqual("the events", setting.listener.events(), Events{});
}

void stallsWithoutKinds(Stage& stage) {
    const Setting setting(stage, {});
    expectEqual("start()", stage.component().start(), KOR::statusFailed);
    expectEqual("stop()", stage.component().stop(), KOR::statusOk);
    expectEqual("the events", setting.listener.events(), Events{});
}

void stallsWithoutInterface(Stage& stage) {
    const Setting setting(stage);
    stage.task(0).hideAnalysisInterface();
    expectEqual("start()", stage.component().start(), KOR::statusFailed);
    expectLines("the starts", startsSinceLastLook(stage), {});
    stage.component().stop();
    expectLines("what stop() did", stage.journal("task"),
                {"task0.stop", "task1.stop", "task2.stop", "task3.stop"});
    expectEqual("the events", setting.listener.events(), Events{});
}

void goesOnWithoutInterfaceAtTheEnd(Stage& stage) {
    for (const std::int32_t kind : {1, 3, 4, 5, 6, 7}) {
        stage.releaseComponent();
        host().reset();
        const Setting setting(stage, {kind, 4});
        stage.component().start();
        stage.task(0).hideAnalysisInterface();
        stage.journal();
        stage.task(0).finish();
        expectLines("questions for results", stage.journal("task0.getResultList"), {});
        expectEqual("the next task runs behind kind " + std::to_string(kind),
                    stage.task(1).running(), true);
        stage.component().stop();
    }
}

/// What a run does to the outside, but for the log.
Lines unloggedRun(Stage& stage) {
    stage.journal();
    runWithProgress(stage);
    Lines lines = stage.journal();
    std::erase_if(lines, [](const std::string& line) { return line.starts_with("log "); });
    const Lines records = recordLines(stage);
    lines.insert(lines.end(), records.begin(), records.end());
    return lines;
}

void worksWithoutLog(Stage& stage) {
    const Setting setting(stage);
    const Lines expected = unloggedRun(stage);
    for (bool Faults::*const fault :
         {&Faults::loggerAbsent, &Faults::severityDisabled, &Faults::logStreamsFail}) {
        host().faults = Faults();
        host().faults.*fault = true;
        const std::size_t before = host().logLines().size();
        expectLines("the run", unloggedRun(stage), expected);
        expectEqual("lines of the log", host().logLines().size(), before);
    }
}

void opensNoUnwantedLine(Stage& stage) {
    host().faults.severityDisabled = true;
    const Setting setting(stage, {6, 7});
    stage.runToEnd();
    expectLines("complaints of the host", host().complaints(), {});
}

void keepsRecordsWithoutDirectory(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip().cacheIn(stage.directory()));
    useKindsQuietly(stage, {4, 3});
    host().faults.directoriesFail = true;
    stage.runToEnd();
    expectLines("the lines about writing", stage.journal("log saveMaterialAnalysisResult"),
                {R"(log saveMaterialAnalysisResult: )"
                 R"("write analysisCachePath: <dir>/analysis/result.json")",
                 R"(log saveMaterialAnalysisResult: "analysisCachePath open failed")"});
    expectEqual("the events", listener.events(), Events{2});
    expectEqual("the records", stage.results().size(), std::size_t{2});
}

void analysesDespiteUndeletableFile(Stage& stage) {
    stage.insert(clip().cacheIn(stage.directory()));
    stage.writeResultFile("");
    useKindsQuietly(stage, {4, 3});
    host().faults.removalsFail = true;
    stage.runToEnd();
    expectLines("the starts", startsSinceLastLook(stage), {"task0 clip.mp4", "task1 clip.mp4"});
    expectEqual("the records", stage.results().size(), std::size_t{2});
    expectEqual("the result file begins anew", stage.resultText().substr(0, 1), "{");
}

}  // namespace

const std::vector<ComponentCheck> failureChecks = {
    {"failure.of-one-list-ends-no-run",
     "Whichever list cannot be made, the run goes on to its end and nothing is left of it.",
     bearsOneMissingList},
    {"failure.of-all-lists-ends-no-run", "Without any list a run goes on to its end.",
     bearsNoLists},
    {"failure.of-appending-ends-no-run",
     "With lists to which nothing can be added a run goes on to its end.", bearsFullLists},
    {"failure.of-operations-ends-no-run",
     "With operations of tasks that fail, but for start(), a run goes on to its end.",
     bearsFailingOperations},
    {"failure.of-list-loses-what-it-held",
     "Results for which there is no list are missing, and everything else is as it would be.",
     losesWhatTheListHeld},
    {"failure.of-preparation-shows-in-start",
     "When a task cannot be given what it needs, it is started all the same, and start() returns "
     "1001.",
     showsPreparationInStart},
    {"failure.of-handed-list-starts-the-task",
     "When a list for a task cannot be made, the task is started all the same.",
     startsDespiteMissingList},
    {"failure.of-task-start-shows-in-start",
     "When the first task refuses to start, start() returns 1001 and no event comes.",
     showsRefusedTaskInStart},
    {"failure.of-task-start-allows-another-run",
     "A run whose task refuses to start comes to no end, and another one can be started.",
     recoversFromRefusedTask},
    {"failure.of-source-shows-in-start",
     "A task whose material has no source is told so and started, and start() returns 1001.",
     startsWithoutSource},
    {"failure.of-tasks-ends-no-run",
     "A task that fails is told of with its reason, and the run goes on.", goesOnBehindFailedTasks},
    {"failure.of-all-tasks-stalls",
     "Without tasks start() returns 1001, stop() works and no event comes.", stallsWithoutTasks},
    {"failure.of-kinds-stalls",
     "Without kinds start() over a video returns 1001, stop() works and no event comes.",
     stallsWithoutKinds},
    {"failure.of-interface-stalls",
     "A task without IBsMediaAnalysisTask is not started but can be stopped, and start() returns "
     "1001.",
     stallsWithoutInterface},
    {"failure.of-interface-at-the-end-ends-no-run",
     "A task that has lost IBsMediaAnalysisTask by its finish is asked for nothing; the next one "
     "runs.",
     goesOnWithoutInterfaceAtTheEnd},
    {"failure.of-log-changes-nothing",
     "Without a logger, its severity or its lines a run does all else as ever.", worksWithoutLog},
    {"failure.of-severity-opens-no-line", "No line is opened while severity 4 is not wanted.",
     opensNoUnwantedLine},
    {"failure.of-directory-keeps-records",
     "Without a directory for the result file that is logged, and the run keeps its records.",
     keepsRecordsWithoutDirectory},
    {"failure.of-deleting-ends-no-run",
     "A useless result file that cannot be deleted does not keep the video from being analysed.",
     analysesDespiteUndeletableFile},
};

}  // namespace validator
