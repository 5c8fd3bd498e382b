#include <string>
#include <utility>

#include "validator/component/groups.h"

namespace validator {
namespace {

/// Notes when it is told.
class NotingObserver final : public KOR::IDmDestroyObserver {
public:
    explicit NotingObserver(std::string name = "observer") : name_(std::move(name)) {}
    void objectDestroyed() override { host().note(name_); }

private:
    std::string name_;
};

/// Ten seconds in two scenes with a keyframe each.
MediaSpec clip(const std::string& name) {
    return video(name, 10 * second)
        .scenes({{0, 4 * second}, {4 * second, 10 * second}})
        .keyFrames({second, 5 * second});
}

void countsUpAndDown(Stage& stage) {
    KOR::IKorMaterialAnalysis& component = stage.component();
    for (std::uint32_t count = 2; count <= 5; ++count)
        expectEqual("addRef()", component.addRef(), count);
    for (std::uint32_t count = 4; count >= 1; --count)
        expectEqual("release()", component.release(), count);
}

void tellsTheCount(Stage& stage) {
    KOR::IKorMaterialAnalysis& component = stage.component();
    component.addRef();
    expectEqual("refCount() after addRef()", component.refCount(), 2);
    expectEqual("refCount(), asked again", component.refCount(), 2);
    component.release();
    expectEqual("refCount() after release()", component.refCount(), 1);
}

void worksWithWhatIsLeft(Stage& stage) {
    stage.component().addRef();
    stage.insert(photo("photo.jpg"));
    stage.component().release();
    stage.runToEnd();
    expectEqual("results", stage.results().size(), 1U);
}

void useLeavesTheCount(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip("clip.mp4"));
    stage.useKinds({4, 3});
    expectEqual("refCount() before a run", stage.component().refCount(), 1);
    stage.runToEnd();
    expectEqual("refCount() after a run", stage.component().refCount(), 1);
}

void observerIsTold(Stage& stage) {
    NotingObserver observer;
    stage.component().setDestroyObserver(&observer);
    stage.releaseComponent();
    expectLines("what the observer was told", stage.journal(), {"observer"});
}

void observerIsToldOfTheLastOnly(Stage& stage) {
    NotingObserver observer;
    stage.component().setDestroyObserver(&observer);
    stage.component().addRef();
    stage.component().release();
    stage.component().setDestroyObserver(nullptr);
    expectLines("what the observer was told", stage.journal(), {});
}

void observerIsTakenOff(Stage& stage) {
    NotingObserver observer;
    stage.component().setDestroyObserver(&observer);
    stage.component().setDestroyObserver(nullptr);
    const void* const found = stage.component().getDestroyObserver();
    stage.releaseComponent();
    expectNull("getDestroyObserver()", found);
    expectLines("what the observer was told", stage.journal(), {});
}

void lastObserverCounts(Stage& stage) {
    NotingObserver first("first");
    NotingObserver other("second");
    stage.component().setDestroyObserver(&first);
    stage.component().setDestroyObserver(&other);
    stage.releaseComponent();
    expectLines("what the observers were told", stage.journal(), {"second"});
}

void observerIsToldFirst(Stage& stage) {
    NotingObserver observer;
    stage.component().setDestroyObserver(&observer);
    stage.useKinds({4});
    stage.journal();
    stage.releaseComponent();
    expectLines("the end", stage.journal(), {"observer", "task0.destruction"});
}

/// Adds a material that the component alone holds.
void give(KOR::IKorMaterialAnalysis& component, const MediaSpec& spec) {
    const Owned<FakeMedia> media(new FakeMedia(spec));
    expectEqual("insertMaterials()",
                component.insertMaterials(materialList({media.get()}).get(), 0), KOR::statusOk);
}

void endsInOrder(Stage& stage) {
    give(stage.component(), photo("with a record.jpg"));
    stage.component().start();
    give(stage.component(), photo("without a record.jpg"));
    stage.useKinds({4});
    stage.journal();
    stage.releaseComponent();
    expectLines(
        "the end", stage.journal(),
        {"without a record.jpg destruction", "task0.destruction", "with a record.jpg destruction"});
}

void materialsAreReleased(Stage& stage) {
    const FakeMedia& media = stage.insert(video("clip.mp4", 10 * second));
    expectEqual("references on the material", media.refCount(), 2U);
    stage.releaseComponent();
    expectEqual("references on the material at the end", media.refCount(), 1U);
}

void resultsAreReleased(Stage& stage) {
    const FakeMedia& media = stage.insert(photo("photo.jpg"));
    stage.component().start();
    stage.component().removeMaterialAt(0);
    expectEqual("references on the material of a result", media.refCount(), 2U);
    stage.releaseComponent();
    expectEqual("references on the material at the end", media.refCount(), 1U);
}

void tasksAreReleased(Stage& stage) {
    stage.useKinds({1, 2, 3, 4, 5, 6, 7});
    expectEqual("tasks that exist", host().live.tasks.load(), 7);
    stage.releaseComponent();
    expectEqual("tasks that exist at the end", host().live.tasks.load(), 0);
}

void heldTaskLivesOn(Stage& stage) {
    stage.useKinds({4});
    const Owned<FakeTask> task(&stage.task(0));
    task->addRef();
    stage.releaseComponent();
    expectEqual("references on the task", task->refCount(), 1);
}

void everythingIsGivenBack(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip("clip.mp4").cacheIn(stage.directory()));
    stage.insert(photo("photo.jpg"));
    stage.insert(clip("next.mp4"));
    stage.setParam("photoNeedAnalysis", 1);
    stage.useKinds({4, 3, 2, 1, 5, 6, 7});
    stage.runToEnd();
    stage.runToEnd();
    stage.end();
    expectEqual("materials", host().live.media.load(), 0);
    expectEqual("tasks", host().live.tasks.load(), 0);
    expectEqual("lists", host().live.lists.load(), 0);
    expectEqual("log streams", host().live.logStreams.load(), 0);
}

