#include <array>
#include <string>

#include "validator/component/groups.h"

namespace validator {
namespace {

using Info = std::vector<std::uint32_t>;

Info infoOf(Stage& stage) {
    std::array<std::uint32_t, 3> info{9, 9, 9};
    expectEqual("getTaskInfo()", stage.component().getTaskInfo(&info[0], &info[1], &info[2]),
                KOR::statusOk);
    return {info.begin(), info.end()};
}

std::string nameOf(Stage& stage) {
    const char* const name = stage.component().getTaskName();
    expectObject("getTaskName()", name);
    return name;
}

void setName(Stage& stage, const std::string& name) {
    expectEqual("setTaskName()", stage.component().setTaskName(name.c_str()), KOR::statusOk);
}

/// A run of one video with two tasks, of which the first is on when this returns.
void beginRun(Stage& stage) {
    stage.insert(video("clip.mp4", 10 * second));
    stage.useKinds({4, 3});
    stage.component().start();
    expect(stage.task(0).running(), "the first task", "running", "not running");
    stage.journal();
}

void infoIsStored(Stage& stage) {
    const Info values{7, 0xFFFFFFFF, 0x80000001};
    expectEqual("setTaskInfo()", stage.component().setTaskInfo(values[0], values[1], values[2]),
                KOR::statusOk);
    expectEqual("the info", infoOf(stage), values);
    stage.component().setTaskInfo(1, 2, 3);
    expectEqual("the info, set again", infoOf(stage), {1, 2, 3});
}

void infoNeedsThreePointers(Stage& stage) {
    stage.component().setTaskInfo(1, 2, 3);
    Info found{9, 9, 9};
    for (std::size_t missing = 0; missing < 3; ++missing) {
        std::array<std::uint32_t*, 3> to{&found[0], &found[1], &found[2]};
        to.at(missing) = nullptr;
        expectEqual("getTaskInfo() with a null", stage.component().getTaskInfo(to[0], to[1], to[2]),
                    KOR::statusFailed);
    }
    expectEqual("what was written", found, {9, 9, 9});
}

void nameIsCopied(Stage& stage) {
    std::string name = "holiday";
    expectEqual("setTaskName()", stage.component().setTaskName(name.c_str()), KOR::statusOk);
    name = "changed";
    expectEqual("getTaskName()", nameOf(stage), "holiday");
}

void anyNameIsKept(Stage& stage) {
    const std::vector<std::string> names = {
        std::string(5000, 'x'),      "n",   "", " two words ", "素材",
        std::string("\xFF\x01\x80"), "%s%n"};
    for (const std::string& name : names) {
        setName(stage, name);
        expectEqual("getTaskName()", nameOf(stage), name);
    }
}

void nullNameIsRefused(Stage& stage) {
    setName(stage, "holiday");
    expectEqual("setTaskName(null)", stage.component().setTaskName(nullptr), KOR::statusFailed);
    expectEqual("getTaskName()", nameOf(stage), "holiday");
}

void runKeepsNameAndInfo(Stage& stage) {
    setName(stage, "holiday");
    stage.component().setTaskInfo(1, 2, 3);
    beginRun(stage);
    host().finishAllTasks();
    stage.runToEnd();
    expectEqual("getTaskName()", nameOf(stage), "holiday");
    expectEqual("the info", infoOf(stage), {1, 2, 3});
}

void nullListenerIsIgnored(Stage& stage) {
    RecordingListener listener;
    expectEqual("addCallBack(null)", stage.component().addCallBack(nullptr), KOR::statusOk);
    expectEqual("addCallBack()", stage.component().addCallBack(&listener), KOR::statusOk);
    stage.component().start();
    expectEqual("events heard", listener.events(), {KOR::taskEventFinished});
}

void toldInOrder(Stage& stage) {
    RecordingListener first("first");
    RecordingListener second("second");
    RecordingListener third("third");
    for (RecordingListener* const listener : {&third, &first, &second})
        stage.component().addCallBack(listener);
    stage.component().start();
    Lines events = stage.journal();
    std::erase_if(events, [](const std::string& line) { return line.starts_with("log "); });
    expectLines("the events", events,
                {"third: event 2, 100", "first: event 2, 100", "second: event 2, 100"});
}

void toldTwice(Stage& stage) {
    RecordingListener listener;
    for (int i = 0; i < 2; ++i)
        expectEqual("addCallBack()", stage.component().addCallBack(&listener), KOR::statusOk);
    stage.component().start();
    expectEqual("events heard", listener.events(),
                {KOR::taskEventFinished, KOR::taskEventFinished});
}

void everyEntryIsRemoved(Stage& stage) {
    RecordingListener removed("removed");
    RecordingListener kept("kept");
    for (RecordingListener* const listener : {&removed, &removed, &kept, &removed})
        stage.component().addCallBack(listener);
    expectEqual("removeCallBack()", stage.component().removeCallBack(&removed), KOR::statusOk);
    stage.component().start();
    expectEqual("events of the one removed", removed.heard().size(), 0U);
    expectEqual("events of the one kept", kept.events(), {KOR::taskEventFinished});
}

void strangerIsRemoved(Stage& stage) {
    RecordingListener listener;
    RecordingListener stranger("stranger");
    stage.component().addCallBack(&listener);
    expectEqual("removeCallBack()", stage.component().removeCallBack(&stranger), KOR::statusOk);
    stage.component().start();
    expectEqual("events heard", listener.events(), {KOR::taskEventFinished});
}

void refusesWhileIdle(Stage& stage) {
    for (int i = 0; i < 2; ++i) {
        expectEqual("pause()", stage.component().pause(), KOR::statusFailed);
        expectEqual("resume()", stage.component().resume(), KOR::statusFailed);
    }
}

void refusesWithoutEffect(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    beginRun(stage);
    expectEqual("pause()", stage.component().pause(), KOR::statusFailed);
    expectEqual("resume()", stage.component().resume(), KOR::statusFailed);
    expectLines("what came of it", stage.journal(), {});
    expectLines("complaints of the host", host().complaints(), {});
    host().finishAllTasks();
    expectEqual("events heard", listener.events(), {KOR::taskEventFinished});
}

void stateStays0(Stage& stage) {
    RecordingListener listener;
    std::vector<std::uint32_t> states{stage.component().getState()};
    listener.onEvent = [&](std::uint32_t) { states.push_back(stage.component().getState()); };
    stage.component().addCallBack(&listener);
    beginRun(stage);
    states.push_back(stage.component().getState());
    stage.task(0).progress(50);
    host().finishAllTasks();
    states.push_back(stage.component().getState());
    stage.component().start();
    stage.component().stop();
    states.push_back(stage.component().getState());
    expectEqual("getState()", states, std::vector<std::uint32_t>(states.size(), 0));
}

void priorityIsStored(Stage& stage) {
    for (const std::uint32_t priority : {0U, 1U, 55U, 100U, 7U, 0xFFFFFFFFU}) {
        expectEqual("setPriority()", stage.component().setPriority(priority), KOR::statusOk);
        expectEqual("getPriority()", stage.component().getPriority(), priority);
    }
}

void priorityIsHandedOn(Stage& stage) {
    stage.component().setPriority(7);
    stage.insert(video("clip.mp4", 10 * second));
    stage.useKinds({4, 3});
    stage.runToEnd();
    Lines told = stage.journal();
    std::erase_if(told,
                  [](const std::string& line) { return line.find(".setPriority(") == line.npos; });
    expectLines("the priorities", told, {"task0.setPriority(7)", "task1.setPriority(7)"});
}

void priorityCountsAtNextStart(Stage& stage) {
    beginRun(stage);
    stage.component().setPriority(7);
    expectLines("what came of it", stage.journal(), {});
    host().finishAllTasks();
    expectLines("the priority", stage.journal("task1.setPriority"), {"task1.setPriority(7)"});
}

}  // namespace

const std::vector<ComponentCheck> basetaskChecks = {
    {"basetask.type-is-10", "A component is a task of type 10.",
     [](Stage& stage) { expectEqual("getTaskType()", stage.component().getTaskType(), 10); }},
    {"basetask.info-begins-with-zeros", "The three values of the task info are 0 at first.",
     [](Stage& stage) {
         expectEqual("the info", infoOf(stage), {0, 0, 0});
     }},
    {"basetask.info-is-stored", "getTaskInfo gives the three values that were set last.",
     infoIsStored},
    {"basetask.info-needs-three-pointers",
     "getTaskInfo with a null among its pointers fails and writes nothing.",
     infoNeedsThreePointers},
    {"basetask.name-begins-empty", "The task's name is empty at first, and not null.",
     [](Stage& stage) { expectEqual("getTaskName()", nameOf(stage), ""); }},
    {"basetask.name-is-copied", "setTaskName copies the name.", nameIsCopied},
    {"basetask.any-name-is-kept",
     "A name of any length and with any bytes comes back as it was set.", anyNameIsKept},
    {"basetask.null-name-is-refused", "A null name fails and leaves the name as it was.",
     nullNameIsRefused},
    {"basetask.run-keeps-name-and-info", "Runs change neither the name nor the info.",
     runKeepsNameAndInfo},
    {"basetask.null-listener-is-ignored", "Adding a null listener does nothing, and returns 0.",
     nullListenerIsIgnored},
    {"basetask.removing-null-fails", "Removing a null listener fails.",
     [](Stage& stage) {
         expectEqual("removeCallBack(null)", stage.component().removeCallBack(nullptr),
                     KOR::statusFailed);
     }},
    {"basetask.listeners-told-in-order", "Listeners are told in the order of their adding.",
     toldInOrder},
    {"basetask.listener-added-twice", "A listener that was added twice is told twice.", toldTwice},
    {"basetask.removes-every-entry", "Removing a listener removes each of its entries.",
     everyEntryIsRemoved},
    {"basetask.removing-stranger",
     "Removing a listener that was never added returns 0 and leaves the others.",
     strangerIsRemoved},
    {"basetask.idle-pause-fails", "pause and resume fail while no run is on.", refusesWhileIdle},
    {"basetask.pause-without-effect",
     "pause and resume fail during a run, and the run goes on as if they had not been called.",
     refusesWithoutEffect},
    {"basetask.state-is-always-0", "getState is 0 before, during and after a run.", stateStays0},
    {"basetask.priority-begins-at-100", "The priority is 100 at first.",
     [](Stage& stage) { expectEqual("getPriority()", stage.component().getPriority(), 100); }},
    {"basetask.priority-is-stored", "getPriority gives the priority that was set last.",
     priorityIsStored},
    {"basetask.priority-is-handed-on", "Each task is given the component's priority.",
     priorityIsHandedOn},
    {"basetask.priority-counts-at-next-start",
     "A priority set during a run counts from the next start of a task on.",
     priorityCountsAtNextStart},
};

}  // namespace validator
