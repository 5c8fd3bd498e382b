#pragma once

#include <cstdint>
#include <vector>

namespace KOR {

/// No task is to run.
constexpr std::int32_t noTask = -1;

/// Returns the index of the task that analyses a photo: the first of kind 1 (face), else the first
/// of kind 7 (face and entropy), else noTask.
std::int32_t photoTaskIndex(const std::vector<std::int32_t>& analysisKinds);

/// Says whether a video of `duration` ticks is too short to analyse: not longer than `minSeconds`,
/// which is a 32-bit setting.
bool isTooShortToAnalyse(std::int64_t duration, std::int64_t minSeconds);

}  // namespace KOR
