#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/faces.h"
#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

/// Whole runs in which keyframes gain scores, each with everything that the component does to the
/// outside, in order.
class ScoreTrace : public RunTest {
protected:
    /// Two scenes of two keyframes each, and results for all four, of which the last two are never
    /// looked at.
    static MediaSpec footage() {
        return video("clip.mp4", 1000000000)
            .scenes({{0, 400000000}, {400000000, 1000000000}})
            .keyFrames({100000000, 200000000, 600000000, 700000000})
            .faceFrames({frameWith({smallFaceAt(0.5, 0.5)}), frameWith({largeFaceAt(0.5, 0.5)}),
                         frameWith({}), frameWith({smallFaceAt(0.5, 0.95)})})
            .entropies({{100000000, 4.0}, {200000000, 7.0}, {600000000, 8.0}, {700000000, 1.0}})
            .blurs({{100000000, 900.0}, {200000000, 30.0}, {600000000, 7.0}, {700000000, 0.0}});
    }

    const double ofFirstScene = 400000001 * 0.3 / 1000000000;
    const double ofSecondScene = 600000001 * 0.3 / 1000000000;
};

TEST_F(ScoreTrace, OfTheTwoCombinedKinds) {
    insert(footage().cacheIn(host().directory()));
    useKindsQuietly({6, 7});
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
listener: event 1, 25
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
log keyFrameDetectFinishedInternal: "duration score result: {"
task0.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.120000]"
log keyFrameDetectFinishedInternal: "[1:0.180000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
log scenceAndKeyframeDetectFinished: "----Finish Scence Detect and keyframe extract---素材idx: 0\n"
log scenceAndKeyframeDetectFinished: "fileName detect result: clip.mp4"
log scenceAndKeyframeDetectFinished: "scence [0,400000000) key frame position: { 100000000,200000000 } \n "
log scenceAndKeyframeDetectFinished: "scence [400000000,1000000000) key frame position: { 600000000,700000000 } \n "
task1.setSource(clip.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(0)
task1.setKeyFramePositions(100000000, 200000000, 600000000, 700000000)
task1.start
log startFaceAndEntropyAnalysis: "----Start Face detect and Entropy Value---素材idx: 0\n"
listener: event 1, 75
task1.getResultList(3, 0, list, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "[100000000:0.396000]"
log faceDetectFinishedInternal: "[200000000:0.492000]"
log faceDetectFinishedInternal: "[600000000:0.396000]"
log faceDetectFinishedInternal: "[700000000:0.492000]"
log faceDetectFinishedInternal: "}\n"
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
log entropyCalculateFinishedInternal: "entropy score result: {"
task1.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[100000000:0.050000]"
log entropyCalculateFinishedInternal: "[200000000:0.087500]"
task1.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[100000000:0.050000]"
log entropyCalculateFinishedInternal: "[200000000:0.087500]"
log entropyCalculateFinishedInternal: "}\n"
log entropyCalculateFinished: "----Finish Entropy Value---素材idx: 0\n"
log faceAndEntropyAnalysisFinished: "----Finish face Detect and entropy calculate---素材idx: 0\n"
log saveMaterialAnalysisResult: "write analysisCachePath: <dir>/analysis/result.json"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 0 end: 400000000 keyframe pos: 200000000 socre: 0.6995 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 400000000 end: 1000000000 keyframe pos: 700000000 socre: 0.7595 face rect: {0000} \n"
listener: event 2, 100
)");
    const auto results = probe().results();
    ASSERT_EQ(results.size(), 2U);
    EXPECT_EQ(results[0].score, ofFirstScene + faceScoreIn(0.9, true) + 7.0 * 0.125 * 0.1);
    EXPECT_EQ(results[1].score, ofSecondScene + faceScoreIn(0.9, true) + 7.0 * 0.125 * 0.1);
    EXPECT_NE(resultFile().find("\"analysisTypes\": \"6,7\""), std::string::npos);
}

TEST_F(ScoreTrace, OfFourSingleKinds) {
    insert(footage());
    useKindsQuietly({4, 3, 1, 5});
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
listener: event 1, 12
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
task1.setSource(clip.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setSceneRanges([0, 400000000) [400000000, 1000000000))
task1.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
listener: event 1, 37
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.120000]"
log keyFrameDetectFinishedInternal: "[1:0.180000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
task2.setSource(clip.mp4, 0, 0)
task2.setPriority(100)
task2.setParameterMode(0)
task2.setKeyFramePositions(100000000, 200000000, 600000000, 700000000)
task2.start
log startFaceDetect: "----Start Face Detect---素材idx: 0\n"
listener: event 1, 62
task2.getResultList(3, 0, list, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "[100000000:0.396000]"
log faceDetectFinishedInternal: "[200000000:0.492000]"
log faceDetectFinishedInternal: "[600000000:0.396000]"
log faceDetectFinishedInternal: "[700000000:0.492000]"
log faceDetectFinishedInternal: "}\n"
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
task3.setSource(clip.mp4, 0, 0)
task3.setPriority(100)
task3.setParameterMode(0)
task3.setKeyFramePositions(100000000, 200000000, 600000000, 700000000)
task3.start
log startEntropyCalculate: "----Start Entropy Value---素材idx: 0\n"
listener: event 1, 87
log entropyCalculateFinishedInternal: "entropy score result: {"
task3.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[100000000:0.050000]"
log entropyCalculateFinishedInternal: "[200000000:0.087500]"
task3.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[100000000:0.050000]"
log entropyCalculateFinishedInternal: "[200000000:0.087500]"
log entropyCalculateFinishedInternal: "}\n"
log entropyCalculateFinished: "----Finish Entropy Value---素材idx: 0\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 0 end: 400000000 keyframe pos: 200000000 socre: 0.6995 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 400000000 end: 1000000000 keyframe pos: 700000000 socre: 0.7595 face rect: {0000} \n"
listener: event 2, 100
)");
}

TEST_F(ScoreTrace, OfBlurAsTheLastKind) {
    // One keyframe in each scene: equal scores would leave the choice open.
    insert(footage().keyFrames({100000000, 600000000}));
    useKindsQuietly({4, 3, 2});
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
task1.setSceneRanges([0, 400000000) [400000000, 1000000000))
task1.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
listener: event 1, 50
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.120000]"
log keyFrameDetectFinishedInternal: "[1:0.180000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
task2.setSource(clip.mp4, 0, 0)
task2.setPriority(100)
task2.setParameterMode(1)
task2.setKeyFramePositions(100000000, 600000000)
task2.start
log startBlurDetect: "----Start Blur Detect---素材idx: 0\n"
listener: event 1, 83
log saveMaterialAnalysisResult: "mediaCache path is empty"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 0 end: 400000000 keyframe pos: 100000000 socre: 0.12 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 400000000 end: 1000000000 keyframe pos: 600000000 socre: 0.18 face rect: {0000} \n"
listener: event 2, 100
)");
    EXPECT_EQ(probe().results().at(0).score, ofFirstScene);
    EXPECT_EQ(probe().results().at(1).score, ofSecondScene);
}

}  // namespace
}  // namespace fake_host
