#pragma once

#include <memory>

#include "host_kit/AnalysisRequest.h"
#include "reference_host/materials/Footage.h"

namespace reference_host {

/// What a run has to do, and with which file.
struct AnalysisRequest : host_kit::AnalysisRequest {
    std::shared_ptr<Footage> footage;
};

}  // namespace reference_host
