// How what single pictures show is taken in: faces and entropy.

#include "modules/BusinessLayer/MaterialAnalysis/EntropyScore.h"
#include "modules/BusinessLayer/MaterialAnalysis/FaceScore.h"
#include "modules/BusinessLayer/MaterialAnalysis/FixedText.h"
#include "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis.h"
#include "modules/BusinessLayer/MaterialAnalysis/LogLine.h"
#include "modules/BusinessLayer/MaterialAnalysis/MediaQueries.h"
#include "modules/BusinessLayer/MaterialAnalysis/TaskResults.h"

namespace KOR {

namespace {

/// Calls `take` with each keyframe of one scene and the element of `found` that has the same index,
/// as far as there are both. Every scene begins with the list's first element: that is how results
/// are paired, and their positions are not compared.
template <typename Element, typename Take>
void pairByIndex(const IKORVoidPtrList* found, std::vector<KeyFrameScore>& keyFrames, Take take) {
    std::int64_t index = 0;
    for (KeyFrameScore& keyFrame : keyFrames) {
        if (found == nullptr || index >= found->count()) return;
        const auto* const element = static_cast<const Element*>(found->at(index++));
        if (element != nullptr) take(keyFrame, Element(*element));
    }
}

}  // namespace

Status KorMaterialAnalysis::faceDetectFinished(IBsMediaAnalysisTask* task) {
    const Status status = faceDetectFinishedInternal(task);
    logLine("KOR::KorMaterialAnalysis::faceDetectFinished",
            "----Finish Face Detect---素材idx: ", currentMaterialIndex, "\n");
    return status;
}

Status KorMaterialAnalysis::faceDetectFinishedInternal(IBsMediaAnalysisTask* task) {
    if (task == nullptr) return statusFailed;
    const Ref<IKORVoidPtrList> found = resultsOf(*task, analysisTypeFace);
    if (isPhotoMaterial(currentMaterial())) {
        keepFaceOfPhoto(found.get());
    } else {
        addFaceScores(found.get());
    }
    return statusOk;
}

void KorMaterialAnalysis::addFaceScores(const IKORVoidPtrList* found) {
    constexpr const char* function = "KOR::KorMaterialAnalysis::faceDetectFinishedInternal";
    logLine(function, "face score result: {");
    for (std::vector<KeyFrameScore>& keyFrames : keyFramesOfScences) {
        pairByIndex<FaceDetectFrame>(
            found, keyFrames, [&](KeyFrameScore& keyFrame, const FaceDetectFrame& frame) {
                const double score = faceScoreOfFrame(frame);
                logLine(function, "[", keyFrame.pos, ":", fixedText(score), "]");
                keyFrame.score += score;
            });
    }
    logLine(function, "}\n");
}

/// Gives the photo's record, the last one, the first face that was found.
void KorMaterialAnalysis::keepFaceOfPhoto(const IKORVoidPtrList* found) {
    if (found == nullptr || found->count() <= 0) return;
    const auto* const frame = static_cast<const FaceDetectFrame*>(found->at(0));
    if (frame == nullptr || frame->faceCount <= 0 || analysisResults.empty()) return;
    analysisResults.back()->faceRectOfPhoto = frame->faceRects[0];
}

Status KorMaterialAnalysis::entropyCalculateFinished(IBsMediaAnalysisTask* task) {
    const Status status = entropyCalculateFinishedInternal(task);
    logLine("KOR::KorMaterialAnalysis::entropyCalculateFinished",
            "----Finish Entropy Value---素材idx: ", currentMaterialIndex, "\n");
    return status;
}

Status KorMaterialAnalysis::entropyCalculateFinishedInternal(IBsMediaAnalysisTask* task) {
    constexpr const char* function = "KOR::KorMaterialAnalysis::entropyCalculateFinishedInternal";
    if (task == nullptr) return statusFailed;
    logLine(function, "entropy score result: {");
    for (std::vector<KeyFrameScore>& keyFrames : keyFramesOfScences) {
        const Ref<IKORVoidPtrList> found = resultsOf(*task, analysisTypeEntropy);
        pairByIndex<EntropySample>(
            found.get(), keyFrames, [&](KeyFrameScore& keyFrame, const EntropySample& sample) {
                const double score = entropyScore(sample.entropy);
                logLine(function, "[", sample.pos, ":", fixedText(score), "]");
                keyFrame.score += score;
            });
    }
    logLine(function, "}\n");
    return statusOk;
}

Status KorMaterialAnalysis::faceAndEntropyAnalysisFinished(IBsMediaAnalysisTask* task) {
    Status status = faceDetectFinished(task);
    if (!isPhotoMaterial(currentMaterial()) && entropyCalculateFinished(task) == statusFailed) {
        status = statusFailed;
    }
    logLine("KOR::KorMaterialAnalysis::faceAndEntropyAnalysisFinished",
            "----Finish face Detect and entropy calculate---素材idx: ", currentMaterialIndex, "\n");
    return status;
}

}  // namespace KOR
