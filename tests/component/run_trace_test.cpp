#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/component/RunTest.h"
#include "tests/support/storedText.h"

namespace fake_host {
namespace {

/// Whole runs, each with everything that the component does to the outside, in order.
using RunTrace = RunTest;

TEST_F(RunTrace, OfScenesThenKeyFrames) {
    insert(clip().cacheIn(host().directory()));
    useKindsQuietly({4, 3});
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/analysis/result.json"
log restoreMaterialAnalysisResult: "analysisCachePath not exists"
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
task1.setSceneRanges([0, 400000000) [410000000, 1000000000))
task1.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
listener: event 1, 75
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.120000]"
log keyFrameDetectFinishedInternal: "[1:0.177000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
log saveMaterialAnalysisResult: "write analysisCachePath: <dir>/analysis/result.json"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 0 end: 400000000 keyframe pos: 100000000 socre: 0.12 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 410000000 end: 1000000000 keyframe pos: 600000000 socre: 0.177 face rect: {0000} \n"
listener: event 2, 100
)");
    EXPECT_EQ(resultFile(), stored(R"({
    "version": "1.0.0.1",
    "analysisTypes": "4,3",
    "minScenceDuration": 2,
    "scenceDetectionThreshold": 3.0,
    "result": [
        {
            "score": 0.12000000029999999,
            "begin": 0,
            "end": 400000000,
            "posOfMaxScore": 100000000,
            "faceRectOfPhoto": "0.000000,0.000000,0.000000,0.000000"
        },
        {
            "score": 0.1770000003,
            "begin": 410000000,
            "end": 1000000000,
            "posOfMaxScore": 600000000,
            "faceRectOfPhoto": "0.000000,0.000000,0.000000,0.000000"
        }
    ]
})"));
    const auto results = probe().results();
    ASSERT_EQ(results.size(), 2U);
    EXPECT_EQ(results[0].score, (400000001.0 * 0.3) / 1000000000.0);
    EXPECT_EQ(results[1].score, (590000001.0 * 0.3) / 1000000000.0);
}

TEST_F(RunTrace, OfTheCombinedKindAlone) {
    insert(clip().cacheIn(host().directory()));
    useKindsQuietly({6});
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/analysis/result.json"
log restoreMaterialAnalysisResult: "analysisCachePath not exists"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.setParameterBlock(9, 6, 4, 0, 4, 2, 2)
task0.start
log startScenceAndKeyframeDetect: "----Start Scence Detect and keyframe extrackt:---素材idx---0\n"
listener: event 1, 50
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
log keyFrameDetectFinishedInternal: "duration score result: {"
task0.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.120000]"
log keyFrameDetectFinishedInternal: "[1:0.177000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
log scenceAndKeyframeDetectFinished: "----Finish Scence Detect and keyframe extract---素材idx: 0\n"
log scenceAndKeyframeDetectFinished: "fileName detect result: clip.mp4"
log scenceAndKeyframeDetectFinished: "scence [0,400000000) key frame position: { 100000000 } \n "
log scenceAndKeyframeDetectFinished: "scence [410000000,1000000000) key frame position: { 600000000 } \n "
log finishedAllAnalysis: "auto trim result: \n"
listener: event 2, 100
)");
    EXPECT_EQ(resultFile(), "");
    EXPECT_TRUE(probe().results().empty());
}

TEST_F(RunTrace, OfScenesAlone) {
    insert(clip().cacheIn(host().directory()));
    useKindsQuietly({4});
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/analysis/result.json"
log restoreMaterialAnalysisResult: "analysisCachePath not exists"
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
    EXPECT_EQ(resultFile(), "");
    EXPECT_TRUE(probe().results().empty());
}

