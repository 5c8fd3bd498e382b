#include <atomic>
#include <cstdint>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

using Events = std::vector<std::uint32_t>;

/// Waits without ordering anything, so that it hides no race from a race detector.
void spinUntil(const std::atomic<bool>& flag) {
    while (!flag.load(std::memory_order_relaxed))
        std::this_thread::yield();
}

class Threads : public RunTest {
protected:
    void insertVideos(int count) {
        for (int i = 0; i < count; ++i) {
            insert(video("clip.mp4", 100 * second).keyFrames({5 * second}));
        }
    }
};

TEST_F(Threads, TasksMayReportFromAnotherThread) {
    insertVideos(3);
    useKinds({4, 3});
    component().start();
    std::thread worker([] {
        while (FakeTask* const running = host().runningTask()) {
            running->progress(50);
            running->finish();
        }
    });
    worker.join();
    EXPECT_EQ(listener.events(), (Events{1, 1, 1, 1, 1, 1, 2}));
    EXPECT_EQ(probe().results().size(), 3U);
}

TEST_F(Threads, EachTaskMayReportFromAThreadOfItsOwn) {
    insertVideos(5);
    useKinds({4, 3});
    component().start();
    while (FakeTask* const running = host().runningTask()) {
        std::thread([running] { running->finish(); }).join();
    }
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(Threads, WholeRunMayEndElsewhereBeforeStartReturns) {
    insertVideos(3);
    useKinds({4, 3});
    std::thread worker;
    std::atomic<bool> over{false};
    task(0).onCall("start", [&] {
        task(0).onCall("start", [] {});
        worker = std::thread([&] {
            host().finishAllTasks();
            over.store(true, std::memory_order_relaxed);
        });
        spinUntil(over);
    });
    EXPECT_EQ(component().start(), KOR::statusOk);
    worker.join();
    EXPECT_EQ(listener.events(), Events{2});
    EXPECT_EQ(probe().results().size(), 3U);
}

TEST_F(Threads, LastReferenceMayGoElsewhereBeforeStartReturns) {
    insertVideos(2);
    useKinds({4, 3});
    listener.onEvent = [&](std::uint32_t) { releaseComponent(); };
    std::thread worker;
    std::atomic<bool> over{false};
    task(0).onCall("start", [&] {
        task(0).onCall("start", [] {});
        worker = std::thread([&] {
            host().finishAllTasks();
            over.store(true, std::memory_order_relaxed);
        });
        spinUntil(over);
    });
    component().start();
    worker.join();
    EXPECT_EQ(listener.events(), Events{2});
    EXPECT_EQ(host().live.tasks, 0);
}

TEST_F(Threads, StartMayReturnWhileTheTaskReportsElsewhere) {
    insertVideos(20);
    useKinds({4, 3});
    std::thread worker;
    task(0).onCall("start", [&] {
        task(0).onCall("start", [] {});
        worker = std::thread([] { host().finishAllTasks(); });
    });
    EXPECT_EQ(component().start(), KOR::statusOk);
    worker.join();
    EXPECT_EQ(listener.events(), Events{2});
}

TEST_F(Threads, StopMayComeFromAnotherThread) {
    insertVideos(1);
    useKinds({4, 3});
    task(0).stopSilently();
    component().start();
    std::atomic<bool> stopped{false};
    std::thread stopper([&] {
        component().stop();
        stopped = true;
    });
    do {
        task(0).progress(50);
    } while (!stopped);
    stopper.join();
    task(0).finish();
    EXPECT_EQ(host().startCount, 1);
    for (const std::uint32_t event : listener.events())
        EXPECT_EQ(event, 1U);
}

TEST_F(Threads, ReferencesMayBeCountedFromSeveral) {
    constexpr int rounds = 10000;
    const auto count = [this] {
        for (int i = 0; i < rounds; ++i) {
            component().addRef();
            component().release();
        }
    };
    std::thread first(count);
    std::thread other(count);
    first.join();
    other.join();
    EXPECT_EQ(component().refCount(), 1U);
}

TEST_F(Threads, LastReferenceMayGoWhileTheLastEventReturns) {
    for (int round = 0; round < 200; ++round) {
        auto* const analysis = createMaterialAnalysis();
        const Owned<FakeMedia> clip(new FakeMedia(video("clip.mp4", 100 * second)));
        analysis->insertMaterials(materialList({clip.get()}).get(), 0);
        analysis->setAnalysisKinds(intList({6}).get());
        std::promise<void> ended;
        RecordingListener waiting("waiting");
        waiting.onEvent = [&](std::uint32_t) { ended.set_value(); };
        analysis->addCallBack(&waiting);
        analysis->start();
        std::thread worker([running = host().runningTask()] { running->finish(); });
        ended.get_future().wait();
        EXPECT_EQ(analysis->release(), 0U);
        worker.join();
    }
}

TEST_F(Threads, ComponentsDoNotShareState) {
    const auto drive = [] {
        for (int i = 0; i < 200; ++i) {
            const Owned<KOR::IKorMaterialAnalysis> own(createMaterialAnalysis());
            RecordingListener heard("own");
            own->addCallBack(&heard);
            const Owned<FakeMedia> still(new FakeMedia(photo("photo.jpg")));
            own->insertMaterials(materialList({still.get()}).get(), 0);
            own->start();
            EXPECT_EQ(heard.events(), Events{2});
        }
    };
    std::thread first(drive);
    std::thread other(drive);
    first.join();
    other.join();
}

}  // namespace
}  // namespace fake_host
