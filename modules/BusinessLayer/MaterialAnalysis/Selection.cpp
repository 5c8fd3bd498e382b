#include "modules/BusinessLayer/MaterialAnalysis/Selection.h"

#include <algorithm>

#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"

namespace KOR {

std::int32_t photoTaskIndex(const std::vector<std::int32_t>& analysisKinds) {
    for (const AnalysisKind kind : {analysisKindFace, analysisKindFaceAndEntropy}) {
        const auto found = std::find(analysisKinds.begin(), analysisKinds.end(), kind);
        if (found != analysisKinds.end()) {
            return static_cast<std::int32_t>(found - analysisKinds.begin());
        }
    }
    return noTask;
}

bool isTooShortToAnalyse(std::int64_t duration, std::int64_t minSeconds) {
    return duration <= minSeconds * ticksPerSecond;
}

}  // namespace KOR
