#include <cstdint>
#include <vector>

#include "host/tasks.h"
#include "host_kit/AnalysisTask.h"

namespace {

bool isKnown(std::int32_t type) {
    switch (type) {
        case KOR::analysisTypeScene:
        case KOR::analysisTypeBlur:
        case KOR::analysisTypeFace:
        case KOR::analysisTypeEntropy:
        case KOR::analysisTypeKeyFrame:
            return true;
        default:
            return false;
    }
}

}  // namespace

KOR::IKorBaseTask* createMediaAnalysisTask(KOR::IKORIntList* types) {
    if (types == nullptr || types->count() <= 0) return nullptr;
    std::vector<std::int32_t> known;
    for (std::int64_t i = 0; i < types->count(); ++i) {
        const std::int32_t type = types->at(i);
        if (!isKnown(type)) return nullptr;
        known.push_back(type);
    }
    return new host_kit::AnalysisTask(std::move(known));
}
