#include "fake_host/faces.h"
#include "validator/component/groups.h"
#include "validator/component/runs.h"

namespace validator {
namespace {

MediaSpec portrait(const std::string& fileName) {
    return shownPhoto(fileName, 25 * second)
        .faceFrames({frameWith({{0.25, 0.125, 0.5, 0.375}, {0.0, 0.0, 0.75, 0.875}})})
        .entropies({{0, 8.0}});
}

MediaSpec landscape(const std::string& fileName) {
    return shownPhoto(fileName, 25 * second).faceFrames({frameWith({})}).entropies({{0, 8.0}});
}

MediaSpec footage(const std::string& fileName) {
    return video(fileName, 50 * second)
        .keyFrames({10 * second, 30 * second})
        .faceFrames({frameWith({smallFaceAt(0.5, 0.5)}), frameWith({largeFaceAt(0.5, 0.5)})})
        .entropies({{10 * second, 8.0}, {30 * second, 4.0}});
}

/// The journal of a run, from its start to its end.
void expectTrace(Stage& stage, const std::vector<std::int32_t>& kinds,
                 const std::string& expected) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    useKindsQuietly(stage, kinds);
    runWithProgress(stage);
    expectLines("the run", journalOfRun(stage), linesOf(expected));
}

void tracesPhotos(Stage& stage) {
    stage.setParam("photoNeedAnalysis", 1);
    stage.insert(portrait("portrait.jpg"));
    stage.insert(landscape("landscape.jpg"));
    expectTrace(stage, {4, 1}, R"(
task1.setSource(portrait.jpg, 0, 0)
task1.setPriority(100)
task1.setParameterMode(0)
task1.start
log startFaceDetect: "----Start Face Detect---素材idx: 0\n"
listener: event 1, 25
task1.getResultList(3, 0, list, 0)
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
task1.setSource(landscape.jpg, 0, 0)
task1.setPriority(100)
task1.setParameterMode(0)
task1.start
log startFaceDetect: "----Start Face Detect---素材idx: 1\n"
listener: event 1, 75
task1.getResultList(3, 0, list, 0)
log faceDetectFinished: "----Finish Face Detect---素材idx: 1\n"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: portrait.jpg begin: 0 end: 250000000 keyframe pos: 125000000 socre: 1 face rect: {0.250.1250.50.375} \n"
log finishedAllAnalysis: "fileName: landscape.jpg begin: 0 end: 250000000 keyframe pos: 125000000 socre: 1 face rect: {0000} \n"
listener: event 2, 100
)");
}

void tracesPhotosAndVideo(Stage& stage) {
    stage.setParam("photoNeedAnalysis", 1);
    stage.insert(portrait("portrait.jpg"));
    stage.insert(footage("clip.mp4"));
    stage.insert(landscape("landscape.jpg"));
    expectTrace(stage, {6, 7}, R"(
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

void tracesShortVideos(Stage& stage) {
    stage.setParam("minNeedAnalysisDuartion", 5);
    stage.insert(video("a.mp4", 5 * second).cacheIn(stage.directory()));
    stage.insert(photo("b.jpg"));
    stage.insert(video("c.mp4", 50000001).keyFrames({3}));
    stage.insert(video("d.mp4", 1));
    expectTrace(stage, {4, 3}, R"(
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(c.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---2\n"
listener: event 1, 62
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 2\n"
task1.setSource(c.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setSceneRanges([0, 50000001))
task1.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 2\n"
listener: event 1, 87
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.300000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 2\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: a.mp4 begin: 0 end: 50000000 keyframe pos: 25000000 socre: 1 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: b.jpg begin: 0 end: 1 keyframe pos: 0 socre: 1 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: c.mp4 begin: 0 end: 50000001 keyframe pos: 3 socre: 0.3 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: d.mp4 begin: 0 end: 1 keyframe pos: 0 socre: 1 face rect: {0000} \n"
listener: event 2, 100
)");
}

void tracesUselessFile(Stage& stage) {
    stage.writeResultFile(R"({"version": "1.0.0.0"})");
    stage.insert(photo("a.jpg"));
    stage.insert(footage("b.mp4").cacheIn(stage.directory()));
    stage.insert(video("c.mp4", second));
    expectTrace(stage, {6, 5}, R"(
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/analysis/result.json"
log restoreMaterialAnalysisResult: "version changed"
task0.setSource(b.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.setParameterBlock(9, 6, 4, 0, 4, 2, 2)
task0.start
log startScenceAndKeyframeDetect: "----Start Scence Detect and keyframe extrackt:---素材idx---1\n"
listener: event 1, 24
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 1\n"
log keyFrameDetectFinishedInternal: "duration score result: {"
task0.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.300000]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 1\n"
log scenceAndKeyframeDetectFinished: "----Finish Scence Detect and keyframe extract---素材idx: 1\n"
log scenceAndKeyframeDetectFinished: "fileName detect result: b.mp4"
log scenceAndKeyframeDetectFinished: "scence [0,500000000) key frame position: { 100000000,300000000 } \n "
task1.setSource(b.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(0)
task1.setKeyFramePositions(100000000, 300000000)
task1.start
log startEntropyCalculate: "----Start Entropy Value---素材idx: 1\n"
listener: event 1, 73
log entropyCalculateFinishedInternal: "entropy score result: {"
task1.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[100000000:0.100000]"
log entropyCalculateFinishedInternal: "[300000000:0.050000]"
log entropyCalculateFinishedInternal: "}\n"
log entropyCalculateFinished: "----Finish Entropy Value---素材idx: 1\n"
log saveMaterialAnalysisResult: "write analysisCachePath: <dir>/analysis/result.json"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: a.jpg begin: 0 end: 1 keyframe pos: 0 socre: 1 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: b.mp4 begin: 0 end: 500000000 keyframe pos: 100000000 socre: 0.4 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: c.mp4 begin: 0 end: 10000000 keyframe pos: 5000000 socre: 1 face rect: {0000} \n"
listener: event 2, 100
)");
}

}  // namespace

const std::vector<ComponentCheck> mixturesChecks = {
    {"mixtures.of-photos-with-faces",
     "A run with the kinds 4 and 1 over photos that are analysed, call by call.", tracesPhotos},
    {"mixtures.of-photos-and-video",
     "A run with the kinds 6 and 7 over a video between photos, call by call.",
     tracesPhotosAndVideo},
    {"mixtures.of-short-videos",
     "A run over videos and a photo only one of which is analysed, call by call.",
     tracesShortVideos},
    {"mixtures.of-useless-file",
     "A run with the kinds 6 and 5 that finds a useless result file, call by call.",
     tracesUselessFile},
};

}  // namespace validator
