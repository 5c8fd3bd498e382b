#include <cstdint>
#include <string>

#include "validator/component/groups.h"

namespace validator {
namespace {

struct Step {
    std::int32_t kind;
    const char* operation;
};

const std::vector<Step> steps = {{1, "setKeyFramePositions"}, {2, "setKeyFramePositions"},
                                 {3, "setSceneRanges"},       {4, "setParameterBlock"},
                                 {5, "setKeyFramePositions"}, {6, "setParameterBlock"},
                                 {7, "setKeyFramePositions"}};

/// A component of its own for a kind, with one video.
struct Launch {
    Launch(Stage& stage, std::int32_t kind, const MediaSpec& spec)
        : component(stage.create()), media(new FakeMedia(spec)) {
        host().reset();
        component->insertMaterials(materialList({media.get()}).get(), 0);
        component->setAnalysisKinds(intList({kind}).get());
        stage.journal();
    }

    Component component;
    Owned<FakeMedia> media;
};

MediaSpec clip() {
    return video("clip.mp4", 10 * second);
}

/// What a start of this kind does where nothing fails.
Lines wholeLaunch(Stage& stage, std::int32_t kind) {
    const Launch launch(stage, kind, clip());
    launch.component->start();
    return stage.journal();
}

/// Lets an operation of the task fail, and holds what is done and returned against the rest.
void expectGoesOn(Stage& stage, std::int32_t kind, const std::string& operation) {
    const Lines whole = wholeLaunch(stage, kind);
    const Launch launch(stage, kind, clip());
    stage.task(0).answer(operation, KOR::statusFailed);
    const std::string of = " of kind " + shown(kind) + " where " + operation + " fails";
    const KOR::Status status = launch.component->start();
    expectLines("the launch" + of, stage.journal(), whole);
    expectEqual("start()" + of, status, KOR::statusFailed);
}

void failedSource(Stage& stage) {
    for (std::int32_t kind = 1; kind <= 7; ++kind)
        expectGoesOn(stage, kind, "setSource");
}

void failedStep(Stage& stage) {
    for (const Step& step : steps)
        expectGoesOn(stage, step.kind, step.operation);
}

void failedStart(Stage& stage) {
    for (std::int32_t kind = 1; kind <= 7; ++kind)
        expectGoesOn(stage, kind, "start");
}

void eitherBlockCounts(Stage& stage) {
    for (const int failing : {1, 2}) {
        const Launch launch(stage, 6, clip());
        int blocks = 0;
        // What a call answers is decided before its action runs: so the action is one ahead.
        const auto decide = [&](int call) {
            stage.task(0).answer("setParameterBlock",
                                 call == failing ? KOR::statusFailed : KOR::statusOk);
        };
        decide(1);
        stage.task(0).onCall("setParameterBlock", [&] { decide(++blocks + 1); });
        expectEqual("start() where block " + shown(failing) + " fails", launch.component->start(),
                    KOR::statusFailed);
        expectEqual("blocks", blocks, 2);
        expectEqual("starts", host().startCount.load(), 1);
    }
}

void goodLaunchReturns0(Stage& stage) {
    for (std::int32_t kind = 1; kind <= 7; ++kind) {
        const Launch launch(stage, kind, clip());
        expectEqual("start() with kind " + shown(kind), launch.component->start(), KOR::statusOk);
    }
}

void otherStatusIsNoFailure(Stage& stage) {
    for (const Step& step : steps) {
        const Launch launch(stage, step.kind, clip());
        for (const char* const operation : {"setSource", step.operation, "start"})
            stage.task(0).answer(operation, 5);
        expectEqual("start() with kind " + shown(step.kind), launch.component->start(),
                    KOR::statusOk);
    }
}

/// Holds the launches of a material against those of one with a source, of which only the source
/// and the status may differ.
void expectNullSource(Stage& stage, const MediaSpec& spec) {
    for (std::int32_t kind = 1; kind <= 7; ++kind) {
        Lines expected = wholeLaunch(stage, kind);
        const Launch launch(stage, kind, spec);
        const KOR::Status status = launch.component->start();
        for (std::string& line : expected) {
            if (line.starts_with("task0.setSource")) line = "task0.setSource(null, 0, 0)";
        }
        Lines found = stage.journal();
        // Without a source there is no cache to name either.
        for (Lines* const lines : {&expected, &found})
            std::erase_if(*lines,
                          [](const std::string& line) { return line.starts_with("log r"); });
        expectLines("the launch of kind " + shown(kind), found, expected);
        expectEqual("start() with kind " + shown(kind), status, KOR::statusFailed);
    }
}

void missingSource(Stage& stage) {
    expectNullSource(stage, clip().withoutSource());
}

void missingSourceMedia(Stage& stage) {
    expectNullSource(stage, clip().withoutSourceMedia());
}

void missingList(Stage& stage) {
    stage.insert(clip().scenes({{0, 10 * second}}).keyFrames({second}));
    stage.useKinds({4, 3, 1, 2, 5, 7});
    host().faults.failEveryMaking(Product::longlongList);
    host().faults.failEveryMaking(Product::pointerList);
    stage.journal();
    stage.runToEnd();
    Lines starts = stage.journal("task");
    std::erase_if(starts, [](const std::string& line) { return !line.ends_with(".start"); });
    expectLines(
        "the starts", starts,
        {"task0.start", "task1.start", "task2.start", "task3.start", "task4.start", "task5.start"});
}

void hiddenInterface(Stage& stage) {
    for (std::int32_t kind = 1; kind <= 7; ++kind) {
        const Launch launch(stage, kind, clip());
        stage.task(0).hideAnalysisInterface();
        expectEqual("start() with kind " + shown(kind), launch.component->start(),
                    KOR::statusFailed);
        expectLines("calls to the task", stage.journal("task"), {});
    }
}

void laterFailureGoesOn(Stage& stage) {
    stage.insert(clip());
    stage.useKinds({4, 3, 1});
    for (std::size_t number = 0; number < 3; ++number)
        stage.task(number).answer("setSource", KOR::statusFailed);
    stage.task(1).answer("setSceneRanges", KOR::statusFailed);
    stage.task(2).answer("setKeyFramePositions", KOR::statusFailed);
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.runToEnd();
    expectEqual("starts", host().startCount.load(), 3);
    expectEqual("events", listener.events(), {KOR::taskEventFinished});
}

/// The lines of the log of a run of all kinds, and what it does besides.
Lines quietRun(Stage& stage) {
    stage.insert(clip());
    stage.useKinds({4, 3, 2, 1, 5, 6, 7});
    stage.journal();
    stage.runToEnd();
    expectLines("complaints of the host", host().complaints(), {});
    return stage.journal();
}

void expectQuietRun(Stage& stage) {
    const Lines lines = quietRun(stage);
    expectLines("the log", stage.logTexts(), {});
    int starts = 0;
    for (const std::string& line : lines) {
        if (line.ends_with(".start")) ++starts;
    }
    expectEqual("starts", starts, 7);
}

void noLogger(Stage& stage) {
    host().faults.loggerAbsent = true;
    expectQuietRun(stage);
}

void noSeverity(Stage& stage) {
    host().faults.severityDisabled = true;
    expectQuietRun(stage);
}

void noStream(Stage& stage) {
    host().faults.logStreamsFail = true;
    expectQuietRun(stage);
}

}  // namespace

const std::vector<ComponentCheck> launchFaultsChecks = {
    {"launch-faults.failed-source",
     "A task that refuses its source is prepared further and started, and start returns 1001.",
     failedSource},
    {"launch-faults.failed-hand-over",
     "A task that refuses a list or block is started all the same, and start returns 1001.",
     failedStep},
    {"launch-faults.failed-start",
     "Where a task cannot be started, the line is written all the same, and start returns 1001.",
     failedStart},
    {"launch-faults.either-block-counts",
     "Either block that is refused makes the combined start return 1001.", eitherBlockCounts},
    {"launch-faults.good-launch-returns-0", "A start whose steps all work returns 0.",
     goodLaunchReturns0},
    {"launch-faults.other-status-is-no-failure", "A status other than 1001 is no failure.",
     otherStatusIsNoFailure},
    {"launch-faults.missing-source", "A material without a source hands over null and goes on.",
     missingSource},
    {"launch-faults.missing-source-media",
     "A material without \"IDmSourceMedia\" hands over null and goes on.", missingSourceMedia},
    {"launch-faults.missing-list", "A task whose list cannot be made is started all the same.",
     missingList},
    {"launch-faults.hidden-interface",
     "A task without \"IBsMediaAnalysisTask\" is not touched, and start returns 1001.",
     hiddenInterface},
    {"launch-faults.later-failure-goes-on", "Failed preparations do not end a run.",
     laterFailureGoesOn},
    {"launch-faults.no-logger", "Without a logger, everything is started and nothing written.",
     noLogger},
    {"launch-faults.no-severity",
     "With severity 4 off, everything is started and no line is opened.", noSeverity},
    {"launch-faults.no-stream", "A line whose stream cannot be opened is dropped.", noStream},
};

}  // namespace validator
