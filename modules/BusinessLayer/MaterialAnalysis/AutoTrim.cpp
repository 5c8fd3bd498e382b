// How scored keyframes become the auto-trim result.

#include "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis.h"
#include "modules/BusinessLayer/MaterialAnalysis/LogLine.h"
#include "modules/BusinessLayer/MaterialAnalysis/MediaQueries.h"
#include "modules/BusinessLayer/MaterialAnalysis/Ranking.h"

namespace KOR {

Status KorMaterialAnalysis::rankScenceScores() {
    if (keyFramesOfScences.empty()) return statusOk;
    scenceScores = rankKeyFrames(keyFramesOfScences, scenceRanges.size());
    return statusOk;
}

Status KorMaterialAnalysis::buildAnalysisResults() {
    IDmBaseMedia* const media = currentMaterial();
    if (media == nullptr) return statusOk;
    std::vector<const MaterialAnalysisResult*> ofMaterial;
    for (const KeyFrameScore& best : scenceScores) {
        const auto scence = static_cast<std::size_t>(best.scenceIndex);
        // The ranking of an earlier material may still stand where this one has no scenes.
        if (scence >= scenceRanges.size()) continue;
        OwnedResult result = makeResult(*media);
        result->score = best.score;
        result->begin = scenceRanges[scence].begin;
        result->end = scenceRanges[scence].end;
        result->posOfMaxScore = best.pos;
        ofMaterial.push_back(result.get());
        analysisResults.push_back(std::move(result));
    }
    saveMaterialAnalysisResult(media, ofMaterial);
    return statusOk;
}

/// Gives the current material the one record of a photo or of a video too short to analyse. Which
/// of the two it is makes no difference.
Status KorMaterialAnalysis::addDefaultResult(std::int32_t /*isPhoto*/) {
    IDmBaseMedia* const media = currentMaterial();
    if (media == nullptr) return statusOk;
    OwnedResult result = makeResult(*media);
    result->begin = 0;
    result->end = mediaDuration(media);
    result->posOfMaxScore = static_cast<std::int64_t>(static_cast<double>(result->end) * 0.5);
    result->score = 1.0;
    analysisResults.push_back(std::move(result));
    return statusOk;
}

Status KorMaterialAnalysis::finishedAllAnalysis() {
    constexpr const char* function = "KOR::KorMaterialAnalysis::finishedAllAnalysis";
    logLine(function, "auto trim result: \n");
    for (const OwnedResult& result : analysisResults) {
        const KorRect& rect = result->faceRectOfPhoto;
        logLine(function, "fileName: ", result->media->getFileName(), " begin: ", result->begin,
                " end: ", result->end, " keyframe pos: ", result->posOfMaxScore,
                " socre: ", result->score, " face rect: {", rect.x, rect.y, rect.width, rect.height,
                "} \n");
    }
    TaskEventPayload payload{};
    payload.progress = 100;
    callBacks.notify(*this, taskEventFinished, &payload);
    return statusOk;
}

}  // namespace KOR
