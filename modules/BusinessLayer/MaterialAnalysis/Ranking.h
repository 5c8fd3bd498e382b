#pragma once

#include <cstddef>
#include <vector>

#include "modules/BusinessLayer/MaterialAnalysis/Records.h"

namespace KOR {

/// Cuts the keyframes of each of the first `sceneCount` scenes down to the best one, and returns
/// the best ones in ascending position.
///
/// Of equal scores the first in the list is taken; NaN ranks below every number. A scene without
/// keyframes gives none, as does one beyond the end of `keyFramesOfScenes`.
std::vector<KeyFrameScore> rankKeyFrames(std::vector<std::vector<KeyFrameScore>>& keyFramesOfScenes,
                                         std::size_t sceneCount);

}  // namespace KOR
