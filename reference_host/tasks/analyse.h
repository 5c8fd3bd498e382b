#pragma once

#include <stop_token>

#include "reference_host/tasks/AnalysisRequest.h"
#include "reference_host/tasks/AnalysisResults.h"
#include "reference_host/tasks/ProgressMeter.h"

namespace reference_host {

/// Does what was asked. Throws std::exception, whose text is the reason of the failure. Once `stop`
/// is requested, it returns early and what it returns means nothing.
AnalysisResults analyse(const AnalysisRequest& request, const std::stop_token& stop,
                        ProgressMeter& progress);

}  // namespace reference_host
