// How host tasks are made, prepared for the current material and started.

#include <memory>

#include "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis.h"
#include "modules/BusinessLayer/MaterialAnalysis/LogLine.h"
#include "modules/BusinessLayer/MaterialAnalysis/MediaQueries.h"
#include "modules/BusinessLayer/MaterialAnalysis/NestedStart.h"

namespace KOR {

namespace {

/// What the component asks of every keyframe extraction that it combines with scene detection.
constexpr KeyFrameParameters keyFrameParameters{6, 4, 0, 4, 2, 2};

/// Returns the host task types of a kind of analysis, none for an unknown one.
std::vector<std::int32_t> taskTypesOf(std::int32_t kind) {
    switch (kind) {
        case analysisKindFace:
            return {analysisTypeFace};
        case analysisKindBlur:
            return {analysisTypeBlur};
        case analysisKindKeyFrame:
            return {analysisTypeKeyFrame};
        case analysisKindScence:
            return {analysisTypeScene};
        case analysisKindEntropy:
            return {analysisTypeEntropy};
        case analysisKindScenceAndKeyFrame:
            return {analysisTypeScene, analysisTypeKeyFrame};
        case analysisKindFaceAndEntropy:
            return {analysisTypeFace, analysisTypeEntropy};
        default:
            return {};
    }
}

/// Returns `status`, unless the step that followed failed.
Status combined(Status status, Status step) {
    return step == statusFailed ? statusFailed : status;
}

}  // namespace

Status KorMaterialAnalysis::setAnalysisKinds(IKORIntList* kinds) {
    if (kinds == nullptr) return statusFailed;
    analysisKinds.clear();
    for (std::int64_t i = 0; i < kinds->count(); ++i) {
        const std::int32_t kind = kinds->at(i);
        const auto types = Ref<IKORIntList>::adopt(createKORIntList());
        const std::vector<std::int32_t> wanted = taskTypesOf(kind);
        if (!types || wanted.empty()) continue;
        for (const std::int32_t type : wanted)
            types->append(type);

        analysisKinds.push_back(kind);
        auto task = Ref<IKorBaseTask>::adopt(createMediaAnalysisTask(types.get()));
        if (!task) continue;
        task->addCallBack(this);
        tasks.push_back(std::move(task));
    }
    return statusOk;
}

Status KorMaterialAnalysis::startFaceDetect(IBsMediaAnalysisTask* task) {
    if (task == nullptr) return statusFailed;
    Status status = prepareTask(*task, parameterModeDefault);
    IDmSourceMedia* const source = sourceMediaOf(currentMaterial());
    if (source == nullptr || source->getSourceType() != sourceTypeUnseekable) {
        status = combined(status, handKeyFramePositions(*task));
    }
    return launch(*task, status, "KOR::KorMaterialAnalysis::startFaceDetect",
                  "----Start Face Detect---素材idx: ");
}

Status KorMaterialAnalysis::startBlurDetect(IBsMediaAnalysisTask* task) {
    if (task == nullptr) return statusFailed;
    Status status = prepareTask(*task, detectParamMode);
    status = combined(status, handKeyFramePositions(*task));
    return launch(*task, status, "KOR::KorMaterialAnalysis::startBlurDetect",
                  "----Start Blur Detect---素材idx: ");
}

Status KorMaterialAnalysis::startKeyFrameDetect(IBsMediaAnalysisTask* task) {
    if (task == nullptr) return statusFailed;
    Status status = prepareTask(*task, detectParamMode);
    status = combined(status, handScenceRanges(*task));
    return launch(*task, status, "KOR::KorMaterialAnalysis::startKeyFrameDetect",
                  "----Start Keyframe Extract---素材idx: ");
}

Status KorMaterialAnalysis::startScenceDetect(IBsMediaAnalysisTask* task) {
    if (task == nullptr) return statusFailed;
    Status status = prepareTask(*task, detectParamMode);
    if (detectParamMode == parameterModeExplicit) {
        status = combined(status, handScenceParameters(*task));
    }
    return launch(*task, status, "KOR::KorMaterialAnalysis::startScenceDetect",
                  "----Start Scence Detect:---素材idx---");
}

Status KorMaterialAnalysis::startEntropyCalculate(IBsMediaAnalysisTask* task) {
    if (task == nullptr) return statusFailed;
    Status status = prepareTask(*task, parameterModeDefault);
    status = combined(status, handKeyFramePositions(*task));
    return launch(*task, status, "KOR::KorMaterialAnalysis::startEntropyCalculate",
                  "----Start Entropy Value---素材idx: ");
}

Status KorMaterialAnalysis::startScenceAndKeyframeDetect(IBsMediaAnalysisTask* task) {
    if (task == nullptr) return statusFailed;
    Status status = prepareTask(*task, detectParamMode);
    if (detectParamMode == parameterModeExplicit) {
        status = combined(status, handScenceParameters(*task));
        status =
            combined(status, task->setParameterBlock(analysisTypeKeyFrame, &keyFrameParameters));
    }
    return launch(*task, status, "KOR::KorMaterialAnalysis::startScenceAndKeyframeDetect",
                  "----Start Scence Detect and keyframe extrackt:---素材idx---");
}

Status KorMaterialAnalysis::startFaceAndEntropyAnalysis(IBsMediaAnalysisTask* task) {
    if (task == nullptr) return statusFailed;
    Status status = prepareTask(*task, parameterModeDefault);
    status = combined(status, handKeyFramePositions(*task));
    return launch(*task, status, "KOR::KorMaterialAnalysis::startFaceAndEntropyAnalysis",
                  "----Start Face detect and Entropy Value---素材idx: ");
}

Status KorMaterialAnalysis::prepareTask(IBsMediaAnalysisTask& task, std::int32_t flag) {
    const Status status = task.setSource(sourceOf(currentMaterial()), 0, 0);
    task.setPriority(taskPriority);
    task.setParameterMode(flag);
    return status;
}

Status KorMaterialAnalysis::handKeyFramePositions(IBsMediaAnalysisTask& task) {
    if (isPhotoMaterial(currentMaterial())) return statusOk;
    const auto positions = Ref<IKORLonglongList>::adopt(createKORLonglongList());
    if (!positions) return statusFailed;
    Status status = statusOk;
    for (const std::vector<KeyFrameScore>& keyFrames : keyFramesOfScences) {
        for (const KeyFrameScore& keyFrame : keyFrames) {
            status = combined(status, positions->append(keyFrame.pos));
        }
    }
    return combined(status, task.setKeyFramePositions(positions.get()));
}

Status KorMaterialAnalysis::handScenceRanges(IBsMediaAnalysisTask& task) {
    if (isPhotoMaterial(currentMaterial())) return statusOk;
    std::vector<std::unique_ptr<TickRange>> pairs;
    const auto ranges = Ref<IKORVoidPtrList>::adopt(createKORVoidPtrList());
    if (!ranges) return statusFailed;
    Status status = statusOk;
    for (const ScenceRange& scence : scenceRanges) {
        pairs.push_back(std::make_unique<TickRange>(TickRange{scence.begin, scence.end}));
        status = combined(status, ranges->append(pairs.back().get()));
    }
    const Status handed = task.setSceneRanges(ranges.get());
    return combined(handed, status);
}

Status KorMaterialAnalysis::handScenceParameters(IBsMediaAnalysisTask& task) {
    const SceneParameters parameters{1.0, scenceDetectionThreshold, 0};
    return task.setParameterBlock(analysisTypeScene, &parameters);
}

/// Starts a task that is prepared, and writes the line that says so.
Status KorMaterialAnalysis::launch(IBsMediaAnalysisTask& task, Status prepared,
                                   const LogSource& source, const char* text) {
    const NestedStart mark(this, currentMaterialIndex);
    const Status started = task.start();
    // The task may have finished in there, and the run with it; the task and the component may be
    // gone, or at work on another thread. So only what is on this stack is touched from here on.
    logLine(source, text, mark.materialIndex(), "\n");
    return combined(prepared, started);
}

}  // namespace KOR
