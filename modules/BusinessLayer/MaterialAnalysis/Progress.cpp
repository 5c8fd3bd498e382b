#include "modules/BusinessLayer/MaterialAnalysis/Progress.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace KOR {

namespace {

/// Returns the share of the run that is done; 1 is all of it.
double shareDone(const RunPosition& at, double taskPercent) {
    const double before = at.durationBefore / at.durationOfAll;
    if (at.stillMaterial) {
        return taskPercent * at.durationOfCurrent / at.durationOfAll * 0.01 + before;
    }
    const auto tasks = static_cast<double>(at.taskCount);
    const double ofMaterial = taskPercent / tasks * 0.01 + at.taskIndex / tasks;
    return ofMaterial * at.durationOfCurrent / at.durationOfAll + before;
}

}  // namespace

std::int32_t overallProgress(const RunPosition& position, std::int32_t taskPercent) {
    const double percent = shareDone(position, taskPercent) * position.scale * 100;
    if (std::isnan(percent)) return 0;
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<double>(percent, Limits::min(), Limits::max()));
}

}  // namespace KOR
