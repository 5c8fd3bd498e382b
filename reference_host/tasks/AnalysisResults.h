#pragma once

#include <cstdint>
#include <vector>

#include "host/tasks.h"

namespace reference_host {

/// What one run has found; empty where it was not asked for.
struct AnalysisResults {
    std::vector<KOR::TickRange> scenes;
    std::vector<std::int64_t> keyFramePositionsTicks;
};

}  // namespace reference_host
