#pragma once

#include <stop_token>

#include "host_kit/AnalysisResults.h"
#include "host_kit/ProgressMeter.h"
#include "reference_host/tasks/AnalysisRequest.h"

namespace reference_host {

/// Finds the scenes and keyframes that `request` wants, and fills them in. As analyse().
void analyseScenes(const AnalysisRequest& request, const std::stop_token& stop,
                   host_kit::ProgressMeter& progress, host_kit::AnalysisResults& results);

}  // namespace reference_host
