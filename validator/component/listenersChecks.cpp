#include <memory>

#include "validator/component/groups.h"
#include "validator/component/runs.h"

namespace validator {
namespace {

/// A run whose one task runs, and three listeners; what a listener does is tried in each kind of
/// notification: 1 to 4, where 2 is the run's end.
struct Scene {
    explicit Scene(Stage& theStage, std::uint32_t theEvent) : stage(theStage), event(theEvent) {
        stage.component().clearMaterials();
        stage.component().addCallBack(&first);
        stage.component().addCallBack(&last);
        stage.component().addCallBack(&behind);
        FakeMedia& material = stage.make(clip());
        stage.component().insertMaterials(materialList({&material}).get(), 0);
        stage.useKinds({6});
        stage.component().start();
        stage.journal();
    }

    static FakeTask& task() { return theRunningTask(); }

    /// Has the component tell of the event. Both may be gone afterwards.
    void tell() const {
        if (event == KOR::taskEventFinished) {
            task().finish();
        } else {
            KOR::TaskEventPayload payload{};
            task().send(1, event, &payload);
        }
    }

    Stage& stage;
    const std::uint32_t event;
    RecordingListener first{"first"};
    RecordingListener last{"last"};
    RecordingListener behind{"behind"};
    RecordingListener added{"added"};  // not yet
};

/// Calls `body` with a component of its own for each kind of notification.
template <typename Body>
void inEachNotification(Stage& stage, Body body) {
    for (std::uint32_t event = 1; event <= 4; ++event) {
        host().reset();
        Scene scene(stage, event);
        body(scene);
        stage.component().stop();
        stage.releaseComponent();
    }
}

/// Has the component send an event that every listener still there is told of.
void tellOfFailure(Stage& stage) {
    stage.task(0).send(1, KOR::taskEventFailed, nullptr);
}

void areToldInOrder(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        scene.tell();
        Lines told = stage.journal();
        std::erase_if(told, [](const std::string& line) {
            return line.find(": event ") == std::string::npos;
        });
        expectEqual("listeners told", told.size(), std::size_t{3});
        expectEqual("the first that is told", told[0].substr(0, told[0].find(':')), "first");
        expectEqual("the second that is told", told[1].substr(0, told[1].find(':')), "last");
        expectEqual("the third that is told", told[2].substr(0, told[2].find(':')), "behind");
    });
}

void addedTwiceAreToldTwice(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.component().addCallBack(&listener);
    stage.component().start();
    expectEqual("the events", listener.events(), Events{2, 2});
}

void areRemovedWholly(Stage& stage) {
    RecordingListener listener;
    RecordingListener other;
    stage.component().addCallBack(&listener);
    stage.component().addCallBack(&other);
    stage.component().addCallBack(&listener);
    expectEqual("removeCallBack()", stage.component().removeCallBack(&listener), KOR::statusOk);
    stage.component().start();
    expectEqual("the events of the one removed", listener.events(), Events{});
    expectEqual("the events of the other one", other.events(), Events{2});
}

void mayRemoveThemselves(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        onceInside(scene.first, [&] { stage.component().removeCallBack(&scene.first); });
        scene.tell();
        tellOfFailure(stage);
        expectEqual("the events of the one removed", scene.first.events(), Events{scene.event});
        expectEqual("the events of the other one", scene.last.events(), Events{scene.event, 3});
    });
}

void areNotCalledOnceRemoved(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        onceInside(scene.first, [&] { stage.component().removeCallBack(&scene.last); });
        scene.tell();
        expectEqual("the events of the one that removes", scene.first.events(),
                    Events{scene.event});
        expectEqual("the events of the one removed", scene.last.events(), Events{});
    });
}

void areNotSkipped(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        onceInside(scene.last, [&] { stage.component().removeCallBack(&scene.first); });
        scene.tell();
        expectEqual("the events of the one behind", scene.behind.events(), Events{scene.event});
    });
}

void mayAllBeRemoved(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        onceInside(scene.first, [&] {
            stage.component().removeCallBack(&scene.first);
            stage.component().removeCallBack(&scene.last);
            stage.component().removeCallBack(&scene.behind);
        });
        scene.tell();
        tellOfFailure(stage);
        expectEqual("the events of the first", scene.first.events(), Events{scene.event});
        expectEqual("the events of the last", scene.last.events(), Events{});
    });
}

void losesSecondEntryInFirstCall(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.component().addCallBack(&listener);
    onceInside(listener, [&] { stage.component().removeCallBack(&listener); });
    stage.component().start();
    expectEqual("the events", listener.events(), Events{2});
}

void mayDieOnceRemoved(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        auto doomed = std::make_unique<RecordingListener>("doomed");
        insideProgress(scene.last, [&] { stage.component().addCallBack(doomed.get()); });
        onceInside(scene.first, [&] {
            stage.component().removeCallBack(doomed.get());
            doomed.reset();
        });
        stage.journal();
        scene.tell();
        expectLines("what the removed one was told", stage.journal("doomed"), {});
    });
}

void addedHearFromNextOn(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        onceInside(scene.first, [&] { stage.component().addCallBack(&scene.added); });
        scene.tell();
        expectEqual("the events of the one added", scene.added.events(), Events{});
        tellOfFailure(stage);
        expectEqual("its events after the next one", scene.added.events(), Events{3});
    });
}

void replacedWaitForNext(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        onceInside(scene.first, [&] {
            stage.component().removeCallBack(&scene.last);
            stage.component().addCallBack(&scene.last);
        });
        scene.tell();
        expectEqual("the events of the one removed and added", scene.last.events(), Events{});
        tellOfFailure(stage);
        expectEqual("its events after the next one", scene.last.events(), Events{3});
    });
}

