#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <thread>

#include <gtest/gtest.h>

#include "host/lists.h"
#include "host/tasks.h"
#include "reference_host/ReferenceHost.h"
#include "tests/reference_host/AnalysisRun.h"
#include "tests/reference_host/FootageFiles.h"
#include "tests/reference_host/TaskRecorder.h"

namespace reference_host_tests {
namespace {

/// Two seconds of one picture, then two of another.
std::filesystem::path twoScenes(const FootageFiles& files) {
    return files.make("scenes.mkv",
                      "-f lavfi -i smptebars=size=128x96:rate=25:duration=2 "
                      "-f lavfi -i mandelbrot=size=128x96:rate=25 -filter_complex "
                      "'[1]trim=end_frame=50,setpts=PTS-STARTPTS[m];[0][m]concat' -c:v libx264");
}

/// A video that takes many seconds to analyse.
std::filesystem::path longVideo(const FootageFiles& files) {
    const auto one = files.make("one.avi", movingPictures(10, "1280x720") + " -c:v mjpeg");
    return files.make("long.avi", "-stream_loop 400 -i '" + one.string() + "' -c copy");
}

TEST(Task, IsMadeForKnownTypesOnly) {
    EXPECT_NE(makeTask({1}), nullptr);
    EXPECT_NE(makeTask({1, 9}), nullptr);
    EXPECT_NE(makeTask({2}), nullptr);
    EXPECT_NE(makeTask({3, 8}), nullptr);
    EXPECT_EQ(makeTask({}), nullptr);
    EXPECT_EQ(makeTask({0}), nullptr);
    EXPECT_EQ(makeTask({1, 4}), nullptr);
    EXPECT_EQ(createMediaAnalysisTask(nullptr), nullptr);
}

TEST(Task, KeepsWhatItsOwnerStores) {
    const Task task = makeTask({9});
    EXPECT_EQ(task->getTaskType(), 9U);
    std::uint32_t a = 0;
    std::uint32_t b = 0;
    std::uint32_t c = 0;
    EXPECT_EQ(task->setTaskInfo(1, 2, 3), KOR::statusOk);
    EXPECT_EQ(task->getTaskInfo(&a, nullptr, &c), KOR::statusFailed);
    EXPECT_EQ(a, 0U);
    EXPECT_EQ(task->getTaskInfo(&a, &b, &c), KOR::statusOk);
    EXPECT_EQ(std::vector({a, b, c}), (std::vector<std::uint32_t>{1, 2, 3}));
    EXPECT_STREQ(task->getTaskName(), "");
    EXPECT_EQ(task->setTaskName("trim"), KOR::statusOk);
    EXPECT_EQ(task->setTaskName(nullptr), KOR::statusFailed);
    EXPECT_STREQ(task->getTaskName(), "trim");
    EXPECT_EQ(task->getPriority(), 100U);
    EXPECT_EQ(task->setPriority(7), KOR::statusOk);
    EXPECT_EQ(task->getPriority(), 7U);
    EXPECT_EQ(task->pause(), KOR::statusFailed);
    EXPECT_EQ(task->resume(), KOR::statusFailed);
    EXPECT_EQ(task->queryInterface("IKorMaterialAnalysis"), nullptr);
}

TEST(Task, NullArgumentsFail) {
    const Task task = makeTask({1, 9});
    EXPECT_EQ(task->addCallBack(nullptr), KOR::statusOk);
    EXPECT_EQ(task->removeCallBack(nullptr), KOR::statusFailed);
    EXPECT_EQ(analysisOf(task).setSource(nullptr, 0, 0), KOR::statusFailed);
    EXPECT_EQ(analysisOf(task).setSceneRanges(nullptr), KOR::statusFailed);
    EXPECT_EQ(analysisOf(task).setKeyFramePositions(nullptr), KOR::statusFailed);
    EXPECT_EQ(analysisOf(task).setParameterBlock(1, nullptr), KOR::statusFailed);
    EXPECT_EQ(analysisOf(task).getResultList(1, 0, nullptr, 0), KOR::statusFailed);
}

TEST(Task, RefusesParametersOutOfRange) {
    const Task task = makeTask({1, 9});
    const auto scene = [&](double sensitivity, double threshold) {
        const KOR::SceneParameters block{sensitivity, threshold, 0};
        return analysisOf(task).setParameterBlock(KOR::analysisTypeScene, &block);
    };
    EXPECT_EQ(scene(1, 3), KOR::statusOk);
    EXPECT_EQ(scene(0, 3), KOR::statusFailed);
    EXPECT_EQ(scene(1, -1), KOR::statusFailed);
    EXPECT_EQ(scene(1, std::nan("")), KOR::statusFailed);
    const auto keyFrame = [&](const KOR::KeyFrameParameters& block) {
        return analysisOf(task).setParameterBlock(KOR::analysisTypeKeyFrame, &block);
    };
    EXPECT_EQ(keyFrame({6, 4, 0, 4, 2, 2}), KOR::statusOk);
    EXPECT_EQ(keyFrame({0, 4, 0, 4, 2, 2}), KOR::statusFailed);
    EXPECT_EQ(keyFrame({6, 0, 0, 4, 2, 2}), KOR::statusFailed);
    EXPECT_EQ(keyFrame({6, 4, 0, 0, 2, 2}), KOR::statusFailed);
    EXPECT_EQ(keyFrame({6, 4, 0, 4, -1, 2}), KOR::statusFailed);
    EXPECT_EQ(keyFrame({6, 4, 0, 4, 2, -1}), KOR::statusFailed);
    const std::int64_t other = 0;
    EXPECT_EQ(analysisOf(task).setParameterBlock(KOR::analysisTypeFace, &other), KOR::statusFailed);
    EXPECT_EQ(analysisOf(task).setParameterMode(2), KOR::statusFailed);
}

TEST(Task, FindsScenesThatTileTheVideo) {
    const FootageFiles files;
    AnalysisRun run({1}, twoScenes(files));
    run.finish();
    const auto scenes = run.scenes();
    ASSERT_EQ(scenes.size(), 2U);
    EXPECT_EQ(scenes[0].begin, 0);
    EXPECT_EQ(scenes[0].end, 20000000);
    EXPECT_EQ(scenes[1].begin, 20000000);
    EXPECT_EQ(scenes[1].end, 40000000);
    EXPECT_TRUE(run.keyFrames().empty()) << "it was not asked for them";
    EXPECT_TRUE(reference_host::reportOf(*run.material).analysed);
}

TEST(Task, FindsScenesAndKeyFramesInOneRun) {
    const FootageFiles files;
    AnalysisRun run({1, 9}, twoScenes(files));
    run.finish();
    EXPECT_EQ(run.scenes().size(), 2U);
    const auto keyFrames = run.keyFrames();
    ASSERT_GE(keyFrames.size(), 2U);
    EXPECT_LT(keyFrames.front(), 20000000);
    EXPECT_GE(keyFrames.back(), 20000000);
}

TEST(Task, KeyFramesAloneCoverTheWholeVideo) {
    const FootageFiles files;
    AnalysisRun run({9}, twoScenes(files));
    run.finish();
    EXPECT_FALSE(run.keyFrames().empty());
    EXPECT_TRUE(run.scenes().empty());
}

TEST(Task, KeyFramesStayInsideTheRangesHandedOver) {
    const FootageFiles files;
    AnalysisRun run({9}, twoScenes(files));
    KOR::TickRange range{10000000, 12000000};
    const auto list = hold(createKORVoidPtrList());
    list->append(&range);
    EXPECT_EQ(analysisOf(run.task).setSceneRanges(list.get()), KOR::statusOk);
    range = {0, 0};
    run.finish();
    const auto keyFrames = run.keyFrames();
    ASSERT_FALSE(keyFrames.empty());
    EXPECT_GE(keyFrames.front(), 10000000);
    EXPECT_LT(keyFrames.back(), 12000000);
}

TEST(Task, ParametersCountInExplicitModeOnly) {
    const FootageFiles files;
    AnalysisRun run({1, 9}, twoScenes(files));
    const KOR::SceneParameters never{1.0, 1e9, 0};
    const KOR::KeyFrameParameters one{1, 4, 0, 4, 2, 2};
    const auto prepare = [&](std::int32_t mode) {
        run.prepare();
        EXPECT_EQ(analysisOf(run.task).setParameterMode(mode), KOR::statusOk);
        EXPECT_EQ(analysisOf(run.task).setParameterBlock(1, &never), KOR::statusOk);
        EXPECT_EQ(analysisOf(run.task).setParameterBlock(9, &one), KOR::statusOk);
    };
    prepare(KOR::parameterModeExplicit);
    run.finish(1);
    EXPECT_EQ(run.scenes().size(), 1U);
    EXPECT_EQ(run.keyFrames().size(), 1U);
    prepare(KOR::parameterModeDefault);
    run.finish(2);
    EXPECT_EQ(run.scenes().size(), 2U);
    run.prepare();
    analysisOf(run.task).setParameterMode(KOR::parameterModeExplicit);
    run.finish(3);
    EXPECT_EQ(run.scenes().size(), 2U) << "a new source forgets the blocks";
}

TEST(Task, SourceAndStartForgetTheResults) {
    const FootageFiles files;
    AnalysisRun run({1}, twoScenes(files));
    run.finish();
    EXPECT_FALSE(run.scenes().empty());
    EXPECT_EQ(run.scenes().size(), run.scenes().size());
    run.prepare();
    EXPECT_TRUE(run.scenes().empty());
}

TEST(Task, OtherTypesEndWithoutResults) {
    const FootageFiles files;
    AnalysisRun run({3, 8}, files.makeVideo("a.mp4", 3));
    run.finish();
    EXPECT_EQ(run.recorder.milestones(), Milestones{2});
    const auto list = hold(createKORAutoVoidPtrList());
    EXPECT_EQ(analysisOf(run.task).getResultList(3, 0, list.get(), 0), KOR::statusOk);
    EXPECT_EQ(analysisOf(run.task).getResultList(8, 0, list.get(), 0), KOR::statusOk);
    EXPECT_EQ(list->count(), 0);
}

TEST(Task, PhotoIsOneSceneWithOneKeyFrame) {
    const FootageFiles files;
    AnalysisRun run({1, 9}, files.makeVideo("a.png", 1, ""));
    run.finish();
    ASSERT_EQ(run.scenes().size(), 1U);
    EXPECT_EQ(run.scenes()[0].end, 1);
    EXPECT_EQ(run.keyFrames(), std::vector<std::int64_t>{0});
}

TEST(Task, ProgressAscendsFromZeroToHundred) {
    const FootageFiles files;
    AnalysisRun run({1}, files.makeVideo("a.mp4", 200));
    run.finish();
    std::int32_t last = -1;
    for (const auto& event : run.recorder.events()) {
        EXPECT_EQ(event.category, KOR::taskEventCategory);
        if (event.event != KOR::taskEventProgress) continue;
        EXPECT_GT(event.progress, last);
        EXPECT_LE(event.progress, 100);
        last = event.progress;
    }
    EXPECT_GE(last, 0) << "there is some progress";
    EXPECT_EQ(run.recorder.milestones(), Milestones{2});
}

/// Expects progress to reach 100 once, right before the end.
void expectWholeProgress(const TaskRecorder& recorder) {
    const auto events = recorder.events();
    ASSERT_GE(events.size(), 2U);
    EXPECT_EQ(events.back().event, std::uint32_t{KOR::taskEventFinished});
    const auto& last = events[events.size() - 2];
    EXPECT_EQ(last.event, std::uint32_t{KOR::taskEventProgress});
    EXPECT_EQ(last.progress, 100);
    EXPECT_EQ(std::count_if(events.begin(), events.end(),
                            [](const auto& event) {
                                return event.event == KOR::taskEventProgress &&
                                       event.progress == 100;
                            }),
              1);
}

TEST(Task, ProgressIsWholeAtTheEnd) {
    const FootageFiles files;
    const auto file = twoScenes(files);
    AnalysisRun scenes({1}, file);
    scenes.finish();
    expectWholeProgress(scenes.recorder);

    // What is known already takes no time, so that everything comes at once.
    AnalysisRun keyFrames({9}, file);
    keyFrames.finish();
    expectWholeProgress(keyFrames.recorder);
    TaskRecorder again;
    const Task known = makeTask({9});
    known->addCallBack(&again);
    analysisOf(known).setSource(&sourceOf(keyFrames.material), 0, 0);
    known->start();
    again.waitFor(KOR::taskEventFinished);
    expectWholeProgress(again);

    for (const std::int32_t type : {2, 3, 8}) {
        SCOPED_TRACE(type);
        AnalysisRun pictures({type}, file);
        pictures.lookAt({0, KOR::ticksPerSecond, 2 * KOR::ticksPerSecond});
        pictures.finish();
        expectWholeProgress(pictures.recorder);
    }
}

TEST(Task, KeyFramesOfKnownScenesNeedNoSecondDecode) {
    const FootageFiles files;
    const auto file = twoScenes(files);
    AnalysisRun run({1}, file);
    run.finish();
    // What is not there any more cannot be decoded again.
    std::filesystem::remove(file);
    TaskRecorder recorder;
    const Task keyFrames = makeTask({9});
    keyFrames->addCallBack(&recorder);
    analysisOf(keyFrames).setSource(&sourceOf(run.material), 0, 0);
    keyFrames->start();
    recorder.waitFor(KOR::taskEventFinished);
    EXPECT_EQ(recorder.milestones(), Milestones{2});
    EXPECT_FALSE(keyFramesOf(keyFrames).empty());
}

// Failure.

TEST(Task, WithoutASourceFailsAndFinishes) {
    TaskRecorder recorder;
    const Task task = makeTask({1});
    task->addCallBack(&recorder);
    task->start();
    recorder.waitFor(KOR::taskEventFinished);
    EXPECT_EQ(recorder.milestones(), (Milestones{3, 2}));
    EXPECT_NE(recorder.events()[0].reason, "");
    EXPECT_TRUE(scenesOf(task).empty());
}

TEST(Task, FailureTaintsItsSource) {
    const FootageFiles files;
    const auto file = files.makeVideo("a.mp4", 5);
    AnalysisRun run({1}, file, "/cache");
    std::filesystem::remove(file);
    std::string cacheInside = "untouched";
    run.recorder.inside = [&](const TaskRecorder::Event& entry) {
        if (entry.event == KOR::taskEventFailed) {
            cacheInside = sourceOf(run.material).getMediaInfoText("media_cache");
        }
    };
    EXPECT_STRNE(sourceOf(run.material).getMediaInfoText("media_cache"), "");
    run.finish();
    EXPECT_EQ(run.recorder.milestones(), (Milestones{3, 2}));
    EXPECT_EQ(cacheInside, "");
    EXPECT_STREQ(sourceOf(run.material).getMediaInfoText("media_cache"), "");
    const auto report = reference_host::reportOf(*run.material);
    EXPECT_EQ(report.failure, "there is no such file");
    EXPECT_EQ(run.recorder.events()[0].reason, report.failure);
}

TEST(Task, DamagedFramesGiveAWarning) {
    const FootageFiles files;
    const auto file = files.makeVideo("a.mkv", 100, "-c:v mjpeg");
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(file));
    for (std::int64_t at = size / 4; at < size / 2; at += 200) {
        FootageFiles::patch(file, at, std::string(20, '\xff'));
    }
    AnalysisRun run({1}, file);
    run.finish();
    EXPECT_EQ(run.recorder.milestones(), Milestones{2});
    EXPECT_FALSE(run.scenes().empty());
    const auto warnings = reference_host::reportOf(*run.material).warnings;
    ASSERT_FALSE(warnings.empty());
    EXPECT_TRUE(warnings.back().starts_with("damaged: ")) << warnings.back();
}

// Stopping, restarting, dying.

TEST(Task, StopEndsARunAtOnce) {
    const FootageFiles files;
    AnalysisRun run({1}, longVideo(files));
    ASSERT_EQ(run.task->start(), KOR::statusOk);
    EXPECT_EQ(run.task->start(), KOR::statusFailed) << "it runs already";
    run.recorder.waitFor(KOR::taskEventProgress);
    const auto before = std::chrono::steady_clock::now();
    EXPECT_EQ(run.task->stop(), KOR::statusOk);
    // The promise is 200 ms; a busy machine is given more.
    EXPECT_LT(std::chrono::steady_clock::now() - before, std::chrono::seconds(2));
    const auto events = run.recorder.events();
    EXPECT_EQ(events.back().event, KOR::taskEventStopped);
    EXPECT_EQ(run.recorder.milestones(), Milestones{4});
    EXPECT_TRUE(run.scenes().empty());
    EXPECT_EQ(reference_host::reportOf(*run.material).failure, "");
}

TEST(Task, StartsAgainAfterAStop) {
    const FootageFiles files;
    AnalysisRun run({1}, longVideo(files));
    run.task->start();
    run.recorder.waitFor(KOR::taskEventProgress);
    run.task->stop();
    const auto material = import(twoScenes(files));
    analysisOf(run.task).setSource(&sourceOf(material), 0, 0);
    run.finish();
    EXPECT_EQ(run.recorder.milestones(), (Milestones{4, 2}));
    EXPECT_EQ(run.scenes().size(), 2U);
}

TEST(Task, StartsAgainInsideItsEnd) {
    const FootageFiles files;
    AnalysisRun run({1}, files.makeVideo("a.mp4", 5));
    int runs = 1;
    run.recorder.inside = [&](const TaskRecorder::Event& entry) {
        if (entry.event != KOR::taskEventFinished || runs == 5) return;
        ++runs;
        EXPECT_EQ(run.scenes().size(), 1U);
        run.prepare();
        EXPECT_EQ(run.task->start(), KOR::statusOk);
    };
    run.finish(5);
    EXPECT_EQ(run.recorder.milestones(), (Milestones{2, 2, 2, 2, 2}));
}

TEST(Task, LastReleaseInsideItsEndIsSafe) {
    const FootageFiles files;
    AnalysisRun run({1}, files.makeVideo("a.mp4", 5));
    TaskRecorder afterwards;
    run.task->addCallBack(&afterwards);
    run.recorder.inside = [&](const TaskRecorder::Event& entry) {
        if (entry.event == KOR::taskEventFinished) run.task.reset();
    };
    run.task->start();
    run.recorder.waitFor(KOR::taskEventFinished);
    EXPECT_EQ(run.task, nullptr);
    EXPECT_TRUE(afterwards.milestones().empty()) << "there is no sender any more";
}

TEST(Task, LastReleaseInsideProgressIsSafe) {
    const FootageFiles files;
    AnalysisRun run({1}, longVideo(files));
    run.recorder.inside = [&](const TaskRecorder::Event&) { run.task.reset(); };
    run.task->start();
    run.recorder.waitFor(KOR::taskEventProgress);
    EXPECT_EQ(run.recorder.events().size(), 1U);
}

TEST(Task, DestructionEndsARunInSilence) {
    const FootageFiles files;
    AnalysisRun run({1}, longVideo(files));
    run.task->start();
    run.recorder.waitFor(KOR::taskEventProgress);
    run.task.reset();
    run.material.reset();
    const std::size_t events = run.recorder.events().size();
    EXPECT_TRUE(run.recorder.milestones().empty());
    // A run of another task gives the given-up one the time to speak, if it would.
    AnalysisRun other({1}, files.makeVideo("a.mp4", 5));
    other.finish();
    EXPECT_EQ(run.recorder.events().size(), events);
}

TEST(Task, ManyShortLivesLeaveNothingBehind) {
    const FootageFiles files;
    const auto file = files.makeVideo("a.mp4", 3);
    const auto material = import(file);
    for (int i = 0; i < 50; ++i) {
        TaskRecorder recorder;
        Task task = makeTask({1, 9});
        task->addCallBack(&recorder);
        analysisOf(task).setSource(&sourceOf(material), 0, 0);
        ASSERT_EQ(task->start(), KOR::statusOk);
        if (i % 3 == 0) recorder.waitFor(KOR::taskEventFinished);
        if (i % 3 == 1) task->stop();
        task.reset();
    }
    EXPECT_EQ(material->refCount(), 1U);
}

}  // namespace
}  // namespace reference_host_tests
