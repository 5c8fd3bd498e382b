#pragma once

#include <stop_token>

#include "Clip.h"
#include "host_kit/AnalysisRequest.h"
#include "host_kit/AnalysisResults.h"
#include "host_kit/ProgressMeter.h"

namespace minimal_host {

/// Does what was asked, as host_kit::Analysable says.
host_kit::AnalysisResults analyse(const Clip& clip, const host_kit::AnalysisRequest& request,
                                  const std::stop_token& stop, host_kit::ProgressMeter& progress);

}  // namespace minimal_host
