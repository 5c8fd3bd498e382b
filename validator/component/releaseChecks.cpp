#include <algorithm>

#include "fake_host/faces.h"
#include "validator/component/groups.h"
#include "validator/component/memoryInUse.h"
#include "validator/component/runs.h"

namespace validator {
namespace {

void withoutUse(Stage& stage) {
    stage.insert(clip());
    stage.useKinds({4, 3, 1, 2, 5, 6, 7});
    expectEqual("release()", stage.releaseComponent(), 0);
    expectNothingLeft(stage);
}

void betweenRuns(Stage& stage) {
    stage.insert(clip());
    stage.insert(photo("photo.jpg"));
    stage.useKinds({6, 7});
    stage.runToEnd();
    stage.runToEnd();
    expectEqual("release()", stage.releaseComponent(), 0);
    expectNothingLeft(stage);
}

void afterStop(Stage& stage) {
    stage.insert(clip());
    stage.useKinds({4, 3});
    stage.component().start();
    stage.component().stop();
    expectEqual("release()", stage.releaseComponent(), 0);
    expectNothingLeft(stage);
}

void insideTheEnd(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    std::uint32_t left = 1;
    onceInside(listener, [&] { left = stage.releaseComponent(); });
    stage.runToEnd();
    if (left != 0) warn("a reference is held while the end is told");
    expectEqual("the events", listener.events(), Events{2});
    expectNothingLeft(stage);
}

void insideItsOwnStart(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(photo("photo.jpg"));
    onceInside(listener, [&] { stage.releaseComponent(); });
    stage.component().start();
    expectEqual("the events", listener.events(), Events{2});
    expectNothingLeft(stage);
}

void insideItsOwnStop(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    stage.component().start();
    onceInside(listener, [&] { stage.releaseComponent(); });
    stage.component().stop();
    expectEqual("the events", listener.events(), Events{4});
    expectNothingLeft(stage);
}

void leavesTasksUnstopped(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    stage.component().start();
    stage.journal();
    insideProgress(listener, [&] { stage.releaseComponent(); });
    Lines lines = stage.journal();
    std::sort(lines.begin(), lines.end());
    expectLines("what the release did", lines,
                {"listener: event 1, 25", "task0.destruction", "task1.destruction"});
}

void givesTasksBackOnce(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    stage.component().start();
    FakeTask& held = stage.task(0);
    held.addRef();
    expectEqual("references on the task before", held.refCount(), 2);
    insideProgress(listener, [&] { stage.releaseComponent(); });
    expectEqual("references on the task after", held.refCount(), 1);
    held.release();
    expectNothingLeft(stage);
}

void givesMaterialsBackOnce(Stage& stage) {
    FakeMedia& film = stage.insert(clip());
    FakeMedia& still = stage.insert(photo("photo.jpg"));
    stage.useKinds({4, 3});
    stage.runToEnd();
    // One for the stage, one for the list of materials, one for each record; the tasks' own holds
    // on the film go with the tasks.
    expectEqual("references on the photo before", still.refCount(), 3);
    stage.releaseComponent();
    expectEqual("references on the video after", film.refCount(), 1);
    expectEqual("references on the photo after", still.refCount(), 1);
}

void keepsGoingWithAReference(Stage& stage) {
    RecordingListener listener;
    KOR::IKorMaterialAnalysis& component = stage.component();
    component.addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    component.start();
    expectEqual("addRef()", component.addRef(), 2);
    expectEqual("release()", stage.releaseComponent(), 1);
    host().finishAllTasks();
    expectEqual("the events", listener.events(), Events{2});
    expectEqual("the last release()", component.release(), 0);
    expectNothingLeft(stage);
}

void leavesResultsToTheHost(Stage& stage) {
    FakeMedia& film = stage.insert(clip());
    stage.useKinds({4, 3});
    stage.runToEnd();
    const Owned<KOR::IKORVoidPtrList> list(createKORAutoVoidPtrList());
    stage.component().getResults(list.get());
    stage.releaseComponent();
    expectEqual("copies", list->count(), 2);
    for (std::int64_t i = 0; i < list->count(); ++i) {
        const auto& record = *static_cast<const KOR::MaterialAnalysisResult*>(list->at(i));
        expectSame("the copy's material", record.media, static_cast<KOR::IDmBaseMedia*>(&film));
    }
    expectEqual("references on the material", film.refCount(), 5);
    for (int i = 0; i < 4; ++i)
        film.release();
}

/// A component's whole life, with everything that a run can hold: what is found and what is
/// restored.
void live(Stage& stage) {
    host().recording = false;
    stage.setParam("photoNeedAnalysis", 1);
    stage.insert(clip("restored.mp4").cacheIn(stage.directory()));
    stage.insert(photo("photo.jpg").faceFrames({frameWith({largeFaceAt(0.5, 0.5)})}));
    MediaSpec film = clip("film.mp4");
    stage.insert(film.faceFrames({frameWith({})}).entropies({{0, 4.0}}));
    stage.useKinds({4, 3, 1, 2, 5, 6, 7});
    stage.component().setTaskName("a name that is too long to be kept in place");
    stage.runToEnd();
    stage.runToEnd();
    stage.results();
    stage.end();
    host().reset();
}

/// What the heap itself keeps varies by some bytes. But a block lost in each life, however small,
/// is seen in every round.
void takesNoMoreMemory(Stage& stage) {
    constexpr std::size_t lives = 20;
    constexpr std::size_t smallestBlock = 16;
    std::vector<std::size_t> inUse;
    for (int round = 0; round < 6; ++round) {
        for (std::size_t i = 0; i < lives; ++i)
            live(stage);
        const auto now = memoryInUse();
        if (!now) skip("the system does not say how much memory is in use");
        if (!inUse.empty() && *now < inUse.back() + lives * smallestBlock) return;
        inUse.push_back(*now);
    }
    fail("bytes in use behind every " + shown(lives) + " lives", "no more and more", shown(inUse));
}

}  // namespace

const std::vector<ComponentCheck> releaseChecks = {
    {"release.without-use-leaves-nothing",
     "A component that never ran gives back tasks and materials.", withoutUse},
    {"release.between-runs-leaves-nothing", "After runs the last release gives everything back.",
     betweenRuns},
    {"release.after-stop-leaves-nothing", "After stop() the last release gives everything back.",
     afterStop},
    {"release.may-come-inside-the-end",
     "The last reference may be given back inside the event that tells a run's end.", insideTheEnd},
    {"release.may-come-inside-its-own-start",
     "The last reference may be given back inside start(), when the run ends in there.",
     insideItsOwnStart},
    {"release.may-come-inside-its-own-stop",
     "The last reference may be given back inside stop(), when a task says that it was stopped.",
     insideItsOwnStop},
    {"release.stops-and-tells-nothing",
     "The last release stops no task and tells no listener; it lets go of the tasks.",
     leavesTasksUnstopped},
    {"release.gives-tasks-back-once", "The one reference on each task is given back exactly once.",
     givesTasksBackOnce},
    {"release.gives-materials-back-once",
     "Every reference on a material, those of records too, is given back exactly once.",
     givesMaterialsBackOnce},
    {"release.leaves-run-to-other-references",
     "A run goes on as long as anyone has a reference, and ends with the last one.",
     keepsGoingWithAReference},
    {"release.takes-no-more-memory",
     "Components that come and go, with runs of everything, take no more and more memory.",
     takesNoMoreMemory},
    {"release.leaves-results-to-the-host",
     "Copies of records outlive the component, each with two references on its material.",
     leavesResultsToTheHost},
};

}  // namespace validator
