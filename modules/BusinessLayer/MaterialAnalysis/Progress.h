#pragma once

#include <cstddef>
#include <cstdint>

namespace KOR {

/// Where a run stands while one of its tasks reports.
struct RunPosition {
    bool stillMaterial;        ///< the current material is a photo
    double durationBefore;     ///< ticks, of all materials before the current one
    double durationOfCurrent;  ///< ticks
    double durationOfAll;      ///< ticks
    std::int32_t taskIndex;
    std::size_t taskCount;
    double scale;  ///< factor of the result
};

/// Returns the progress of the whole run in percent, truncated towards zero, from that of the
/// current task. Every material counts by its duration; within a video every task counts the same.
/// A run without any duration is at 0, as is one whose value is no number; values beyond the 32
/// bits are clamped.
std::int32_t overallProgress(const RunPosition& position, std::int32_t taskPercent);

}  // namespace KOR