/// Ends the component while its task runs, and says what happened then.
Lines endOfRunningComponent(Stage& stage, RecordingListener& listener) {
    stage.component().addCallBack(&listener);
    stage.insert(video("clip.mp4", 10 * second));
    stage.useKinds({4, 3});
    stage.component().start();
    const Owned<FakeTask> held(&stage.task(0));
    held->addRef();
    expect(held->running(), "the first task", "running", "not running");
    stage.journal();
    stage.releaseComponent();
    return stage.journal();
}

void endsWithoutStop(Stage& stage) {
    RecordingListener listener;
    Lines end = endOfRunningComponent(stage, listener);
    std::erase_if(end, [](const std::string& line) { return line.find(".stop") == line.npos; });
    expectLines("calls of stop", end, {});
}

void endsWithoutEvent(Stage& stage) {
    RecordingListener listener;
    endOfRunningComponent(stage, listener);
    expectEqual("events heard", listener.heard().size(), 0U);
}

void endsInsideLastEvent(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    listener.onEvent = [&](std::uint32_t event) {
        if (event == KOR::taskEventFinished) stage.releaseComponent();
    };
    stage.insert(clip("clip.mp4"));
    stage.useKinds({4, 3});
    stage.runToEnd();
    stage.end();
    // Whether the component itself still holds a reference in there is not settled.
    expectEqual("tasks at the end", host().live.tasks.load(), 0);
    expectEqual("materials at the end", host().live.media.load(), 0);
}

}  // namespace

const std::vector<ComponentCheck> countingChecks = {
    {"counting.returns-new-count", "addRef and release return the new count.", countsUpAndDown},
    {"counting.tells-count", "refCount tells the count and leaves it as it is.", tellsTheCount},
    {"counting.works-with-what-is-left",
     "A component works on after one of several references was given back.", worksWithWhatIsLeft},
    {"counting.use-leaves-count",
     "Neither a listener, nor materials, kinds and a run, leave a reference on the component.",
     useLeavesTheCount},
    {"counting.no-observer-at-first", "A fresh component has no observer.",
     [](Stage& stage) {
         expectNull("getDestroyObserver()", stage.component().getDestroyObserver());
     }},
    {"counting.observer-is-given-back", "getDestroyObserver gives the observer that was set last.",
     [](Stage& stage) {
         NotingObserver first;
         NotingObserver other;
         stage.component().setDestroyObserver(&first);
         stage.component().setDestroyObserver(&other);
         const void* const found = stage.component().getDestroyObserver();
         stage.component().setDestroyObserver(nullptr);
         expectSame("getDestroyObserver()", found, &other);
     }},
    {"counting.observer-told-once", "The last release tells the observer once.", observerIsTold},
    {"counting.observer-told-of-last-only",
     "A release that leaves a reference does not tell the observer.", observerIsToldOfTheLastOnly},
    {"counting.observer-taken-off", "A null observer takes the one before off.",
     observerIsTakenOff},
    {"counting.last-observer-counts", "Of two observers set, only the second is told.",
     lastObserverCounts},
    {"counting.observer-told-first",
     "The observer is told before the component gives anything back.", observerIsToldFirst},
    {"counting.ends-in-order",
     "At its end the component gives back its materials, then its tasks, then its results.",
     endsInOrder},
    {"counting.end-releases-materials", "The last release gives back each material.",
     materialsAreReleased},
    {"counting.end-releases-results",
     "The last release gives back what the results hold, also of materials that were removed.",
     resultsAreReleased},
    {"counting.end-releases-tasks", "The last release gives back each task.", tasksAreReleased},
    {"counting.held-task-lives-on", "A task that the host holds outlives the component.",
     heldTaskLivesOn},
    {"counting.end-gives-everything-back",
     "After two runs with all kinds, nothing of the host's is left when the component is gone.",
     everythingIsGivenBack},
    {"counting.end-stops-no-task", "The last release does not stop the task that runs.",
     endsWithoutStop},
    {"counting.end-sends-no-event", "The last release tells the listeners nothing.",
     endsWithoutEvent},
    {"counting.ends-inside-last-event",
     "The last reference may be given back inside the event that ends the run.",
     endsInsideLastEvent},
};

}  // namespace validator
