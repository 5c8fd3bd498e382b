#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "autotrim/Report.h"

namespace autotrim {

/// How a run came to its end.
enum class RunEnd {
    complete,
    interrupted,
    stalled,  ///< nothing was running any more, though not all was done
};

/// The error of a file that an interrupted run did not finish.
constexpr const char* interruptedReason = "interrupted";

/// What a run has left behind of one material.
struct Traces {
    bool analysed = false;    ///< a task was started on it
    bool hasRecords = false;  ///< there are records of it
    /// It is a photo in which faces are still to be looked for: its record was there before.
    bool awaitsFaces = false;
    bool passed = false;  ///< the run went on to a later material, or was complete
    std::string failure;  ///< of a task that ran on it; empty when none failed
};

/// Whether a video is long enough to be analysed.
bool isLong(std::int64_t durationTicks, std::int32_t minLengthSeconds);

/// Says how the material of `report`, whose type and duration are known, has fared: sets outcome
/// and error, and drops the results of one that failed.
///
/// A run handles materials in order, so one of which there are no records, or which still awaits
/// faces, has been finished only if the run has passed it: from an empty cache, or by an analysis
/// that found nothing.
void decideOutcome(FileReport& report, const Traces& traces, RunEnd end,
                   std::int32_t minLengthSeconds);

}  // namespace autotrim
