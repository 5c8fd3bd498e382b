#include <algorithm>

#include "validator/component/groups.h"
#include "validator/component/runs.h"

namespace validator {
namespace {

/// Enough for a step inside each other one to run out of any stack.
constexpr std::size_t thousands = 50000;

void insertVideos(Stage& stage, int count) {
    for (int i = 0; i < count; ++i)
        stage.insert(clip("clip" + std::to_string(i) + ".mp4"));
}

/// Adds one material as often as this.
void insertRepeatedly(Stage& stage, const MediaSpec& spec, std::size_t count) {
    FakeMedia& material = stage.make(spec);
    stage.component().insertMaterials(materialList(std::vector(count, &material)).get(), 0);
}

void runsToTheEnd(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    insertVideos(stage, 3);
    stage.useKinds({4, 3});
    host().tasksFinishInsideStart = true;
    expectEqual("start()", stage.component().start(), KOR::statusOk);
    expectEqual("the events", listener.events(), Events{2});
    expectEqual("the records", stage.results().size(), std::size_t{6});
}

void keepsOrder(Stage& stage) {
    constexpr int count = 150;
    insertVideos(stage, count);
    useKindsQuietly(stage, {4, 3});
    host().tasksFinishInsideStart = true;
    stage.component().start();
    Lines expected;
    for (int i = 0; i < count; ++i) {
        const std::string name = " clip" + std::to_string(i) + ".mp4";
        expected.insert(expected.end(), {"task0" + name, "task1" + name});
    }
    expectLines("the starts", startsSinceLastLook(stage), expected);
    expectEqual("the records", stage.results().size(), std::size_t{2} * count);
    if (host().deepestStartDepth > 100) warn("each start stands inside the one before");
}

void hasIndexOfItsMoment(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(video("clip.mp4", 100 * second));
    useKindsQuietly(stage, {4, 3});
    host().tasksFinishInsideStart = true;
    stage.component().start();
    expectLines("the last lines of the run", lastLines(stage.journal(), 3),
                {"listener: event 2, 100",
                 R"(log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 1\n")",
                 R"(log startScenceDetect: "----Start Scence Detect:---素材idx---1\n")"});
}

void logsEachStart(Stage& stage) {
    insertVideos(stage, 100);
    useKindsQuietly(stage, {4, 3});
    host().tasksFinishInsideStart = true;
    stage.component().start();
    const Lines lines = stage.journal();
    const auto linesOf = [&](const std::string& function) {
        return std::count_if(lines.begin(), lines.end(), [&](const std::string& line) {
            return line.starts_with("log " + function);
        });
    };
    expectEqual("start lines of scene tasks", linesOf("startScenceDetect:"), 100);
    expectEqual("start lines of keyframe tasks", linesOf("startKeyFrameDetect:"), 100);
}

void bearsThousandsOfVideos(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    host().recording = false;
    insertRepeatedly(stage, video("clip.mp4", 100 * second), thousands);
    stage.useKinds({4});
    host().tasksFinishInsideStart = true;
    stage.component().start();
    expectEqual("tasks started", static_cast<std::size_t>(host().startCount.load()), thousands);
    expectEqual("the events", listener.events(), Events{2});
}

void bearsThousandsOfPhotos(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    host().recording = false;
    insertRepeatedly(stage, photo("photo.jpg"), thousands);
    stage.useKinds({4});
    stage.component().start();
    expectEqual("the records", stage.results().size(), thousands);
    expectEqual("the events", listener.events(), Events{2});
}

void bearsATaskThatTakesItsTime(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    insertVideos(stage, 50);
    stage.useKinds({4, 3});
    int starts = 0;
    host().tasksFinishInsideStart = true;
    stage.task(1).onCall("start", [&] { host().tasksFinishInsideStart = ++starts != 45; });
    stage.component().start();
    expectEqual("the task is running", stage.task(1).running(), true);
    expectEqual("the events before its finish", listener.events(), Events{});
    host().tasksFinishInsideStart = true;
    stage.task(1).finish();
    expectEqual("the events", listener.events(), Events{2});
    expectEqual("tasks started", host().startCount.load(), 100);
}

void endsByStop(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    insertVideos(stage, 100);
    stage.useKinds({4});
    int starts = 0;
    host().tasksFinishInsideStart = true;
    stage.task(0).onCall("start", [&] {
        if (++starts == 60) stage.component().stop();
    });
    stage.component().start();
    stage.task(0).finish();
    expectEqual("tasks started", host().startCount.load(), 60);
    expectEqual("the events", listener.events(), Events{4});
}

void endsByRelease(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    insertVideos(stage, 60);
    stage.useKinds({4, 3});
    host().tasksFinishInsideStart = true;
    listener.onEvent = [&](std::uint32_t) { stage.releaseComponent(); };
    stage.component().start();
    expectEqual("the events", listener.events(), Events{2});
    expectNothingLeft(stage);
}

void beginsNextRunAtTheEnd(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    insertVideos(stage, 1);
    stage.useKinds({4, 3});
    int runs = 1;
    host().tasksFinishInsideStart = true;
    listener.onEvent = [&](std::uint32_t) {
        if (++runs <= 40) stage.component().start();
    };
    stage.component().start();
    expectEqual("the events", listener.events(), Events(40, 2));
    expectEqual("tasks started", host().startCount.load(), 80);
    expectEqual("the records of the last run", stage.results().size(), std::size_t{2});
}

void leavesOthersAlone(Stage& stage) {
    const Component other = stage.create();
    RecordingListener heardFromOther("other");
    other->addCallBack(&heardFromOther);
    const auto list = materialList({&stage.make(clip("other.mp4"))});
    other->insertMaterials(list.get(), 0);
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    insertVideos(stage, 40);
    stage.useKinds({4});
    other->setAnalysisKinds(intList({4}).get());
    host().tasksFinishInsideStart = true;
    // Each one runs the other inside the start of a task of its own.
    std::vector<std::size_t> runsOfOther;
    stage.task(0).onCall("start", [&] {
        other->start();
        runsOfOther.push_back(heardFromOther.events().size());
    });
    stage.component().start();
    expectEqual("the events", listener.events(), Events{2});
    expectEqual("runs of the other one", runsOfOther.size(), std::size_t{40});
    for (std::size_t i = 0; i < runsOfOther.size(); ++i)
        expectEqual("ends of the other one when its start returns", runsOfOther[i], i + 1);
}

void forgetsFinishesOfCancelledRun(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    insertVideos(stage, 100);
    useKindsQuietly(stage, {4});
    int starts = 0;
    stage.task(0).onCall("start", [&] {
        if (++starts > 33) return;
        stage.task(0).finish();
        if (starts == 33) stage.task(0).send(1, KOR::taskEventFailed, nullptr);
    });
    listener.onEvent = [&](std::uint32_t event) {
        if (event != KOR::taskEventFailed) return;
        stage.component().stop();
        stage.component().start();
    };
    stage.component().start();
    expectEqual("the last start", lastOf("starts", startsSinceLastLook(stage)), "task0 clip0.mp4");
    expectEqual("the task is running", stage.task(0).running(), true);
}

}  // namespace