void mayStop(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        KOR::Status answer = KOR::statusFailed;
        onceInside(scene.first, [&] { answer = stage.component().stop(); });
        scene.tell();
        expectEqual("stop()", answer, KOR::statusOk);
        expectEqual("the task is running", stage.task(0).running(), false);
        expectEqual("the last event of the last listener", lastOf("events", scene.last.events()),
                    scene.event);
        stage.journal();
        stage.task(0).finish();
        expectLines("what a finish behind it led to", stage.journal(), {});
    });
}

void mayStartAgain(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        KOR::Status answer = KOR::statusFailed;
        onceInside(scene.first, [&] {
            stage.component().stop();
            answer = stage.component().start();
        });
        scene.tell();
        expectEqual("start()", answer, KOR::statusOk);
        expectEqual("the task is running", stage.task(0).running(), true);
        const std::size_t before = scene.first.events().size();
        stage.task(0).finish();
        expectEqual("events of the second run's end", scene.first.events().size(), before + 1);
        expectEqual("the last event", lastOf("events", scene.first.events()), 2);
    });
}

void mayRelease(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        int tasksLeft = 1;
        onceInside(scene.first, [&] { stage.releaseComponent(); });
        scene.last.onEvent = [&](std::uint32_t) { tasksLeft = host().live.tasks; };
        scene.tell();
        expectEqual("the events of the one that releases", scene.first.events(),
                    Events{scene.event});
        expect(tasksLeft > 0, "the listener told behind it", "told while the component lives",
               "told although the component is gone");
        expectEqual("tasks that are left", host().live.tasks.load(), 0);
    });
}

void mayReleaseAsLast(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        onceInside(scene.behind, [&] { stage.releaseComponent(); });
        scene.tell();
        expectEqual("the events of the first", scene.first.events(), Events{scene.event});
        expectEqual("the events of the last", scene.behind.events(), Events{scene.event});
        expectEqual("tasks that are left", host().live.tasks.load(), 0);
    });
}

void areToldOfNestedEvents(Stage& stage) {
    inEachNotification(stage, [&](Scene& scene) {
        onceInside(scene.first, [&] { tellOfFailure(stage); });
        scene.tell();
        expectEqual("the events of the first", scene.first.events(), Events{scene.event, 3});
        expectEqual("the events of the last", scene.last.events(), Events{3, scene.event});
    });
}

void mayClearAtTheEnd(Stage& stage) {
    Scene scene(stage, KOR::taskEventFinished);
    onceInside(scene.first, [&] { stage.component().clearMaterials(); });
    scene.tell();
    expectEqual("the events of the last", scene.last.events(), Events{2});
    expectEqual("records", stage.results().size(), std::size_t{0});
    expectEqual("start() without materials", stage.component().start(), KOR::statusOk);
    expectEqual("the events behind it", scene.last.events(), Events{2, 2});
}

void mayStartFromTheEnd(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(photo("photo.jpg"));
    int runs = 1;
    listener.onEvent = [&](std::uint32_t) {
        if (++runs <= 5) stage.component().start();
    };
    expectEqual("start()", stage.component().start(), KOR::statusOk);
    expectEqual("the events", listener.events(), Events{2, 2, 2, 2, 2});
    expectEqual("records of the last run", stage.results().size(), std::size_t{1});
}

}  // namespace

const std::vector<ComponentCheck> listenersChecks = {
    {"listeners.are-told-in-order", "Listeners are told of events in the order they were added in.",
     areToldInOrder},
    {"listeners.added-twice-are-told-twice", "A listener that was added twice is told twice.",
     addedTwiceAreToldTwice},
    {"listeners.are-removed-wholly", "removeCallBack() removes every entry of a listener.",
     areRemovedWholly},
    {"listeners.may-remove-themselves", "A listener may take itself off inside an event.",
     mayRemoveThemselves},
    {"listeners.are-not-called-once-removed",
     "A listener that another one took off inside an event is not told of it any more.",
     areNotCalledOnceRemoved},
    {"listeners.are-not-skipped",
     "Taking off a listener that was told already keeps nobody else from being told.",
     areNotSkipped},
    {"listeners.may-all-be-removed", "All listeners may be taken off inside an event.",
     mayAllBeRemoved},
    {"listeners.lose-second-entry-in-first-call",
     "A listener added twice that takes itself off when it is told is not told again.",
     losesSecondEntryInFirstCall},
    {"listeners.may-die-once-removed",
     "A listener may die inside the event in which it is taken off.", mayDieOnceRemoved},
    {"listeners.added-hear-from-next-on",
     "A listener that is added inside an event is told from the next one on.", addedHearFromNextOn},
    {"listeners.replaced-wait-for-next",
     "A listener taken off and added again inside an event is told from the next one on.",
     replacedWaitForNext},
    {"listeners.may-stop", "A listener may stop the run inside any event.", mayStop},
    {"listeners.may-start-again", "A listener may stop the run and start another inside any event.",
     mayStartAgain},
    {"listeners.may-release",
     "A listener may give back the last reference inside any event, and nobody is told by a "
     "component that is gone.",
     mayRelease},
    {"listeners.may-release-as-last",
     "The last listener may give back the last reference inside any event.", mayReleaseAsLast},
    {"listeners.are-told-of-nested-events",
     "An event that a listener causes inside another one reaches every listener.",
     areToldOfNestedEvents},
    {"listeners.may-clear-at-the-end", "A listener may clear the materials inside the run's end.",
     mayClearAtTheEnd},
    {"listeners.may-start-from-the-end", "A listener may start the next run inside the run's end.",
     mayStartFromTheEnd},
};

}  // namespace validator
