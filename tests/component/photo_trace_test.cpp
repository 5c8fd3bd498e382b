#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fake_host/faces.h"
#include "tests/component/RunTest.h"

namespace fake_host {
namespace {

/// Whole runs over photos whose faces are looked for, each with everything that the component does
/// to the outside, in order.
class PhotoTrace : public RunTest {
protected:
    PhotoTrace() { setParam("photoNeedAnalysis", 1); }

    /// A photo that is shown for some time, so that it counts in the progress.
    static MediaSpec shownPhoto(const std::string& name, std::int64_t ticks) {
        MediaSpec spec = photo(name).mediaLength(ticks);
        spec.durationTicks = ticks;
        return spec;
    }

    static MediaSpec portrait() {
        return shownPhoto("portrait.jpg", 250000000)
            .faceFrames({frameWith({{0.25, 0.125, 0.5, 0.375}, {0.0, 0.0, 0.75, 0.875}})})
            .entropies({{0, 8.0}});
    }

    static MediaSpec landscape() {
        return shownPhoto("landscape.jpg", 250000000)
            .faceFrames({frameWith({})})
            .entropies({{0, 8.0}});
    }

    static MediaSpec footage() {
        return video("clip.mp4", 500000000)
            .keyFrames({100000000, 300000000})
            .faceFrames({frameWith({smallFaceAt(0.5, 0.5)}), frameWith({largeFaceAt(0.5, 0.5)})})
            .entropies({{100000000, 8.0}, {300000000, 4.0}});
    }
};

TEST_F(PhotoTrace, OfScenesAndFaces) {
    insert(portrait());
    insert(footage());
    insert(landscape());
    useKindsQuietly({4, 1});
    // The video's faces find no keyframes, since none were looked for.
    EXPECT_EQ(traceOfRun(), R"(
task1.setSource(portrait.jpg, 0, 0)
task1.setPriority(100)
task1.setParameterMode(0)
task1.start
log startFaceDetect: "----Start Face Detect---素材idx: 0\n"
listener: event 1, 12
task1.getResultList(3, 0, list, 0)
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---1\n"
listener: event 1, 37
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 1\n"
task1.setSource(clip.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(0)
task1.setKeyFramePositions()
task1.start
log startFaceDetect: "----Start Face Detect---素材idx: 1\n"
listener: event 1, 62
task1.getResultList(3, 0, list, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "}\n"
log faceDetectFinished: "----Finish Face Detect---素材idx: 1\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
task1.setSource(landscape.jpg, 0, 0)
task1.setPriority(100)
task1.setParameterMode(0)
task1.start
log startFaceDetect: "----Start Face Detect---素材idx: 2\n"
listener: event 1, 87
task1.getResultList(3, 0, list, 0)
log faceDetectFinished: "----Finish Face Detect---素材idx: 2\n"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: portrait.jpg begin: 0 end: 250000000 keyframe pos: 125000000 socre: 1 face rect: {0.250.1250.50.375} \n"
log finishedAllAnalysis: "fileName: landscape.jpg begin: 0 end: 250000000 keyframe pos: 125000000 socre: 1 face rect: {0000} \n"
listener: event 2, 100
)");
}

TEST_F(PhotoTrace, OfTheTwoCombinedKinds) {
    insert(portrait());
    insert(footage());
    insert(landscape());
    useKindsQuietly({6, 7});
    EXPECT_EQ(traceOfRun(), R"(
task1.setSource(portrait.jpg, 0, 0)
task1.setPriority(100)
task1.setParameterMode(0)
task1.start
log startFaceAndEntropyAnalysis: "----Start Face detect and Entropy Value---素材idx: 0\n"
listener: event 1, 12
task1.getResultList(3, 0, list, 0)
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
log faceAndEntropyAnalysisFinished: "----Finish face Detect and entropy calculate---素材idx: 0\n"
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.setParameterBlock(9, 6, 4, 0, 4, 2, 2)
task0.start
log startScenceAndKeyframeDetect: "----Start Scence Detect and keyframe extrackt:---素材idx---1\n"
listener: event 1, 37
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 1\n"
log keyFrameDetectFinishedInternal: "duration score result: {"
task0.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.300000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 1\n"
log scenceAndKeyframeDetectFinished: "----Finish Scence Detect and keyframe extract---素材idx: 1\n"
log scenceAndKeyframeDetectFinished: "fileName detect result: clip.mp4"
log scenceAndKeyframeDetectFinished: "scence [0,500000000) key frame position: { 100000000,300000000 } \n "
task1.setSource(clip.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(0)
task1.setKeyFramePositions(100000000, 300000000)
task1.start
log startFaceAndEntropyAnalysis: "----Start Face detect and Entropy Value---素材idx: 1\n"
listener: event 1, 62
task1.getResultList(3, 0, list, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "[100000000:0.396000]"
log faceDetectFinishedInternal: "[300000000:0.492000]"
log faceDetectFinishedInternal: "}\n"
log faceDetectFinished: "----Finish Face Detect---素材idx: 1\n"
log entropyCalculateFinishedInternal: "entropy score result: {"
task1.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[100000000:0.100000]"
log entropyCalculateFinishedInternal: "[300000000:0.050000]"
log entropyCalculateFinishedInternal: "}\n"
log entropyCalculateFinished: "----Finish Entropy Value---素材idx: 1\n"
log faceAndEntropyAnalysisFinished: "----Finish face Detect and entropy calculate---素材idx: 1\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
task1.setSource(landscape.jpg, 0, 0)
task1.setPriority(100)
task1.setParameterMode(0)
task1.start
log startFaceAndEntropyAnalysis: "----Start Face detect and Entropy Value---素材idx: 2\n"
listener: event 1, 87
task1.getResultList(3, 0, list, 0)
log faceDetectFinished: "----Finish Face Detect---素材idx: 2\n"
log faceAndEntropyAnalysisFinished: "----Finish face Detect and entropy calculate---素材idx: 2\n"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: portrait.jpg begin: 0 end: 250000000 keyframe pos: 125000000 socre: 1 face rect: {0.250.1250.50.375} \n"
log finishedAllAnalysis: "fileName: clip.mp4 begin: 0 end: 500000000 keyframe pos: 300000000 socre: 0.842 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: landscape.jpg begin: 0 end: 250000000 keyframe pos: 125000000 socre: 1 face rect: {0000} \n"
listener: event 2, 100
)");
}

TEST_F(PhotoTrace, OfFacesFirstSelectsThePhotoOverAndOver) {
    FakeMedia& still = insert(shownPhoto("portrait.jpg", 500000000));
    insert(footage());
    useKindsQuietly({1, 4});
    // Selection would never return, so the parameter is taken back from within it: the photo gets
    // one more record, and the run goes on to the video.
    still.onTypeQuery = [&] {
        if (probe().results().size() == 3) setParam("photoNeedAnalysis", 0);
    };
    EXPECT_EQ(traceOfRun(), R"(
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(clip.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(0)
task0.setKeyFramePositions()
task0.start
log startFaceDetect: "----Start Face Detect---素材idx: 1\n"
listener: event 1, 62
task0.getResultList(3, 0, list, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "}\n"
log faceDetectFinished: "----Finish Face Detect---素材idx: 1\n"
task1.setSource(clip.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setParameterBlock(1, 1.0, 3.0, 0)
task1.start
log startScenceDetect: "----Start Scence Detect:---素材idx---1\n"
listener: event 1, 87
task1.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 1\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: portrait.jpg begin: 0 end: 500000000 keyframe pos: 250000000 socre: 1 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: portrait.jpg begin: 0 end: 500000000 keyframe pos: 250000000 socre: 1 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: portrait.jpg begin: 0 end: 500000000 keyframe pos: 250000000 socre: 1 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: portrait.jpg begin: 0 end: 500000000 keyframe pos: 250000000 socre: 1 face rect: {0000} \n"
listener: event 2, 100
)");
}

}  // namespace
}  // namespace fake_host
