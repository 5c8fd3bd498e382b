#pragma once

#include <cstdint>
#include <vector>

#include "host/results.h"

namespace host_kit {

/// What one run has found; empty where it was not asked for.
struct AnalysisResults {
    std::vector<KOR::TickRange> scenes;
    std::vector<std::int64_t> keyFramePositionsTicks;
    // One for each picture that was asked for, in that order.
    std::vector<KOR::FaceDetectFrame> faces;
    std::vector<KOR::EntropySample> entropies;
    std::vector<KOR::BlurSample> blurs;
};

}  // namespace host_kit
