#pragma once

#include <memory>
#include <stop_token>
#include <vector>

#include "host/tasks.h"
#include "reference_host/materials/Footage.h"
#include "reference_host/tasks/AnalysisResults.h"
#include "reference_host/tasks/ProgressMeter.h"

namespace reference_host {

/// What a run has to do. A value: nothing in it belongs to the task that asked for it.
struct AnalysisRequest {
    /// Null when the task was given no source that it can read.
    std::shared_ptr<Footage> footage;
    bool wantsScenes = false;
    bool wantsKeyFrames = false;
    KOR::SceneParameters sceneParameters;
    KOR::KeyFrameParameters keyFrameParameters;
    /// Where keyframes are to be looked for, if the scenes are not looked for, too; none means the
    /// whole footage.
    std::vector<KOR::TickRange> sceneRanges;
};

/// Does what was asked. Throws std::exception, whose text is the reason of the failure. Once `stop`
/// is requested, it returns early and what it returns means nothing.
AnalysisResults analyse(const AnalysisRequest& request, const std::stop_token& stop,
                        ProgressMeter& progress);

}  // namespace reference_host