const std::vector<ComponentCheck> nestingChecks = {
    {"nesting.runs-to-the-end", "A run whose tasks finish inside their own start comes to its end.",
     runsToTheEnd},
    {"nesting.keeps-order", "Tasks that finish inside their own start run in the order of the run.",
     keepsOrder},
    {"nesting.logs-start-behind-it",
     "The line of a start follows it, with the material that the run is at by then.",
     hasIndexOfItsMoment},
    {"nesting.logs-each-start", "Every start has its line, however many finish inside themselves.",
     logsEachStart},
    {"nesting.bears-thousands-of-videos",
     "Thousands of tasks may finish inside their own start in one run.", bearsThousandsOfVideos},
    {"nesting.bears-thousands-of-photos", "Thousands of materials may need no task.",
     bearsThousandsOfPhotos},
    {"nesting.bears-a-task-that-takes-its-time",
     "Behind many tasks that finish inside their start one may take its time.",
     bearsATaskThatTakesItsTime},
    {"nesting.ends-by-stop", "stop() ends a run of tasks that finish inside their own start.",
     endsByStop},
    {"nesting.ends-by-release",
     "The last reference may go inside the end of a run whose tasks finish inside their start.",
     endsByRelease},
    {"nesting.begins-next-run-at-the-end",
     "A run may be started at the end of the one before, forty times over, inside starts of tasks.",
     beginsNextRunAtTheEnd},
    {"nesting.leaves-others-alone",
     "A component may run inside the start of another one's task, however deep that is nested.",
     leavesOthersAlone},
    {"nesting.forgets-finishes-of-cancelled-run",
     "A finish inside a start does not carry over to a run that begins before it could be taken.",
     forgetsFinishesOfCancelledRun},
};

}  // namespace validator
