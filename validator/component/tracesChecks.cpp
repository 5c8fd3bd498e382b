#include "fake_host/faces.h"
#include "validator/component/groups.h"
#include "validator/component/runs.h"

namespace validator {
namespace {

/// A video of which everything is found: faces and entropies differ from keyframe to keyframe.
MediaSpec film(const std::string& fileName) {
    return video(fileName, 80 * second)
        .scenes({{0, 20 * second}, {20 * second, 21 * second}, {21 * second, 80 * second}})
        .keyFrames({5 * second, 15 * second, 30 * second, 50 * second, 70 * second})
        .faceFrames({frameWith({smallFaceAt(0.5, 0.5)}), frameWith({}),
                     frameWith({largeFaceAt(0.5, 0.5), smallFaceAt(0.05, 0.5)})})
        .entropies({{5 * second, 7.5}, {15 * second, 4.0}, {30 * second, 1.0}});
}

/// The journal of a component made for the kinds, from the making of its tasks to the end.
void expectTrace(Stage& stage, const std::vector<std::int32_t>& kinds,
                 const std::string& expected) {
    RecordingListener listener;
    stage.component().addCallBack(&listener);
    stage.useKinds(kinds);
    runWithProgress(stage);
    expectLines("the run", journalOfRun(stage), linesOf(expected));
}

void tracesSingleKinds(Stage& stage) {
    stage.insert(film("film.mp4").cacheIn(stage.directory()));
    expectTrace(stage, {4, 3, 1, 5}, R"(
createMediaAnalysisTask(1)
task0.addCallBack
createMediaAnalysisTask(9)
task1.addCallBack
createMediaAnalysisTask(3)
task2.addCallBack
createMediaAnalysisTask(8)
task3.addCallBack
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/analysis/result.json"
log restoreMaterialAnalysisResult: "analysisCachePath not exists"
task0.setSource(film.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 3.0, 0)
task0.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
listener: event 1, 12
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
task1.setSource(film.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setSceneRanges([0, 200000000) [210000000, 800000000))
task1.start
log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n"
listener: event 1, 37
log keyFrameDetectFinishedInternal: "duration score result: {"
task1.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.075000]"
log keyFrameDetectFinishedInternal: "[1:0.221250]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
task2.setSource(film.mp4, 0, 0)
task2.setPriority(100)
task2.setParameterMode(0)
task2.setKeyFramePositions(50000000, 150000000, 300000000, 500000000, 700000000)
task2.start
log startFaceDetect: "----Start Face Detect---素材idx: 0\n"
listener: event 1, 62
task2.getResultList(3, 0, list, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "[50000000:0.396000]"
log faceDetectFinishedInternal: "[150000000:0.420000]"
log faceDetectFinishedInternal: "[300000000:0.396000]"
log faceDetectFinishedInternal: "[500000000:0.420000]"
log faceDetectFinishedInternal: "[700000000:0.492000]"
log faceDetectFinishedInternal: "}\n"
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
task3.setSource(film.mp4, 0, 0)
task3.setPriority(100)
task3.setParameterMode(0)
task3.setKeyFramePositions(50000000, 150000000, 300000000, 500000000, 700000000)
task3.start
log startEntropyCalculate: "----Start Entropy Value---素材idx: 0\n"
listener: event 1, 87
log entropyCalculateFinishedInternal: "entropy score result: {"
task3.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[50000000:0.093750]"
log entropyCalculateFinishedInternal: "[150000000:0.050000]"
task3.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[50000000:0.093750]"
log entropyCalculateFinishedInternal: "[150000000:0.050000]"
log entropyCalculateFinishedInternal: "[300000000:0.012500]"
log entropyCalculateFinishedInternal: "}\n"
log entropyCalculateFinished: "----Finish Entropy Value---素材idx: 0\n"
log saveMaterialAnalysisResult: "write analysisCachePath: <dir>/analysis/result.json"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: film.mp4 begin: 0 end: 200000000 keyframe pos: 50000000 socre: 0.56475 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: film.mp4 begin: 210000000 end: 800000000 keyframe pos: 700000000 socre: 0.72575 face rect: {0000} \n"
listener: event 2, 100
)");
}

void writesFileOfSingleKinds(Stage& stage) {
    stage.insert(film("film.mp4").cacheIn(stage.directory()));
    stage.useKinds({4, 3, 1, 5});
    stage.runToEnd();
    expectLines("the result file", linesOf("\n" + stage.resultText() + "\n"), linesOf(R"(
{
    "version": "1.0.0.1",
    "analysisTypes": "4,3,1,5",
    "minScenceDuration": 2,
    "scenceDetectionThreshold": 3.0,
    "result": [
        {
            "score": 0.564750000375,
            "begin": 0,
            "end": 200000000,
            "posOfMaxScore": 50000000,
            "faceRectOfPhoto": "0.000000,0.000000,0.000000,0.000000"
        },
        {
            "score": 0.7257500003749999,
            "begin": 210000000,
            "end": 800000000,
            "posOfMaxScore": 700000000,
            "faceRectOfPhoto": "0.000000,0.000000,0.000000,0.000000"
        }
    ]
}
)"));
}

void tracesCombinedKinds(Stage& stage) {
    stage.setThreshold(2.5);
    stage.component().setPriority(40);
    stage.insert(film("film.mp4"));
    expectTrace(stage, {6, 7}, R"(
createMediaAnalysisTask(1, 9)
task0.addCallBack
createMediaAnalysisTask(3, 8)
task1.addCallBack
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(film.mp4, 0, 0)
task0.setPriority(40)
task0.setParameterMode(1)
task0.setParameterBlock(1, 1.0, 2.5, 0)
task0.setParameterBlock(9, 6, 4, 0, 4, 2, 2)
task0.start
log startScenceAndKeyframeDetect: "----Start Scence Detect and keyframe extrackt:---素材idx---0\n"
listener: event 1, 25
task0.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
log keyFrameDetectFinishedInternal: "duration score result: {"
task0.getResultList(9, 0, list, 0)
log keyFrameDetectFinishedInternal: "[0:0.075000]"
log keyFrameDetectFinishedInternal: "[1:0.221250]"
log keyFrameDetectFinishedInternal: "}\n"
log keyFrameDetectFinished: "----Finish Keyframe Extract---素材idx: 0\n"
log scenceAndKeyframeDetectFinished: "----Finish Scence Detect and keyframe extract---素材idx: 0\n"
log scenceAndKeyframeDetectFinished: "fileName detect result: film.mp4"
log scenceAndKeyframeDetectFinished: "scence [0,200000000) key frame position: { 50000000,150000000 } \n "
log scenceAndKeyframeDetectFinished: "scence [210000000,800000000) key frame position: { 300000000,500000000,700000000 } \n "
task1.setSource(film.mp4, 0, 0)
task1.setPriority(40)
task1.setParameterMode(0)
task1.setKeyFramePositions(50000000, 150000000, 300000000, 500000000, 700000000)
task1.start
log startFaceAndEntropyAnalysis: "----Start Face detect and Entropy Value---素材idx: 0\n"
listener: event 1, 75
task1.getResultList(3, 0, list, 0)
log faceDetectFinishedInternal: "face score result: {"
log faceDetectFinishedInternal: "[50000000:0.396000]"
log faceDetectFinishedInternal: "[150000000:0.420000]"
log faceDetectFinishedInternal: "[300000000:0.396000]"
log faceDetectFinishedInternal: "[500000000:0.420000]"
log faceDetectFinishedInternal: "[700000000:0.492000]"
log faceDetectFinishedInternal: "}\n"
log faceDetectFinished: "----Finish Face Detect---素材idx: 0\n"
log entropyCalculateFinishedInternal: "entropy score result: {"
task1.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[50000000:0.093750]"
log entropyCalculateFinishedInternal: "[150000000:0.050000]"
task1.getResultList(8, 0, list, 0)
log entropyCalculateFinishedInternal: "[50000000:0.093750]"
log entropyCalculateFinishedInternal: "[150000000:0.050000]"
log entropyCalculateFinishedInternal: "[300000000:0.012500]"
log entropyCalculateFinishedInternal: "}\n"
log entropyCalculateFinished: "----Finish Entropy Value---素材idx: 0\n"
log faceAndEntropyAnalysisFinished: "----Finish face Detect and entropy calculate---素材idx: 0\n"
log saveMaterialAnalysisResult: "mediaCache path is empty"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: film.mp4 begin: 0 end: 200000000 keyframe pos: 50000000 socre: 0.56475 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: film.mp4 begin: 210000000 end: 800000000 keyframe pos: 700000000 socre: 0.72575 face rect: {0000} \n"
listener: event 2, 100
)");
}

void tracesTwoVideos(Stage& stage) {
    stage.insert(clip("a.mp4"));
    stage.insert(video("b.mp4", 50 * second).keyFrames({7}));
    expectTrace(stage, {2, 4, 3}, R"(
createMediaAnalysisTask(2)
task0.addCallBack
createMediaAnalysisTask(1)
task1.addCallBack
createMediaAnalysisTask(9)
task2.addCallBack
log restoreMaterialAnalysisResult: "mediaCache path is empty"
task0.setSource(a.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setKeyFramePositions()
task0.start
log startBlurDetect: "----Start Blur Detect---素材idx: 0\n"
listener: event 1, 11
task1.setSource(a.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setParameterBlock(1, 1.0, 3.0, 0)
task1.start
log startScenceDetect: "----Start Scence Detect:---素材idx---0\n"
listener: event 1, 33
task1.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 0\n"
task2.setSource(a.mp4, 0, 0)
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
task0.setSource(b.mp4, 0, 0)
task0.setPriority(100)
task0.setParameterMode(1)
task0.setKeyFramePositions(100000000, 600000000)
task0.start
log startBlurDetect: "----Start Blur Detect---素材idx: 1\n"
listener: event 1, 72
task1.setSource(b.mp4, 0, 0)
task1.setPriority(100)
task1.setParameterMode(1)
task1.setParameterBlock(1, 1.0, 3.0, 0)
task1.start
log startScenceDetect: "----Start Scence Detect:---素材idx---1\n"
listener: event 1, 83
task1.getResultList(1, 0, list, 0)
log scenceDetectFinished: "----Finish Scence Detect---素材idx: 1\n"
task2.setSource(b.mp4, 0, 0)
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
log finishedAllAnalysis: "fileName: a.mp4 begin: 0 end: 400000000 keyframe pos: 100000000 socre: 0.12 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: a.mp4 begin: 410000000 end: 1000000000 keyframe pos: 600000000 socre: 0.177 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: b.mp4 begin: 0 end: 500000000 keyframe pos: 7 socre: 0.3 face rect: {0000} \n"
listener: event 2, 100
)");
}

void tracesRestored(Stage& stage) {
    stage.insert(clip("a.mp4").cacheIn(stage.directory()));
    stage.useKinds({4, 3});
    stage.runToEnd();
    stage.releaseComponent();
    host().takeJournal();
    stage.component().insertMaterials(
        materialList({&stage.make(clip("a.mp4").cacheIn(stage.directory()))}).get(), 0);
    expectTrace(stage, {4, 3}, R"(
createMediaAnalysisTask(1)
task2.addCallBack
createMediaAnalysisTask(9)
task3.addCallBack
log restoreMaterialAnalysisResult: "read analysisCachePath: <dir>/analysis/result.json"
log finishedAllAnalysis: "auto trim result: \n"
log finishedAllAnalysis: "fileName: a.mp4 begin: 0 end: 400000000 keyframe pos: 100000000 socre: 0.12 face rect: {0000} \n"
log finishedAllAnalysis: "fileName: a.mp4 begin: 410000000 end: 1000000000 keyframe pos: 600000000 socre: 0.177 face rect: {0000} \n"
listener: event 2, 100
)");
}

}  // namespace

const std::vector<ComponentCheck> tracesChecks = {
    {"traces.of-single-kinds", "A run with the kinds 4, 3, 1 and 5 over a video, call by call.",
     tracesSingleKinds},
    {"traces.file-of-single-kinds",
     "A run with the kinds 4, 3, 1 and 5 over a video, as its result file tells it.",
     writesFileOfSingleKinds},
    {"traces.of-combined-kinds", "A run with the kinds 6 and 7 over a video, call by call.",
     tracesCombinedKinds},
    {"traces.of-two-videos", "A run with the kinds 2, 4 and 3 over two videos, call by call.",
     tracesTwoVideos},
    {"traces.of-restored-video", "A run over a video whose result file fits, call by call.",
     tracesRestored},
};

}  // namespace validator
