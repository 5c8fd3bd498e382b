#include "validator/host/Run.h"
#include "validator/host/groups.h"

// A run without a source fails and finishes: two events, in every host.
namespace validator {
namespace {

void areToldInOrder(HostLibrary& host) {
    Run run(host, {1});
    std::vector<std::string> calls;
    Listener second;
    run.listener.doInside([&](const Told& told) { calls.push_back("1st: " + shown(told.event)); });
    second.doInside([&](const Told& told) { calls.push_back("2nd: " + shown(told.event)); });
    run.task->addCallBack(&second);
    run.finish();
    second.waitForEnd();
    run.task->removeCallBack(&second);
    std::erase_if(calls, [](const std::string& call) { return call.ends_with(": 1"); });
    expectLines("the calls", calls, {"1st: 3", "2nd: 3", "1st: 2", "2nd: 2"});
}

void areToldTwice(HostLibrary& host) {
    Run run(host, {1});
    run.task->addCallBack(&run.listener);
    run.start();
    run.listener.waitForEnd(2);
    expectEqual("the events", run.listener.milestones(), Milestones{3, 3, 2, 2});
}

void nullIsIgnored(HostLibrary& host) {
    Run run(host, {1});
    run.task->addCallBack(nullptr);
    run.finish();
    expectEqual("the events", run.listener.milestones(), failedAndFinished);
}

void removedAreNotTold(HostLibrary& host) {
    Listener removed;
    Run run(host, {1});
    run.task->addCallBack(&removed);
    run.task->addCallBack(&removed);
    expectEqual("removeCallBack()", run.task->removeCallBack(&removed), KOR::statusOk);
    run.finish();
    expectEqual("the events of the one that stays", run.listener.milestones(), failedAndFinished);
    expectEqual("the events of the one that was removed", removed.milestones(), Milestones{});
}

void othersMayBeRemoved(HostLibrary& host) {
    Listener other;
    Run run(host, {1});
    run.task->removeCallBack(&other);
    run.finish();
    expectEqual("the events", run.listener.milestones(), failedAndFinished);
}

void addedHearTheNext(HostLibrary& host) {
    Listener added;
    Run run(host, {1});
    run.listener.doInside([&](const Told& told) {
        if (told.event == KOR::taskEventFailed) run.task->addCallBack(&added);
    });
    run.finish();
    added.waitForEnd();
    expectEqual("the events of one that was added inside event 3", added.milestones(), finished);
}

void removedInsideAreNotCalled(HostLibrary& host) {
    Listener second;
    Listener third;
    Run run(host, {1});
    run.task->addCallBack(&second);
    run.task->addCallBack(&third);
    run.listener.doInside([&](const Told& told) {
        if (told.event == KOR::taskEventFailed) run.task->removeCallBack(&second);
    });
    run.finish();
    third.waitForEnd();
    expectEqual("the events of one that was removed before its turn", second.milestones(),
                Milestones{});
    expectEqual("the events of the one behind it", third.milestones(), failedAndFinished);
}

void mayRemoveThemselves(HostLibrary& host) {
    Listener second;
    Listener leaving;
    Run run(host, {1});
    leaving.doInside([&](const Told& told) {
        if (told.event == KOR::taskEventFailed) run.task->removeCallBack(&leaving);
    });
    run.task->removeCallBack(&run.listener);
    run.task->addCallBack(&leaving);
    run.task->addCallBack(&second);
    run.start();
    second.waitForEnd();
    expectEqual("the events of the one that leaves", leaving.milestones(),
                Milestones{KOR::taskEventFailed});
    expectEqual("the events of the one behind it", second.milestones(), failedAndFinished);
}

void stayForNextRuns(HostLibrary& host) {
    Run run(host, {1});
    run.finish();
    run.start();
    run.listener.waitForEnd(2);
    expectEqual("the events of two runs", run.listener.milestones(), Milestones{3, 2, 3, 2});
}

}  // namespace

const std::vector<HostCheck> listenerChecks = {
    {"listeners.are-told-in-order",
     "Every event is told to all listeners, in the order in which they were added.",
     areToldInOrder},
    {"listeners.added-twice-are-told-twice", "A listener that was added twice is told twice.",
     areToldTwice},
    {"listeners.null-is-ignored", "Null among the listeners that are added is ignored.",
     nullIsIgnored},
    {"listeners.removed-are-not-told",
     "removeCallBack takes every entry of a listener off, and no other one's.", removedAreNotTold},
    {"listeners.strangers-may-be-removed",
     "Removing a listener that was never added changes nothing.", othersMayBeRemoved},
    {"listeners.added-inside-hear-the-next",
     "A listener that is added during an event hears from the next event on.", addedHearTheNext},
    {"listeners.removed-inside-are-not-called",
     "A listener that another one removes during an event is not called any more.",
     removedInsideAreNotCalled},
    {"listeners.may-remove-themselves",
     "A listener may remove itself during an event; those behind it are told all the same.",
     mayRemoveThemselves},
    {"listeners.stay-for-next-runs", "Listeners stay from one run to the next.", stayForNextRuns},
};

}  // namespace validator
