#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include "host/lists.h"
#include "tests/examples/MinimalHost.h"
#include "tests/examples/PlainFiles.h"

namespace minimal_host_tests {
namespace {

using Ticks = std::vector<std::int64_t>;
constexpr std::int64_t second = KOR::ticksPerSecond;
constexpr std::int64_t frame = second / 25;

/// A video of so many plain pictures.
std::filesystem::path plainVideo(const PlainFiles& files, int pictures) {
    return files.makeVideo("plain.y4m", pictures, [](int, int, int) { return 90; });
}

TEST(MinimalTask, IsMadeForKnownTypesOnly) {
    EXPECT_NE(makeTask({1, 9}), nullptr);
    EXPECT_NE(makeTask({2, 3, 8}), nullptr);
    EXPECT_EQ(makeTask({}), nullptr);
    EXPECT_EQ(makeTask({1, 4}), nullptr);
    EXPECT_EQ(HOST(createMediaAnalysisTask)(nullptr), nullptr);
    EXPECT_EQ(makeTask({9, 1})->getTaskType(), 9U);
}

TEST(MinimalTask, RefusesWhatIsNullOrOutOfRange) {
    const Task task = makeTask({1, 9});
    KOR::IBsMediaAnalysisTask& analysis = analysisOf(task);
    EXPECT_EQ(analysis.addCallBack(nullptr), KOR::statusOk);
    EXPECT_EQ(analysis.removeCallBack(nullptr), KOR::statusFailed);
    EXPECT_EQ(analysis.setSceneRanges(nullptr), KOR::statusFailed);
    EXPECT_EQ(analysis.setKeyFramePositions(nullptr), KOR::statusFailed);
    EXPECT_EQ(analysis.setParameterBlock(1, nullptr), KOR::statusFailed);
    EXPECT_EQ(analysis.getResultList(1, 0, nullptr, 0), KOR::statusFailed);
    EXPECT_EQ(analysis.setParameterMode(2), KOR::statusFailed);
    const KOR::SceneParameters never{1.0, 0.0, 0};
    EXPECT_EQ(analysis.setParameterBlock(1, &never), KOR::statusFailed);
    const KOR::KeyFrameParameters none{0, 4, 0, 4, 2, 2};
    EXPECT_EQ(analysis.setParameterBlock(9, &none), KOR::statusFailed);
    EXPECT_EQ(analysis.setParameterBlock(3, &none), KOR::statusFailed);
}

TEST(MinimalTask, ThresholdCountsInExplicitModeOnly) {
    const PlainFiles files;
    TaskRun run({1}, files.makeThreeScenes());
    const KOR::SceneParameters high{1.0, 60.0, 0};
    const auto prepare = [&](std::int32_t mode, const KOR::SceneParameters& block) {
        analysisOf(run.task).setSource(&sourceOf(run.material), 0, 0);
        EXPECT_TRUE(resultsOf<KOR::TickRange>(run.task, 1).empty()) << "they are forgotten";
        analysisOf(run.task).setParameterMode(mode);
        EXPECT_EQ(analysisOf(run.task).setParameterBlock(1, &block), KOR::statusOk);
    };
    prepare(KOR::parameterModeDefault, high);
    run.finish(1);
    EXPECT_EQ(resultsOf<KOR::TickRange>(run.task, 1).size(), 3U);
    // From bands to halves 50 brighter or darker, from halves to plain 100.
    prepare(KOR::parameterModeExplicit, high);
    run.finish(2);
    EXPECT_EQ(resultsOf<KOR::TickRange>(run.task, 1).size(), 2U);
    prepare(KOR::parameterModeExplicit, {2.0, 60.0, 0});
    run.finish(3);
    EXPECT_EQ(resultsOf<KOR::TickRange>(run.task, 1).size(), 3U) << "sensitivity divides it";
}

TEST(MinimalTask, KeyFramesFollowTheirParameters) {
    const PlainFiles files;
    TaskRun run({9}, plainVideo(files, 250));
    const auto choose = [&](const KOR::KeyFrameParameters& block,
                            std::vector<KOR::TickRange> ranges) {
        analysisOf(run.task).setSource(&sourceOf(run.material), 0, 0);
        analysisOf(run.task).setParameterMode(KOR::parameterModeExplicit);
        EXPECT_EQ(analysisOf(run.task).setParameterBlock(9, &block), KOR::statusOk);
        lookWithin(run.task, std::move(ranges));
        const auto ends = run.recorder.milestones().size();
        run.finish(ends + 1);
        return resultsOf<std::int64_t>(run.task, 9);
    };
    EXPECT_EQ(choose({6, 4, 0, 1, 0, 0}, {}), (Ticks{16400000, 49600000, 83200000}))
        << "one for each four seconds started, in the middle of its part";
    EXPECT_EQ(choose({2, 4, 0, 1, 0, 0}, {}).size(), 2U);
    EXPECT_EQ(choose({6, 4, 0, 1, 10, 0}, {{0, 12 * frame}}), Ticks{11 * frame});
    EXPECT_EQ(choose({6, 4, 0, 1, 0, 11}, {{0, 12 * frame}}), Ticks{0});
    EXPECT_EQ(choose({6, 4, 0, 1, 9, 9}, {{0, 12 * frame}}), Ticks{6 * frame})
        << "margins that leave nothing leave the middle";
    EXPECT_EQ(choose({9, 1, 0, 1, 0, 0}, {{400001, 400002}, {5, 1}, {-9, 1}, {99 * second, 999}}),
              Ticks{0});
}

TEST(MinimalTask, PicturesThatAreNotThereHaveElements) {
    const PlainFiles files;
    std::string bytes = contentOf(files.makeThreeScenes());
    bytes.replace(bytes.find("FRAME"), 5, "FLAME");
    TaskRun run({2, 3, 8}, files.write("bad.y4m", bytes));
    lookAt(run.task, {3 * second, 0, 9 * second, 10 * second, -1, 400000});
    run.finish();
    EXPECT_EQ(run.recorder.milestones(), Milestones{2});
    const auto faces = resultsOf<KOR::FaceDetectFrame>(run.task, 3);
    const auto entropies = resultsOf<KOR::EntropySample>(run.task, 8);
    const auto blurs = resultsOf<KOR::BlurSample>(run.task, 2);
    ASSERT_EQ(faces.size(), 6U);
    ASSERT_EQ(entropies.size(), 6U);
    ASSERT_EQ(blurs.size(), 6U);
    const double bits[] = {1, 0, 0, 0, 0, 2};
    for (std::size_t i = 0; i < 6; ++i) {
        EXPECT_EQ(faces[i].faceCount, 0);
        EXPECT_EQ(entropies[i].entropy, bits[i]);
        EXPECT_EQ(blurs[i].sharpness > 0, bits[i] > 0);
        EXPECT_EQ(faces[i].pos, entropies[i].pos);
    }
    EXPECT_EQ(faces[3].pos, 10 * second);
    // Two columns of 62 have an edge of 100 beside them.
    EXPECT_EQ(blurs[0].sharpness, 2 * 100.0 * 100.0 / 62);
}

TEST(MinimalTask, PhotoIsOnePictureWhateverItIsHanded) {
    const PlainFiles files;
    TaskRun run({1, 9, 8}, files.makePhoto("a.pgm", [](int, int x, int) { return x / 32; }));
    lookAt(run.task, {5, 6});
    run.finish();
    const auto entropies = resultsOf<KOR::EntropySample>(run.task, 8);
    ASSERT_EQ(entropies.size(), 1U);
    EXPECT_EQ(entropies[0].pos, 0);
    EXPECT_EQ(entropies[0].entropy, 1.0);
    EXPECT_EQ(resultsOf<std::int64_t>(run.task, 9), Ticks{0});
    EXPECT_EQ(resultsOf<KOR::TickRange>(run.task, 1).at(0).end, 1);
}

TEST(MinimalTask, WithoutASourceFailsAndFinishes) {
    TaskRecorder recorder;
    const Task task = makeTask({1});
    task->addCallBack(&recorder);
    EXPECT_EQ(analysisOf(task).setSource(nullptr, 0, 0), KOR::statusFailed);
    EXPECT_EQ(task->start(), KOR::statusOk);
    recorder.waitFor(KOR::taskEventFinished);
    EXPECT_EQ(recorder.milestones(), (Milestones{3, 2}));
    EXPECT_EQ(recorder.events().front().reason, "there is no source that can be read");
    EXPECT_TRUE(resultsOf<KOR::TickRange>(task, 1).empty());
}

TEST(MinimalTask, FailureTaintsTheSourceFromItsEventOn) {
    const PlainFiles files;
    const auto file = plainVideo(files, 50);
    TaskRun run({1}, file, files.directory());
    EXPECT_STRNE(sourceOf(run.material).getMediaInfoText("media_cache"), "");
    std::string inside = "not asked";
    run.recorder.inside = [&](const TaskRecorder::Event& event) {
        if (event.event == KOR::taskEventFailed)
            inside = sourceOf(run.material).getMediaInfoText("media_cache");
    };
    std::filesystem::resize_file(file, 1000);
    run.finish();
    EXPECT_EQ(run.recorder.milestones(), (Milestones{3, 2}));
    EXPECT_EQ(inside, "");
    KOR::KorValue value{};
    EXPECT_EQ(sourceOf(run.material).getMediaInfo("media_cache", &value), KOR::statusOk);
    EXPECT_STREQ(value.asText, "");
}

TEST(MinimalTask, FailsWhereTheFileHasBecomeAnother) {
    const PlainFiles files;
    const auto file = plainVideo(files, 50);
    const auto touch = [&] {
        std::filesystem::last_write_time(
            file, std::filesystem::last_write_time(file) + std::chrono::seconds(1));
    };
    TaskRun before({1}, file);
    touch();
    before.finish();
    EXPECT_EQ(before.recorder.events().front().reason, "the file has changed");
    TaskRun during({1}, file);
    during.recorder.inside = [&](const TaskRecorder::Event& event) {
        if (event.event == KOR::taskEventProgress && event.progress == 0) touch();
    };
    during.finish();
    EXPECT_EQ(during.recorder.milestones(), (Milestones{3, 2}));
    EXPECT_TRUE(resultsOf<KOR::TickRange>(during.task, 1).empty());
}

TEST(MinimalTask, FlashBeginsNoScene) {
    const PlainFiles files;
    TaskRun run({1}, files.makeVideo("flash.y4m", 100, [](int picture, int, int) {
        return picture == 50 ? 200 : 90;
    }));
    run.finish();
    EXPECT_EQ(resultsOf<KOR::TickRange>(run.task, 1).size(), 1U);
}

TEST(MinimalTask, ResultsAreCompleteInsideTheLastEvent) {
    const PlainFiles files;
    TaskRun run({1}, files.makeThreeScenes());
    std::size_t scenes = 0;
    std::uint32_t state = 99;
    run.recorder.inside = [&](const TaskRecorder::Event& event) {
        if (event.event != KOR::taskEventFinished) return;
        scenes = resultsOf<KOR::TickRange>(run.task, 1).size();
        state = run.task->getState();
    };
    run.finish();
    EXPECT_EQ(scenes, 3U);
    EXPECT_EQ(state, 0U);
}

TEST(MinimalTask, ProgressAscendsToHundred) {
    const PlainFiles files;
    TaskRun run({1, 9}, files.makeThreeScenes());
    run.finish();
    std::int32_t last = -1;
    for (const auto& event : run.recorder.events()) {
        if (event.event != KOR::taskEventProgress) continue;
        EXPECT_GT(event.progress, last);
        last = event.progress;
    }
    EXPECT_EQ(last, 100);
    EXPECT_GT(run.recorder.events().size(), 50U);
}

TEST(MinimalTask, KeepsItsSourceWhenTheMaterialGoes) {
    const PlainFiles files;
    TaskRun run({1}, files.makeThreeScenes());
    run.material.reset();
    run.finish();
    EXPECT_EQ(resultsOf<KOR::TickRange>(run.task, 1).size(), 3U);
}

TEST(MinimalTask, RefusesASecondStart) {
    const PlainFiles files;
    TaskRun run({1}, plainVideo(files, 50));
    std::vector<KOR::Status> answers;
    run.recorder.inside = [&](const TaskRecorder::Event& event) {
        if (event.event == KOR::taskEventProgress) answers.push_back(run.task->start());
    };
    run.finish();
    EXPECT_EQ(answers, std::vector<KOR::Status>(answers.size(), KOR::statusFailed));
    EXPECT_FALSE(answers.empty());
    EXPECT_EQ(run.recorder.milestones(), Milestones{2});
}

TEST(MinimalTask, StartsAgainInsideItsLastEvent) {
    const PlainFiles files;
    TaskRun run({1}, plainVideo(files, 50));
    int left = 20;
    run.recorder.inside = [&](const TaskRecorder::Event& event) {
        if (event.event != KOR::taskEventFinished || left-- == 0) return;
        EXPECT_EQ(run.task->start(), KOR::statusOk);
    };
    run.finish(21);
    EXPECT_EQ(run.recorder.milestones(), Milestones(21, 2));
}

TEST(MinimalTask, StoppedInsideAnEventSaysSoAndNoMore) {
    const PlainFiles files;
    TaskRun run({1}, plainVideo(files, 500));
    run.recorder.inside = [&](const TaskRecorder::Event& event) {
        if (event.event == KOR::taskEventProgress && event.progress == 10) run.task->stop();
    };
    ASSERT_EQ(run.task->start(), KOR::statusOk);
    run.recorder.waitFor(KOR::taskEventStopped);
    run.task->stop();
    const auto events = run.recorder.events();
    EXPECT_EQ(run.recorder.milestones(), Milestones{4});
    EXPECT_EQ(events.back().event, KOR::taskEventStopped + 0U);
    EXPECT_EQ(events[events.size() - 2].progress, 10);
}

TEST(MinimalTask, RunStartedBehindAStopComesBehindItsEvent) {
    const PlainFiles files;
    TaskRun run({1}, plainVideo(files, 500));
    bool isFirst = true;
    run.recorder.inside = [&](const TaskRecorder::Event&) {
        if (!std::exchange(isFirst, false)) return;
        run.task->stop();
        EXPECT_EQ(run.task->start(), KOR::statusOk);
    };
    run.finish();
    EXPECT_EQ(run.recorder.milestones(), (Milestones{4, 2}));
    EXPECT_EQ(run.recorder.events().at(1).event, KOR::taskEventStopped + 0U);
}

TEST(MinimalTask, StopFromAnotherThreadWaitsForTheEvent) {
    const PlainFiles files;
    TaskRun run({1}, plainVideo(files, 500));
    std::atomic<bool> isStopping = false;
    std::atomic<bool> isOver = false;
    bool hasWaited = false;
    std::thread stopper;
    run.recorder.inside = [&](const TaskRecorder::Event& event) {
        if (event.event != KOR::taskEventProgress || event.progress != 10) return;
        stopper = std::thread([&] {
            isStopping = true;
            isStopping.notify_one();
            run.task->stop();
            hasWaited = isOver;
        });
        isStopping.wait(false);
        for (int i = 0; i < 10000; ++i)
            std::this_thread::yield();
        isOver = true;
    };
    run.task->start();
    run.recorder.waitFor(KOR::taskEventStopped);
    stopper.join();
    EXPECT_TRUE(hasWaited);
    EXPECT_EQ(run.recorder.milestones(), Milestones{4});
}

TEST(MinimalTask, SendsNothingOnceItHasBeenGivenBack) {
    const PlainFiles files;
    const auto file = plainVideo(files, 300);
    std::vector<std::unique_ptr<TaskRecorder>> recorders;
    std::vector<std::size_t> heard;
    for (std::size_t round = 0; round < 50; ++round) {
        TaskRecorder& recorder = *recorders.emplace_back(std::make_unique<TaskRecorder>());
        const Material material = import(file);
        Task task = makeTask({1});
        task->addCallBack(&recorder);
        analysisOf(task).setSource(&sourceOf(material), 0, 0);
        task->start();
        recorder.waitFor(KOR::taskEventProgress, round);
        task.reset();
        heard.push_back(recorder.events().size());
    }
    for (std::size_t round = 0; round < recorders.size(); ++round) {
        EXPECT_EQ(recorders[round]->events().size(), heard[round]);
        EXPECT_NE(recorders[round]->milestones(), Milestones{4}) << "it goes in silence";
    }
}

/// Keeps a test waiting until a task has gone.
class Passing final : public KOR::IDmDestroyObserver {
public:
    virtual ~Passing() = default;
    void objectDestroyed() override {
        isGone_ = true;
        isGone_.notify_all();
    }
    void wait() const { isGone_.wait(false); }

private:
    std::atomic<bool> isGone_ = false;
};

TEST(MinimalTask, LastReferenceMayGoInsideAnyEvent) {
    const PlainFiles files;
    const auto file = plainVideo(files, 100);
    for (const auto& [number, percent] : {std::pair{1U, 0}, {1U, 50}, {2U, 100}}) {
        TaskRecorder next;
        Passing passing;
        TaskRun run({1}, file);
        run.task->addCallBack(&next);
        run.task->setDestroyObserver(&passing);
        std::size_t heard = 0;
        std::size_t times = 1;
        run.recorder.inside = [&, event = number, at = percent](const TaskRecorder::Event& told) {
            if (told.event != event || told.progress != at) return;
            heard = next.events().size();
            if (event == KOR::taskEventProgress) times = run.recorder.events().size() + 1;
            run.task.reset();
        };
        KOR::IKorBaseTask* const task = run.task.get();
        EXPECT_EQ(task->start(), KOR::statusOk);
        passing.wait();
        run.recorder.waitFor(number, times);
        EXPECT_EQ(next.events().size(), heard) << "the next listener is not told of this event";
    }
}

TEST(MinimalTask, ListenersMayChangeDuringAnEvent) {
    const PlainFiles files;
    TaskRun run({1}, plainVideo(files, 500));
    TaskRecorder removed;
    TaskRecorder added;
    run.task->addCallBack(&removed);
    run.task->addCallBack(&removed);
    run.recorder.inside = [&](const TaskRecorder::Event& event) {
        if (event.event != KOR::taskEventProgress) return;
        if (event.progress == 10) run.task->removeCallBack(&removed);
        if (event.progress == 20) run.task->addCallBack(&added);
    };
    run.finish();
    run.task->stop();
    ASSERT_FALSE(removed.events().empty());
    EXPECT_EQ(removed.events().size() % 2, 0U) << "twice added, twice told";
    EXPECT_LT(removed.events().back().progress, 10);
    ASSERT_FALSE(added.events().empty());
    EXPECT_GT(added.events().front().progress, 20);
    EXPECT_EQ(added.milestones(), Milestones{2});
}

}  // namespace
}  // namespace minimal_host_tests
