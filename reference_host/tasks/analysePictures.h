#pragma once

#include <stop_token>

#include "reference_host/tasks/AnalysisRequest.h"
#include "reference_host/tasks/AnalysisResults.h"
#include "reference_host/tasks/ProgressMeter.h"

namespace reference_host {

/// Looks at the pictures at the positions that `request` names, or at the one of a photo, for all
/// that it wants of them, and fills that in: several at once, where they are many. As analyse().
void analysePictures(const AnalysisRequest& request, const std::stop_token& stop,
                     ProgressMeter& progress, AnalysisResults& results);

}  // namespace reference_host
