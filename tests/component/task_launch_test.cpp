#include <cstdint>
#include <functional>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/ComponentTest.h"

namespace fake_host {
namespace {

using StartOperation = KOR::Status (KOR::ComponentProbe::*)(KOR::IBsMediaAnalysisTask*);

/// A video with two scenes and three keyframes is the current material, and one task is there.
class TaskLaunch : public ComponentTest {
protected:
    TaskLaunch() {
        useKinds({4});
        host().takeJournal();
    }

    void begin(const MediaSpec& spec) {
        insert(spec);
        probe().moveTo(0, 0);
        probe().scenceRanges() = {{0, 100}, {100, 250}};
        probe().keyFramesOfScences() = {{{0, 0.5, 20}, {0, 0.1, 10}}, {{1, 0.2, 120}}};
    }

    void beginVideo() { begin(video("clip.mp4", 100 * second)); }
    void beginPhoto() { begin(photo("photo.jpg")); }

    KOR::Status launch(StartOperation start) {
        KOR::ComponentProbe steps = probe();
        return (steps.*start)(&task(0));
    }
};

TEST_F(TaskLaunch, FaceOfAVideoGetsKeyFramePositions) {
    beginVideo();
    EXPECT_EQ(launch(&KOR::ComponentProbe::startFaceDetect), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(0)
task0.setKeyFramePositions(20, 10, 120)
task0.start
log startFaceDetect: "----Start Face Detect---素材idx: 0\n"
)");
}

TEST_F(TaskLaunch, FaceOfAPhotoGetsNoPositions) {
    beginPhoto();
    EXPECT_EQ(launch(&KOR::ComponentProbe::startFaceDetect), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.setSource(photo.jpg, 0, 0)
task0.setPriority(100)
task0.setParameterMode(0)
task0.start
log startFaceDetect: "----Start Face Detect---素材idx: 0\n"
)");
}

TEST_F(TaskLaunch, FaceOfAnUnseekableSourceGetsNoPositions) {
    begin(video("stream", 100 * second).sourceType(16));
    EXPECT_EQ(launch(&KOR::ComponentProbe::startFaceDetect), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.setSource(stream, 0, 0)
task0.setPriority(100)
task0.setParameterMode(0)
task0.start
log startFaceDetect: "----Start Face Detect---素材idx: 0\n"
)");
}

TEST_F(TaskLaunch, OtherKindsGivePositionsToAnUnseekableSource) {
    begin(video("stream", 100 * second).sourceType(16));
    launch(&KOR::ComponentProbe::startFaceAndEntropyAnalysis);
    EXPECT_EQ(journal().at(3), "task0.setKeyFramePositions(20, 10, 120)");
}

TEST_F(TaskLaunch, BlurGetsPositionsAndTheParameterMode) {
    beginVideo();
    EXPECT_EQ(launch(&KOR::ComponentProbe::startBlurDetect), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setKeyFramePositions(20, 10, 120)
task0.start
log startBlurDetect: "----Start Blur Detect---素材idx: 0\n"
)");
}

TEST_F(TaskLaunch, KeyFramesGetSceneRangesAndNoBlock) {
    beginVideo();
    EXPECT_EQ(launch(&KOR::ComponentProbe::startKeyFrameDetect), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setSceneRanges([0, 100) [100, 250))
task0.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
)");
}

TEST_F(TaskLaunch, KeyFramesWithoutScenesGetAnEmptyListAndStart) {
    beginVideo();
    probe().scenceRanges().clear();
    EXPECT_EQ(launch(&KOR::ComponentProbe::startKeyFrameDetect), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setSceneRanges()
task0.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
)");
}

TEST_F(TaskLaunch, KeyFramesOfAPhotoGetNoRanges) {
    beginPhoto();
    EXPECT_EQ(launch(&KOR::ComponentProbe::startKeyFrameDetect), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.setSource(photo.jpg, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
)");
}

TEST_F(TaskLaunch, ScenesGetTheSceneBlock) {
    beginVideo();
    setThreshold(0.1);
    EXPECT_EQ(launch(&KOR::ComponentProbe::startScenceDetect), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 0.1, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
)");
}

TEST_F(TaskLaunch, ScenesInAnotherModeGetNoBlock) {
    beginVideo();
    probe().detectParamMode() = 0;
    EXPECT_EQ(launch(&KOR::ComponentProbe::startScenceDetect), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
)");
}

TEST_F(TaskLaunch, EntropyGetsPositions) {
    beginVideo();
    EXPECT_EQ(launch(&KOR::ComponentProbe::startEntropyCalculate), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(0)
task0.setKeyFramePositions(20, 10, 120)
task0.start
log startEntropyCalculate: "----Start Entropy Value---素材idx: 0\n"
)");
}

TEST_F(TaskLaunch, CombinedScenesAndKeyFramesGetBothBlocks) {
    beginVideo();
    EXPECT_EQ(launch(&KOR::ComponentProbe::startScenceAndKeyframeDetect), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.setParameterBlock(9, 6, 4, 0, 4, 2, 2)
task0.start
log startScenceAndKeyframeDetect: "----Start Scence Detect and keyframe extrackt:---素材idx---0\n"
)");
}

TEST_F(TaskLaunch, CombinedInAnotherModeGetsNoBlocks) {
    beginVideo();
    probe().detectParamMode() = 2;
    launch(&KOR::ComponentProbe::startScenceAndKeyframeDetect);
    EXPECT_EQ(trace(), R"(
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(2)
task0.start
log startScenceAndKeyframeDetect: "----Start Scence Detect and keyframe extrackt:---素材idx---0\n"
)");
}

TEST_F(TaskLaunch, FaceAndEntropyGetsPositions) {
    beginVideo();
    EXPECT_EQ(launch(&KOR::ComponentProbe::startFaceAndEntropyAnalysis), KOR::statusOk);
    EXPECT_EQ(trace(), R"(
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(0)
task0.setKeyFramePositions(20, 10, 120)
task0.start
log startFaceAndEntropyAnalysis: "----Start Face detect and Entropy Value---素材idx: 0\n"
)");
}

TEST_F(TaskLaunch, PositionsAreHandedOverEvenWhenThereAreNone) {
    beginVideo();
    probe().keyFramesOfScences() = {{}, {}};
    launch(&KOR::ComponentProbe::startEntropyCalculate);
    EXPECT_EQ(journal().at(3), "task0.setKeyFramePositions()");
}

TEST_F(TaskLaunch, PriorityIsTheComponentsOwn) {
    beginVideo();
    component().setPriority(7);
    launch(&KOR::ComponentProbe::startScenceDetect);
    EXPECT_EQ(journal().at(1), "task0.setPriority(7)");
}

TEST_F(TaskLaunch, LineNamesTheMaterialByItsIndex) {
    for (int i = 0; i < 13; ++i)
        insert(video("clip.mp4", 100 * second));
    probe().moveTo(12, 0);
    launch(&KOR::ComponentProbe::startScenceDetect);
    EXPECT_EQ(logTexts(), Lines{"----Start Scence Detect:---素材idx---12\n"});
}

TEST_F(TaskLaunch, LinesCarryTheWholeFunctionName) {
    beginVideo();
    launch(&KOR::ComponentProbe::startBlurDetect);
    const auto lines = host().logLines();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].function, "KOR::KorMaterialAnalysis::startBlurDetect");
    EXPECT_EQ(lines[0].severity, 4U);
    EXPECT_EQ(lines[0].sourceUnit, "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis");
    EXPECT_EQ(lines[0].tag, "");
}

TEST_F(TaskLaunch, SourcelessMaterialHandsOverNull) {
    begin(video("clip.mp4", 100 * second).withoutSource());
    EXPECT_EQ(launch(&KOR::ComponentProbe::startScenceDetect), KOR::statusFailed);
    const Lines journal = host().takeJournal();
    EXPECT_EQ(journal.at(0), "task0.setSource(null, 0, 0)");
    EXPECT_TRUE(task(0).running());
}

TEST_F(TaskLaunch, MaterialThatIsNoSourceFailsButStarts) {
    begin(video("clip.mp4", 100 * second).withoutSourceMedia());
    EXPECT_EQ(launch(&KOR::ComponentProbe::startFaceDetect), KOR::statusFailed);
    EXPECT_TRUE(task(0).running());
    EXPECT_EQ(task(0).source(), nullptr);
}

TEST_F(TaskLaunch, MissingPositionListFailsButStarts) {
    beginVideo();
    host().faults.failEveryMaking(Product::longlongList);
    EXPECT_EQ(launch(&KOR::ComponentProbe::startEntropyCalculate), KOR::statusFailed);
    EXPECT_TRUE(task(0).running());
}

TEST_F(TaskLaunch, MissingRangeListFailsButStarts) {
    beginVideo();
    host().faults.failEveryMaking(Product::pointerList);
    EXPECT_EQ(launch(&KOR::ComponentProbe::startKeyFrameDetect), KOR::statusFailed);
    EXPECT_TRUE(task(0).running());
}

TEST_F(TaskLaunch, PositionsThatCannotBeAppendedFailButStart) {
    beginVideo();
    host().faults.failAppends(Product::longlongList);
    EXPECT_EQ(launch(&KOR::ComponentProbe::startEntropyCalculate), KOR::statusFailed);
    EXPECT_TRUE(task(0).running());
}

TEST_F(TaskLaunch, RangesThatCannotBeAppendedFailButStart) {
    beginVideo();
    host().faults.failAppends(Product::pointerList);
    EXPECT_EQ(launch(&KOR::ComponentProbe::startKeyFrameDetect), KOR::statusFailed);
    EXPECT_TRUE(task(0).running());
    EXPECT_EQ(journal().at(3), "task0.setSceneRanges()");
}

TEST_F(TaskLaunch, NothingIsLoggedWithoutALogger) {
    beginVideo();
    host().faults.loggerAbsent = true;
    EXPECT_EQ(launch(&KOR::ComponentProbe::startScenceDetect), KOR::statusOk);
    EXPECT_TRUE(task(0).running());
    EXPECT_EQ(logTexts(), Lines());
}

TEST_F(TaskLaunch, NothingIsLoggedBelowTheSeverity) {
    beginVideo();
    host().faults.severityDisabled = true;
    EXPECT_EQ(launch(&KOR::ComponentProbe::startScenceDetect), KOR::statusOk);
    EXPECT_EQ(logTexts(), Lines());
}

TEST_F(TaskLaunch, LineWithoutAStreamIsDropped) {
    beginVideo();
    host().faults.logStreamsFail = true;
    EXPECT_EQ(launch(&KOR::ComponentProbe::startScenceDetect), KOR::statusOk);
    EXPECT_EQ(logTexts(), Lines());
}

/// One start operation and one step of its preparation.
struct LaunchStep {
    const char* name;
    StartOperation start;
    const char* step;
};

void PrintTo(const LaunchStep& launch, std::ostream* out) {
    *out << launch.name << ", " << launch.step;
}

class TaskLaunchFailure : public TaskLaunch, public testing::WithParamInterface<LaunchStep> {};

TEST_P(TaskLaunchFailure, FailedStepShowsButDoesNotStopTheStart) {
    beginVideo();
    task(0).answer(GetParam().step, KOR::statusFailed);
    EXPECT_EQ(launch(GetParam().start), KOR::statusFailed);
    EXPECT_EQ(host().startCount, 1);
    EXPECT_EQ(logTexts().size(), 1U);
}

using Probe = KOR::ComponentProbe;

INSTANTIATE_TEST_SUITE_P(
    EveryStep, TaskLaunchFailure,
    testing::Values(
        LaunchStep{"face", &Probe::startFaceDetect, "setSource"},
        LaunchStep{"face", &Probe::startFaceDetect, "setKeyFramePositions"},
        LaunchStep{"face", &Probe::startFaceDetect, "start"},
        LaunchStep{"blur", &Probe::startBlurDetect, "setSource"},
        LaunchStep{"blur", &Probe::startBlurDetect, "setKeyFramePositions"},
        LaunchStep{"blur", &Probe::startBlurDetect, "start"},
        LaunchStep{"keyframe", &Probe::startKeyFrameDetect, "setSource"},
        LaunchStep{"keyframe", &Probe::startKeyFrameDetect, "setSceneRanges"},
        LaunchStep{"keyframe", &Probe::startKeyFrameDetect, "start"},
        LaunchStep{"scene", &Probe::startScenceDetect, "setSource"},
        LaunchStep{"scene", &Probe::startScenceDetect, "setParameterBlock"},
        LaunchStep{"scene", &Probe::startScenceDetect, "start"},
        LaunchStep{"entropy", &Probe::startEntropyCalculate, "setSource"},
        LaunchStep{"entropy", &Probe::startEntropyCalculate, "setKeyFramePositions"},
        LaunchStep{"entropy", &Probe::startEntropyCalculate, "start"},
        LaunchStep{"scene and keyframe", &Probe::startScenceAndKeyframeDetect, "setSource"},
        LaunchStep{"scene and keyframe", &Probe::startScenceAndKeyframeDetect, "setParameterBlock"},
        LaunchStep{"scene and keyframe", &Probe::startScenceAndKeyframeDetect, "start"},
        LaunchStep{"face and entropy", &Probe::startFaceAndEntropyAnalysis, "setSource"},
        LaunchStep{"face and entropy", &Probe::startFaceAndEntropyAnalysis, "setKeyFramePositions"},
        LaunchStep{"face and entropy", &Probe::startFaceAndEntropyAnalysis, "start"}));

class TaskLaunchOfNull : public TaskLaunch, public testing::WithParamInterface<LaunchStep> {};

TEST_P(TaskLaunchOfNull, NullTaskFailsAndTouchesNoOther) {
    beginVideo();
    KOR::ComponentProbe steps = probe();
    EXPECT_EQ((steps.*GetParam().start)(nullptr), KOR::statusFailed);
    EXPECT_EQ(host().startCount, 0);
}

INSTANTIATE_TEST_SUITE_P(
    EveryStart, TaskLaunchOfNull,
    testing::Values(LaunchStep{"face", &Probe::startFaceDetect, ""},
                    LaunchStep{"blur", &Probe::startBlurDetect, ""},
                    LaunchStep{"keyframe", &Probe::startKeyFrameDetect, ""},
                    LaunchStep{"scene", &Probe::startScenceDetect, ""},
                    LaunchStep{"entropy", &Probe::startEntropyCalculate, ""},
                    LaunchStep{"scene and keyframe", &Probe::startScenceAndKeyframeDetect, ""},
                    LaunchStep{"face and entropy", &Probe::startFaceAndEntropyAnalysis, ""}));

TEST_F(TaskLaunch, OtherStatusOfTheSourceIsPassedOn) {
    beginVideo();
    task(0).answer("setSource", 5);
    EXPECT_EQ(launch(&KOR::ComponentProbe::startScenceDetect), 5U);
}

TEST_F(TaskLaunch, OtherStatusOfALaterStepCountsAsSuccess) {
    beginVideo();
    task(0).answer("setKeyFramePositions", 5);
    task(0).answer("start", 6);
    EXPECT_EQ(launch(&KOR::ComponentProbe::startEntropyCalculate), KOR::statusOk);
}

TEST_F(TaskLaunch, EitherFailedBlockOfTheCombinedStartCounts) {
    beginVideo();
    int blocks = 0;
    task(0).onCall("setParameterBlock", [&] {
        task(0).answer("setParameterBlock", ++blocks == 1 ? KOR::statusOk : KOR::statusFailed);
    });
    task(0).answer("setParameterBlock", KOR::statusFailed);
    EXPECT_EQ(launch(&KOR::ComponentProbe::startScenceAndKeyframeDetect), KOR::statusFailed);
    EXPECT_EQ(blocks, 2);
}

}  // namespace
}  // namespace fake_host
