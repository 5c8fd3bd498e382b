// What threads do to a component at once and one after another, many times over, for a race
// detector to look at. The host records nothing here: its locks would put in order what is not.

#include <atomic>
#include <cstdint>
#include <functional>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

/// Counts events, on any thread.
class Counting final : public KOR::IKorCallBack {
public:
    KOR::Status onReserved() override { return KOR::statusOk; }
    KOR::Status onTaskEvent(KOR::IDmBaseObj*, std::uint32_t, std::uint32_t event, void*) override {
        if (event == KOR::taskEventProgress) progresses.fetch_add(1, std::memory_order_relaxed);
        if (event == KOR::taskEventFinished) ends.fetch_add(1, std::memory_order_relaxed);
        if (event == KOR::taskEventStopped) stops.fetch_add(1, std::memory_order_relaxed);
        return 0;
    }
    std::atomic<int> progresses{0};
    std::atomic<int> ends{0};
    std::atomic<int> stops{0};
};

class CountingDeaths final : public KOR::IDmDestroyObserver {
public:
    void objectDestroyed() override { ++deaths; }
    std::atomic<int> deaths{0};
};

/// Runs all of them at once, and returns when all are done.
void atOnce(const std::vector<std::function<void()>>& works) {
    std::atomic<std::size_t> ready{0};
    std::vector<std::thread> threads;
    threads.reserve(works.size());
    for (const auto& work : works) {
        threads.emplace_back([&ready, &work, count = works.size()] {
            ready.fetch_add(1, std::memory_order_relaxed);
            while (ready.load(std::memory_order_relaxed) < count)
                std::this_thread::yield();
            work();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

class Hammer : public ComponentTest {
protected:
    Hammer() {
        host().recording = false;
        component().addCallBack(&listener);
    }

    static constexpr int videos = 6;

    void insertVideos() {
        for (int i = 0; i < videos; ++i)
            insert(video("clip.mp4", 100 * second).keyFrames({5 * second}));
        useKinds({4, 3});
    }

    /// Reports progress and ends, task after task, as long as one runs.
    static void reportAll() {
        while (FakeTask* const running = host().runningTask()) {
            running->progress(50);
            running->finish();
        }
    }

    /// After whatever was done to it, the component runs through once more.
    void expectAWholeRun() {
        component().stop();
        const int before = listener.ends;
        component().start();
        reportAll();
        EXPECT_EQ(listener.ends, before + 1);
        EXPECT_EQ(probe().results().size(), std::size_t{videos});
    }

    Counting listener;
};

TEST_F(Hammer, LastOfManyReferencesDestroysOnce) {
    for (int round = 0; round < 50; ++round) {
        auto* const analysis = createMaterialAnalysis();
        CountingDeaths observer;
        analysis->setDestroyObserver(&observer);
        const auto countAndRelease = [analysis] {
            for (int i = 0; i < 1000; ++i) {
                analysis->addRef();
                analysis->release();
            }
            analysis->release();
        };
        for (int i = 1; i < 4; ++i)
            analysis->addRef();
        atOnce({countAndRelease, countAndRelease, countAndRelease, countAndRelease});
        ASSERT_EQ(observer.deaths, 1);
    }
}

TEST_F(Hammer, StopRacesEventsOfARun) {
    insertVideos();
    int cancelled = 0;
    for (int round = 0; round < 300; ++round) {
        const int before = listener.ends;
        component().start();
        atOnce({[] { reportAll(); },
                [this, round] {
                    for (int i = 0; i < round % 16; ++i)
                        std::this_thread::yield();
                    component().stop();
                }});
        component().stop();
        ASSERT_EQ(host().runningTask(), nullptr);
        const int starts = host().startCount;
        task(0).finish();
        ASSERT_EQ(host().startCount, starts);
        const int ends = listener.ends - before;
        ASSERT_LE(ends, 1);
        cancelled += 1 - ends;
    }
    RecordProperty("cancelled", cancelled);
    expectAWholeRun();
}

TEST_F(Hammer, StopRacesItself) {
    insertVideos();
    for (int round = 0; round < 300; ++round) {
        const int before = listener.stops;
        component().start();
        const auto stop = [this] { component().stop(); };
        atOnce({stop, stop, stop});
        // The one task that runs says so once.
        ASSERT_EQ(listener.stops, before + 1);
    }
    expectAWholeRun();
}

TEST_F(Hammer, StopRacesAStartThatIsTheWholeRun) {
    insertVideos();
    host().tasksFinishInsideStart = true;
    for (int round = 0; round < 300; ++round) {
        const int before = listener.ends;
        atOnce({[this] { component().start(); }, [this] { component().stop(); }});
        ASSERT_LE(listener.ends - before, 1);
        ASSERT_EQ(host().startDepth, 0);
    }
    host().tasksFinishInsideStart = false;
    expectAWholeRun();
}

TEST_F(Hammer, StartsAndStopsInALoopWithEventsElsewhere) {
    insertVideos();
    for (int round = 0; round < 300; ++round) {
        component().start();
        std::thread([round] {
            for (int i = 0; i < round % 12; ++i) {
                FakeTask* const running = host().runningTask();
                if (running == nullptr) return;
                running->progress(i);
                running->finish();
            }
        }).join();
        component().stop();
        ASSERT_EQ(host().runningTask(), nullptr);
    }
    expectAWholeRun();
}

TEST_F(Hammer, EventsChangeThreadsOneAfterAnother) {
    insertVideos();
    constexpr unsigned threads = 4;
    for (int round = 0; round < 100; ++round) {
        const int ends = listener.ends;
        const int progresses = listener.progresses;
        component().start();
        std::atomic<unsigned> turn{0};
        std::atomic<bool> isOver{false};
        const auto report = [&](unsigned me) {
            for (unsigned step = me; !isOver; step += threads) {
                while (turn.load(std::memory_order_acquire) != step && !isOver)
                    std::this_thread::yield();
                if (isOver) return;
                FakeTask* const running = host().runningTask();
                if (running == nullptr) {
                    isOver = true;
                    return;
                }
                running->progress(50);
                running->finish();
                turn.store(step + 1, std::memory_order_release);
            }
        };
        atOnce({[&] { report(0); }, [&] { report(1); }, [&] { report(2); }, [&] { report(3); }});
        ASSERT_EQ(listener.ends, ends + 1);
        ASSERT_EQ(listener.progresses, progresses + 2 * videos);
        ASSERT_EQ(probe().results().size(), std::size_t{videos});
    }
}

}  // namespace
}  // namespace fake_host
