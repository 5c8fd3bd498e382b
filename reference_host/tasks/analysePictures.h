#pragma once

#include <stop_token>

#include "host_kit/AnalysisResults.h"
#include "host_kit/ProgressMeter.h"
#include "reference_host/tasks/AnalysisRequest.h"

namespace reference_host {

/// Looks at the pictures at the positions that `request` names, or at the one of a photo, for all
/// that it wants of them, and fills that in: several at once, where they are many. As analyse().
void analysePictures(const AnalysisRequest& request, const std::stop_token& stop,
                     host_kit::ProgressMeter& progress, host_kit::AnalysisResults& results);

}  // namespace reference_host
