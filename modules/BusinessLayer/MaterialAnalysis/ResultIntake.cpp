// How scenes and keyframes that a finished task has found are taken in.

#include "modules/BusinessLayer/MaterialAnalysis/FixedText.h"
#include "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis.h"
#include "modules/BusinessLayer/MaterialAnalysis/LogLine.h"
#include "modules/BusinessLayer/MaterialAnalysis/MediaQueries.h"
#include "modules/BusinessLayer/MaterialAnalysis/SceneMeasures.h"
#include "modules/BusinessLayer/MaterialAnalysis/TaskResults.h"

namespace KOR {

Status KorMaterialAnalysis::scenceDetectFinished(IBsMediaAnalysisTask* task) {
    if (task != nullptr) {
        scenceRanges.clear();
        const Ref<IKORVoidPtrList> found = resultsOf(*task, analysisTypeScene);
        for (std::int64_t i = 0; found && i < found->count(); ++i) {
            const auto* const range = static_cast<const TickRange*>(found->at(i));
            if (range == nullptr) continue;
            const ScenceRange scence{range->begin, range->end};
            if (lastsAtLeast(scence, minScenceDuration)) scenceRanges.push_back(scence);
        }
        if (scenceRanges.empty()) {
            IDmBaseMedia* const media = currentMaterial();
            scenceRanges.push_back({0, media == nullptr ? 0 : media->getDuration()});
        }
    }
    logLine("KOR::KorMaterialAnalysis::scenceDetectFinished",
            "----Finish Scence Detect---素材idx: ", currentMaterialIndex, "\n");
    return task == nullptr ? statusFailed : statusOk;
}

Status KorMaterialAnalysis::keyFrameDetectFinished(IBsMediaAnalysisTask* task) {
    const Status status = keyFrameDetectFinishedInternal(task);
    logLine("KOR::KorMaterialAnalysis::keyFrameDetectFinished",
            "----Finish Keyframe Extract---素材idx: ", currentMaterialIndex, "\n");
    return status;
}

/// Gives every keyframe to the scene that holds it, with the duration score of that scene.
Status KorMaterialAnalysis::keyFrameDetectFinishedInternal(IBsMediaAnalysisTask* task) {
    constexpr const char* function = "KOR::KorMaterialAnalysis::keyFrameDetectFinishedInternal";
    if (task == nullptr) return statusFailed;
    keyFramesOfScences.clear();
    logLine(function, "duration score result: {");
    // Fetched for every scene until the host gives a list: it is the same one each time, and a task
    // copies every keyframe into it.
    Ref<IKORVoidPtrList> found;
    std::int64_t cursor = 0;
    for (std::size_t scence = 0; scence < scenceRanges.size(); ++scence) {
        if (!found) found = resultsOf(*task, analysisTypeKeyFrame);
        std::vector<KeyFrameScore> keyFrames = keyFramesOfScence(found.get(), scence, cursor);
        if (!keyFrames.empty()) {
            const double score =
                durationScore(scenceRanges[scence], mediaDuration(currentMaterial()));
            for (KeyFrameScore& keyFrame : keyFrames)
                keyFrame.score += score;
            logLine(function, "[", scence, ":", fixedText(keyFrames.front().score), "]");
        }
        keyFramesOfScences.push_back(std::move(keyFrames));
    }
    logLine(function, "}\n");
    return statusOk;
}

/// Walks on from keyframe `cursor`, which all scenes share, to the first one behind the scene.
/// Without a list there are none.
std::vector<KeyFrameScore> KorMaterialAnalysis::keyFramesOfScence(const IKORVoidPtrList* found,
                                                                  std::size_t scence,
                                                                  std::int64_t& cursor) const {
    std::vector<KeyFrameScore> keyFrames;
    for (; found != nullptr && cursor < found->count(); ++cursor) {
        const auto* const position = static_cast<const std::int64_t*>(found->at(cursor));
        if (position == nullptr) continue;
        const Place place = placeOf(*position, scenceRanges[scence]);
        if (place == Place::behind) break;
        if (place == Place::before) continue;
        keyFrames.push_back({static_cast<std::int32_t>(scence), 0.0, *position});
    }
    return keyFrames;
}

Status KorMaterialAnalysis::scenceAndKeyframeDetectFinished(IBsMediaAnalysisTask* task) {
    Status status = scenceDetectFinished(task);
    if (keyFrameDetectFinished(task) == statusFailed) status = statusFailed;
    logLine("KOR::KorMaterialAnalysis::scenceAndKeyframeDetectFinished",
            "----Finish Scence Detect and keyframe extract---素材idx: ", currentMaterialIndex,
            "\n");
    logScencesWithKeyFrames();
    return status;
}

void KorMaterialAnalysis::logScencesWithKeyFrames() const {
    constexpr const char* function = "KOR::KorMaterialAnalysis::scenceAndKeyframeDetectFinished";
    IDmBaseMedia* const media = currentMaterial();
    logLine(function, "fileName detect result: ", media == nullptr ? "" : media->getFileName());
    for (std::size_t i = 0; i < scenceRanges.size(); ++i) {
        std::string positions;
        if (i < keyFramesOfScences.size()) {
            for (const KeyFrameScore& keyFrame : keyFramesOfScences[i]) {
                if (!positions.empty()) positions += ",";
                positions += std::to_string(keyFrame.pos);
            }
        }
        logLine(function, "scence [", scenceRanges[i].begin, ",", scenceRanges[i].end, ") ",
                "key frame position: { ", positions, " } \n ");
    }
}

}  // namespace KOR
