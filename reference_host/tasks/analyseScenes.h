#pragma once

#include <stop_token>

#include "reference_host/tasks/AnalysisRequest.h"
#include "reference_host/tasks/AnalysisResults.h"
#include "reference_host/tasks/ProgressMeter.h"

namespace reference_host {

/// Finds the scenes and keyframes that `request` wants, and fills them in. As analyse().
void analyseScenes(const AnalysisRequest& request, const std::stop_token& stop,
                   ProgressMeter& progress, AnalysisResults& results);

}  // namespace reference_host
