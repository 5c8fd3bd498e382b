#include "modules/BusinessLayer/MaterialAnalysis/Ranking.h"

#include <algorithm>
#include <cmath>

namespace KOR {

namespace {

bool scoresLower(const KeyFrameScore& left, const KeyFrameScore& right) {
    if (std::isnan(left.score)) return !std::isnan(right.score);
    return left.score < right.score;
}

}  // namespace

std::vector<KeyFrameScore> rankKeyFrames(std::vector<std::vector<KeyFrameScore>>& keyFramesOfScenes,
                                         std::size_t sceneCount) {
    std::vector<KeyFrameScore> best;
    const std::size_t count = std::min(sceneCount, keyFramesOfScenes.size());
    for (std::size_t scene = 0; scene < count; ++scene) {
        std::vector<KeyFrameScore>& keyFrames = keyFramesOfScenes[scene];
        if (keyFrames.empty()) continue;
        best.push_back(*std::max_element(keyFrames.begin(), keyFrames.end(), scoresLower));
        keyFrames.assign(1, best.back());
    }
    std::stable_sort(
        best.begin(), best.end(),
        [](const KeyFrameScore& left, const KeyFrameScore& right) { return left.pos < right.pos; });
    return best;
}

}  // namespace KOR
