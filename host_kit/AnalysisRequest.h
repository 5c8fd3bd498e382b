#pragma once

#include <cstdint>
#include <vector>

#include "host/tasks.h"

namespace host_kit {

/// What a run has to do. A value: nothing in it belongs to the task that asked for it.
struct AnalysisRequest {
    bool wantsScenes = false;
    bool wantsKeyFrames = false;
    bool wantsFaces = false;
    bool wantsEntropy = false;
    bool wantsBlur = false;
    KOR::SceneParameters sceneParameters;
    KOR::KeyFrameParameters keyFrameParameters;
    /// Where keyframes are to be looked for, if the scenes are not looked for, too; none means the
    /// whole footage.
    std::vector<KOR::TickRange> sceneRanges;
    /// Which pictures of a video are to be looked at by themselves, in any order.
    std::vector<std::int64_t> positionsTicks;
};

}  // namespace host_kit
