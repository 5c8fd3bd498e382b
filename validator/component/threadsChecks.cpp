#include <algorithm>
#include <memory>
#include <thread>

#include "validator/check/onThreads.h"
#include "validator/component/groups.h"
#include "validator/component/runs.h"

namespace validator {
namespace {

/// Runs `action` on a thread of its own and waits for its end.
template <typename Action>
void elsewhere(Action action) {
    std::thread(action).join();
}

void takesEventsFromAnyThread(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip("a.mp4"));
    stage.insert(clip("b.mp4"));
    useKindsQuietly(stage, {4, 3, 1, 5});
    runWithProgress(stage);
    const Lines onOneThread = stage.journal();
    stage.component().start();
    while (FakeTask* const running = host().runningTask()) {
        elsewhere([&] { running->progress(50); });
        elsewhere([&] { running->finish(); });
    }
    expectLines("the run on changing threads", stage.journal(), onOneThread);
}

void takesFinishBeforeStartReturns(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip("a.mp4"));
    stage.insert(clip("b.mp4"));
    useKindsQuietly(stage, {4, 3});
    for (std::size_t i = 0; i < 2; ++i) {
        FakeTask& task = stage.task(i);
        task.onCall("start", [&task] { elsewhere([&task] { task.finish(); }); });
    }
    stage.component().start();
    expectEqual("the events", listener.events(), Events{2});
    expectLines("the starts", startsSinceLastLook(stage),
                {"task0 a.mp4", "task1 a.mp4", "task0 b.mp4", "task1 b.mp4"});
    expectEqual("the records", stage.results().size(), std::size_t{4});
}

void startsOnAnyThread(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.insert(clip());
    stage.useKinds({4, 3});
    stage.runToEnd();
    elsewhere([&] { stage.runToEnd(); });
    stage.runToEnd();
    expectEqual("the events", listener.events(), Events{2, 2, 2});
}

void countsReferencesOnManyThreads(Stage& stage) {
    // Enough for the threads to be at it at once, also where a fault leaves but a moment for that.
    constexpr int times = 200000;
    constexpr auto all = std::uint32_t{1} + threadCount * times;
    KOR::IKorMaterialAnalysis& component = stage.component();
    const auto onThreadsOften = [](const auto& action) {
        onThreads([&](int) {
            for (int time = 0; time < times; ++time)
                action();
        });
    };
    onThreadsOften([&] { component.addRef(); });
    expectEqual("refCount()", component.refCount(), all);
    onThreadsOften([&] {
        component.addRef();
        component.release();
    });
    expectEqual("refCount() once as many were given back as were taken", component.refCount(), all);
    onThreadsOften([&] { component.release(); });
    expectEqual("refCount() once all were given back", component.refCount(), 1);
}

void bearsRacingStop(Stage& stage) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    for (int i = 0; i < 200; ++i)
        stage.insert(clip());
    stage.useKinds({4, 3});
    stage.component().start();
    std::thread driver([] { host().finishAllTasks(); });
    std::thread stopper([&] { stage.component().stop(); });
    driver.join();
    stopper.join();
    // That stop may have missed a task that was just being started.
    stage.component().stop();
    const Events events = listener.events();
    expect(std::count(events.begin(), events.end(), 2U) <= 1, "the ends of the run", "at most 1",
           shown(events));
    expectNull("a task that runs", host().runningTask());
    stage.journal();
    stage.task(0).finish();
    expectLines("what a finish behind it led to", stage.journal(), {});
}

void isReleasedElsewhere(Stage& stage) {
    stage.insert(clip());
    stage.useKinds({4, 3});
    stage.runToEnd();
    std::uint32_t left = 1;
    elsewhere([&] { left = stage.releaseComponent(); });
    expectEqual("release()", left, 0);
    expectNothingLeft(stage);
}

void runSideBySide(Stage& stage) {
    constexpr std::size_t count = 4;
    std::vector<Component> components;
    std::vector<std::unique_ptr<RecordingListener>> listeners;
    for (std::size_t i = 0; i < count; ++i) {
        components.push_back(stage.create());
        listeners.push_back(std::make_unique<RecordingListener>());
        components.back()->addCallBack(listeners.back().get());
        FakeMedia& material = stage.make(clip());
        const auto list = materialList(std::vector<FakeMedia*>(20, &material));
        components.back()->insertMaterials(list.get(), 0);
        components.back()->setAnalysisKinds(intList({4, 3}).get());
    }
    host().tasksFinishInsideStart = true;
    std::vector<std::thread> threads;
    for (const Component& component : components)
        threads.emplace_back([&component] { component->start(); });
    for (std::thread& thread : threads)
        thread.join();
    for (std::size_t i = 0; i < count; ++i) {
        expectEqual("the events", listeners[i]->events(), Events{2});
        const Owned<KOR::IKORVoidPtrList> list(createKORAutoVoidPtrList());
        components[i]->getResults(list.get());
        expectEqual("the records", list->count(), 40);
        for (std::int64_t record = 0; record < list->count(); ++record) {
            auto* const media = static_cast<KOR::MaterialAnalysisResult*>(list->at(record))->media;
            media->release();
            media->release();
        }
    }
}

}  // namespace

const std::vector<ComponentCheck> threadsChecks = {
    {"threads.takes-events-from-any-thread",
     "A run whose every event comes from another thread does what it does on one.",
     takesEventsFromAnyThread},
    {"threads.takes-finish-before-start-returns",
     "A task may finish on another thread before its start has returned.",
     takesFinishBeforeStartReturns},
    {"threads.starts-on-any-thread", "Runs of one component may be started on different threads.",
     startsOnAnyThread},
    {"threads.counts-references-on-many-threads",
     "References taken and given back on many threads at once are all counted.",
     countsReferencesOnManyThreads},
    {"threads.bears-racing-stop",
     "stop() may come from another thread at any moment of a run, and none goes on behind it.",
     bearsRacingStop},
    {"threads.is-released-elsewhere", "The last reference may be given back on another thread.",
     isReleasedElsewhere},
    {"threads.run-side-by-side", "Components may run on threads of their own at the same time.",
     runSideBySide},
};

}  // namespace validator
