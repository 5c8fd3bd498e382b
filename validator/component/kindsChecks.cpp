#include <cstdint>
#include <limits>
#include <string>

#include "validator/component/groups.h"

namespace validator {
namespace {

using Kinds = std::vector<std::int32_t>;

constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();

/// The calls that ask for tasks of these types, one after another.
Lines madeWith(const std::vector<std::string>& types) {
    Lines lines;
    for (const std::string& each : types) {
        lines.push_back("createMediaAnalysisTask(" + each + ")");
        lines.push_back("task" + std::to_string(lines.size() / 2) + ".addCallBack");
    }
    return lines;
}

void expectMade(Stage& stage, const Kinds& kinds, const std::vector<std::string>& types) {
    stage.useKinds(kinds);
    expectLines("what setAnalysisKinds does", stage.journal(), madeWith(types));
}

/// The video's result file says which kinds were noted.
void insertCached(Stage& stage) {
    stage.insert(video("clip.mp4", 10 * second).cacheIn(stage.directory()));
}

void expectKindsInFile(Stage& stage, const std::string& kinds) {
    stage.runToEnd();
    const std::string line = "\"analysisTypes\": \"" + kinds + "\",";
    const std::string text = stage.resultText();
    const std::size_t at = text.find("\"analysisTypes\"");
    if (at == text.npos) fail("the result file", line, text);
    expectEqual("the result file", text.substr(at, text.find('\n', at) - at), line);
}

/// The calls of starting, and on what: "task0 clip.mp4 startScenceDetect".
Lines startsOfRun(Stage& stage) {
    stage.journal();
    stage.runToEnd();
    Lines starts;
    for (const std::string& line : stage.journal()) {
        const bool isStart = line.ends_with(".start");
        if (isStart || line.starts_with("log start"))
            starts.push_back(line.substr(0, line.find(':')));
    }
    return starts;
}

void nullListFails(Stage& stage) {
    insertCached(stage);
    stage.useKinds({4, 3});
    stage.journal();
    expectEqual("setAnalysisKinds(null)", stage.component().setAnalysisKinds(nullptr),
                KOR::statusFailed);
    expectLines("what it does", stage.journal(), {});
    expectKindsInFile(stage, "4,3");
}

void othersAreIgnored(Stage& stage) {
    expectMade(stage, {8, 0, 4, -1, 9, least, most, -4, 104}, {"1"});
}

void othersAreNotNoted(Stage& stage) {
    insertCached(stage);
    stage.useKinds({8, 0, 4, -1, 3, most});
    expectKindsInFile(stage, "4,3");
}

void failingListSkips(Stage& stage) {
    insertCached(stage);
    const auto kinds = intList({4, 1, 3});
    host().faults.failMaking(Product::intList, 2);
    expectEqual("setAnalysisKinds()", stage.component().setAnalysisKinds(kinds.get()),
                KOR::statusOk);
    expectLines("what it does", stage.journal(), madeWith({"1", "9"}));
    expectKindsInFile(stage, "4,3");
}

void missingTaskLeavesKind(Stage& stage) {
    insertCached(stage);
    host().faults.failMaking(Product::task, 2);
    stage.useKinds({4, 1, 3});
    expectLines("what setAnalysisKinds does", stage.journal(),
                {"createMediaAnalysisTask(1)", "task0.addCallBack", "createMediaAnalysisTask(3)",
                 "createMediaAnalysisTask(9)", "task1.addCallBack"});
    expectKindsInFile(stage, "4,1,3");
}

void laterTasksMoveUp(Stage& stage) {
    insertCached(stage);
    host().faults.failMaking(Product::task, 2);
    stage.useKinds({4, 1, 3});
    expectLines("the starts", startsOfRun(stage),
                {"task0.start", "log startScenceDetect", "task1.start", "log startFaceDetect"});
}

void returns0Always(Stage& stage) {
    host().faults.failEveryMaking(Product::task);
    stage.useKinds({1, 2, 3, 4, 5, 6, 7});
    expectEqual("tasks", host().taskCount(), 0U);
    const auto kinds = intList({1, 2});
    host().faults.failEveryMaking(Product::intList);
    expectEqual("setAnalysisKinds() without lists", stage.component().setAnalysisKinds(kinds.get()),
                KOR::statusOk);
}

void noTaskForFailingLists(Stage& stage) {
    const auto kinds = intList({1, 6});
    host().faults.failEveryMaking(Product::intList);
    stage.component().setAnalysisKinds(kinds.get());
    expectLines("what setAnalysisKinds does", stage.journal(), {});
}

void creationReferenceIsDropped(Stage& stage) {
    stage.useKinds({4, 6, 4});
    for (std::size_t number = 0; number < 3; ++number)
        expectEqual("references on a task", stage.task(number).refCount(), 1);
}

void listenerHearsEachTask(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(video("clip.mp4", 10 * second));
    stage.useKinds({4, 3});
    for (std::size_t number = 0; number < 2; ++number)
        stage.task(number).send(KOR::taskEventCategory, KOR::taskEventFailed, nullptr);
    expectEqual("events passed on", listener.events(),
                {KOR::taskEventFailed, KOR::taskEventFailed});
}

void earlierTasksStayInFront(Stage& stage) {
    insertCached(stage);
    stage.useKinds({4, 3});
    stage.useKinds({1, 5});
    expectLines("the starts", startsOfRun(stage),
                {"task0.start", "log startFaceDetect", "task1.start", "log startEntropyCalculate"});
}

void earlierKindsAreForgotten(Stage& stage) {
    insertCached(stage);
    stage.useKinds({4, 3, 5});
    stage.useKinds({2});
    expectLines("the starts", startsOfRun(stage), {"task0.start", "log startBlurDetect"});
}

void earlierTasksAreStoppedToo(Stage& stage) {
    stage.useKinds({4});
    stage.useKinds({3});
    stage.journal();
    stage.component().stop();
    expectLines("what stop does", stage.journal(), {"task0.stop", "task1.stop"});
}

void emptyListForgetsKinds(Stage& stage) {
    stage.insert(video("clip.mp4", 10 * second));
    stage.useKinds({4, 3});
    stage.useKinds({});
    stage.journal();
    expectEqual("start()", stage.component().start(), KOR::statusFailed);
    expectLines("calls to tasks", stage.journal("task"), {});
}

void typeListsAreReleased(Stage& stage) {
    stage.useKinds({1, 2, 3, 4, 5, 6, 7});
    expectEqual("lists that exist", host().live.lists.load(), 0);
}

void typeListsAreReleasedOfNone(Stage& stage) {
    host().faults.failEveryMaking(Product::task);
    stage.useKinds({0, 8, 4, 7});
    expectEqual("lists that exist", host().live.lists.load(), 0);
}

void listStaysTheCallers(Stage& stage) {
    const auto kinds = intList({4, 8, 3});
    stage.component().setAnalysisKinds(kinds.get());
    expectEqual("references on the list", kinds->refCount(), 1);
    expectEqual("elements of the list", kinds->count(), 3);
}

}  // namespace

const std::vector<ComponentCheck> kindsChecks = {
    {"kinds.ask-for-their-types",
     "Kinds 1 to 5 ask for tasks of the types 3, 2, 9, 1 and 8, and listen to each task.",
     [](Stage& stage) {
         expectMade(stage, {1, 2, 3, 4, 5}, {"3", "2", "9", "1", "8"});
     }},
    {"kinds.combined-ask-for-both-types",
     "Kind 6 asks for one task of the types 1 and 9, and kind 7 of 3 and 8, in that order.",
     [](Stage& stage) {
         expectMade(stage, {6, 7}, {"1, 9", "3, 8"});
     }},
    {"kinds.tasks-in-order-of-list", "Tasks are made in the order of the list.",
     [](Stage& stage) {
         expectMade(stage, {5, 3, 4, 1}, {"8", "9", "1", "3"});
     }},
    {"kinds.listed-twice", "A kind that is listed twice gets two tasks.",
     [](Stage& stage) {
         expectMade(stage, {4, 4}, {"1", "1"});
     }},
    {"kinds.others-are-ignored", "Values outside 1 to 7 make no task.", othersAreIgnored},
    {"kinds.others-are-not-noted", "Values outside 1 to 7 do not stand in the result file.",
     othersAreNotNoted},
    {"kinds.null-list-fails", "A null list fails and leaves the kinds as they were.",
     nullListFails},
    {"kinds.stand-in-file-in-order",
     "The result file names the kinds in the order of the list, joined by commas.",
     [](Stage& stage) {
         insertCached(stage);
         stage.useKinds({4, 3, 1, 5});
         expectKindsInFile(stage, "4,3,1,5");
     }},
    {"kinds.failing-list-skips-kind",
     "A kind whose list of types cannot be made is passed over, and not noted.", failingListSkips},
    {"kinds.no-task-without-list", "No task is asked for without a list of types.",
     noTaskForFailingLists},
    {"kinds.missing-task-leaves-kind", "A kind whose task cannot be made is noted all the same.",
     missingTaskLeavesKind},
    {"kinds.later-tasks-move-up",
     "Behind a task that could not be made, each kind is started on the task made after its own.",
     laterTasksMoveUp},
    {"kinds.return-0-always", "setAnalysisKinds returns 0 for every list, whatever fails.",
     returns0Always},
    {"kinds.creation-reference-is-dropped", "The component holds one reference on each task.",
     creationReferenceIsDropped},
    {"kinds.each-task-is-listened-to", "The component hears the events of each of its tasks.",
     listenerHearsEachTask},
    {"kinds.earlier-tasks-stay-in-front",
     "After a second call, its kinds run on the tasks of the first one.", earlierTasksStayInFront},
    {"kinds.earlier-kinds-are-forgotten", "After a second call, only its kinds are run.",
     earlierKindsAreForgotten},
    {"kinds.earlier-tasks-are-kept", "stop stops the tasks of an earlier call, and first.",
     earlierTasksAreStoppedToo},
    {"kinds.empty-list-forgets-kinds", "After a call with an empty list no task is started.",
     emptyListForgetsKinds},
    {"kinds.type-lists-are-released", "The lists of types are given back.", typeListsAreReleased},
    {"kinds.type-lists-are-released-of-none",
     "Lists of types for which no task was made are given back, too.", typeListsAreReleasedOfNone},
    {"kinds.list-stays-the-callers", "The list of kinds stays the caller's as it is.",
     listStaysTheCallers},
};

}  // namespace validator
