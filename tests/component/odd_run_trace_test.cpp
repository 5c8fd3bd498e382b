#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

/// Runs that do not go from the first material to the last as they were set up, with everything
/// that the component does to the outside, in order.
using OddRunTrace = RunTest;

TEST_F(OddRunTrace, OfAStopAndAnotherStart) {
    insert(video("clip.mp4", 1000000000));
    useKindsQuietly({4, 3});
    component().start();
    task(0).finish();
    journal();
    component().stop();
    EXPECT_EQ(trace(), R"(
task0.stop
task1.stop
listener: event 4, 0
)");
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
listener: event 1, 25
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
task1.setSource(clip.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setSceneRanges([0, 1000000000))
task1.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
listener: event 1, 75
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
log finishedAllAnalysis: "auto trim result: \n"
listener: event 2, 100
)");
}

TEST_F(OddRunTrace, OfTwoKindListsStallsWhereTheKindsEnd) {
    insert(video("clip.mp4", 1000000000).keyFrames({5}));
    useKindsQuietly({4});
    useKindsQuietly({4, 3});
    // The second task is one for scenes, and is started for keyframes.
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
listener: event 1, 16
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
task1.setSource(clip.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setSceneRanges([0, 1000000000))
task1.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
listener: event 1, 50
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
)");
    EXPECT_EQ(probe().currentTaskIndex(), 2);
    EXPECT_EQ(probe().currentMaterialIndex(), 0);
}

TEST_F(OddRunTrace, OfAMissingSecondTaskRunsTheFirstOnly) {
    insert(video("clip.mp4", 1000000000));
    host().faults.failMaking(Product::task, 2);
    useKindsQuietly({4, 3});
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
listener: event 1, 50
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
log finishedAllAnalysis: "auto trim result: \n"
listener: event 2, 100
)");
}

TEST_F(OddRunTrace, OfAMissingFirstTaskStartsTheNextForItsKind) {
    insert(video("clip.mp4", 1000000000));
    host().faults.failMaking(Product::task, 1);
    useKindsQuietly({4, 3});
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
listener: event 1, 50
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
log finishedAllAnalysis: "auto trim result: \n"
listener: event 2, 100
)");
}

TEST_F(OddRunTrace, OfNoTaskAtAllStallsAtTheFirstVideo) {
    insert(photo("photo.jpg"));
    insert(video("clip.mp4", 1000000000));
    host().faults.failEveryMaking(Product::task);
    useKindsQuietly({4, 3});
    EXPECT_EQ(component().start(), KOR::statusFailed);
    EXPECT_TRUE(listener.heard().empty());
    EXPECT_EQ(probe().results().size(), 1U);
}

TEST_F(OddRunTrace, WithTheCurrentMaterialRemoved) {
    insert(clip());
    insert(video("next.mp4", 500000000).keyFrames({50000000}));
    useKindsQuietly({4, 3});
    component().start();
    component().removeMaterialAt(0);
    journal();
    host().finishAllTasks();
    // The first video's scenes serve for the second one's keyframes.
    EXPECT_EQ(trace(), R"(
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
task1.setSource(next.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setSceneRanges([0, 400000000) [410000000, 1000000000))
task1.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.240000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: next.mp4 begin: 0 end: 400000000 keyframe pos: 50000000 socre: 0.24 face rect: {0000} \n"
listener: event 2, 100
)");
}

TEST_F(OddRunTrace, WithAllMaterialsCleared) {
    insert(clip());
    insert(video("next.mp4", 500000000));
    useKindsQuietly({4, 3});
    component().start();
    component().clearMaterials();
    journal();
    host().finishAllTasks();
    EXPECT_EQ(trace(), R"(
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
log finishedAllAnalysis: "auto trim result: \n"
listener: event 2, 100
)");
}

TEST_F(OddRunTrace, WithAMaterialBeforeTheCurrentOneRemoved) {
    insert(photo("a.jpg"));
    insert(clip());
    useKindsQuietly({4, 3});
    component().start();
    component().removeMaterialAt(0);
    journal();
    host().finishAllTasks();
    EXPECT_EQ(trace(), R"(
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 1\n"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: a.jpg begin: 0 end: 1 keyframe pos: 0 socre: 1 face rect: {0000} \n"
listener: event 2, 100
)");
}

}  // namespace
}  // namespace fake_host