TEST_F(RunTrace, OfBlurScenesAndKeyFramesOverTwoVideos) {
    insert(clip());
    insert(video("next.mp4", 500000000).keyFrames({7}));
    useKindsQuietly({2, 4, 3});
    // The second video's blur task is handed the best keyframes of the first one.
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setKeyFramePositions()
task0.start
log startBlurDetect: "----Start Blur Detect---素材idx: 0\n"
listener: event 1, 11
task1.setSource(clip.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setParameterBlock(1, 1.0, 3.0, 0)
task1.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
listener: event 1, 33
task1.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
task2.setSource(clip.mp4, 0, 0)
task2.setPriority(100)
task2.setParameterMode(1)
task2.setSceneRanges([0, 400000000) [410000000, 1000000000))
task2.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
listener: event 1, 55
log keyFrameDetectFinishedInternal: "duration score result: {"
task2.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.120000]"
log keyFrameDetectFinishedInternal: "[1:0.177000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(next.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setKeyFramePositions(100000000, 600000000)
task0.start
log startBlurDetect: "----Start Blur Detect---素材idx: 1\n"
listener: event 1, 72
task1.setSource(next.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setParameterBlock(1, 1.0, 3.0, 0)
task1.start
log startScenceDetect: "----Start Scence Detect:---素材idx---1\n"
listener: event 1, 83
task1.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 1\n"
task2.setSource(next.mp4, 0, 0)
task2.setPriority(100)
task2.setParameterMode(1)
task2.setSceneRanges([0, 500000000))
task2.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 1\n"
listener: event 1, 94
log keyFrameDetectFinishedInternal: "duration score result: {"
task2.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.300000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 1\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 0 end: 400000000 keyframe pos: 100000000 socre: 0.12 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 410000000 end: 1000000000 keyframe pos: 600000000 socre: 0.177 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: next.mp4 begin: 0 end: 500000000 keyframe pos: 7 socre: 0.3 face rect: {0000} \n"
listener: event 2, 100
)");
}

TEST_F(RunTrace, OfKeyFramesThenScenesOverTwoVideos) {
    insert(video("clip.mp4", 1000000000)
               .scenes({{0, 400000000}, {400000000, 1000000000}})
               .keyFrames({100000000}));
    insert(video("next.mp4", 500000000)
               .scenes({{0, 150000000}, {150000000, 300000000}, {300000000, 500000000}})
               .keyFrames({100000000, 450000000})
               .cacheIn(host().directory()));
    useKindsQuietly({3, 4});
    // The second video's keyframes are looked for in the scenes of the first one.
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setSceneRanges()
task0.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
listener: event 1, 16
log keyFrameDetectFinishedInternal: "duration score result: {"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
task1.setSource(clip.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setParameterBlock(1, 1.0, 3.0, 0)
task1.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
listener: event 1, 50
task1.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/analysis/result.json"
log restoreMaterialAnalysisResult: "analysisCachePath not exists"
task0.setSource(next.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setSceneRanges([0, 400000000) [400000000, 1000000000))
task0.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 1\n"
listener: event 1, 75
log keyFrameDetectFinishedInternal: "duration score result: {"
task0.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.240000]"
log keyFrameDetectFinishedInternal: "[1:0.360000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 1\n"
task1.setSource(next.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setParameterBlock(1, 1.0, 3.0, 0)
task1.start
log startScenceDetect: "----Start Scence Detect:---素材idx---1\n"
listener: event 1, 91
task1.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 1\n"
log saveMaterialAnalysisResult: "write analysisCachePath: <dir>/analysis/result.json"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: next.mp4 begin: 0 end: 150000000 keyframe pos: 100000000 socre: 0.24 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: next.mp4 begin: 150000000 end: 300000000 keyframe pos: 450000000 socre: 0.36 face rect: {0000} \n"
listener: event 2, 100
)");
    EXPECT_EQ(resultFile(), stored(R"({
    "version": "1.0.0.1",
    "analysisTypes": "3,4",
    "minScenceDuration": 2,
    "scenceDetectionThreshold": 3.0,
    "result": [
        {
            "score": 0.24000000059999999,
            "begin": 0,
            "end": 150000000,
            "posOfMaxScore": 100000000,
            "faceRectOfPhoto": "0.000000,0.000000,0.000000,0.000000"
        },
        {
            "score": 0.3600000006,
            "begin": 150000000,
            "end": 300000000,
            "posOfMaxScore": 450000000,
            "faceRectOfPhoto": "0.000000,0.000000,0.000000,0.000000"
        }
    ]
})"));
}

TEST_F(RunTrace, OfPhotosShortAndLongVideos) {
    insert(photo("a.jpg"));
    insert(video("short.mp4", second));
    insert(video("clip.mp4", 1000000000).keyFrames({300}));
    insert(photo("b.jpg"));
    useKindsQuietly({4, 3});
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---2\n"
listener: event 1, 25
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 2\n"
task1.setSource(clip.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setSceneRanges([0, 1000000000))
task1.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 2\n"
listener: event 1, 75
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.300000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 2\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: a.jpg begin: 0 end: 1 keyframe pos: 0 socre: 1 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: short.mp4 begin: 0 end: 10000000 keyframe pos: 5000000 socre: 1 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 0 end: 1000000000 keyframe pos: 300 socre: 0.3 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: b.jpg begin: 0 end: 1 keyframe pos: 0 socre: 1 face rect: {0000} \n"
listener: event 2, 100
)");
}

}  // namespace
}  // namespace fake_host
