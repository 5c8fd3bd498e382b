#pragma once

#include <chrono>
#include <functional>

#include "autotrim/Outcome.h"
#include "autotrim/RunMonitor.h"
#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"

namespace autotrim {

/// How long a run is waited for.
struct Patience {
    /// Between two calls of stop: a task is to end within 200 ms of one.
    std::chrono::milliseconds stopEvery{50};
    /// How often stop is called on a run that says nothing. Two calls are enough: the first one
    /// lets no further task begin, and the second ends one that was just beginning then; a run that
    /// was between two tasks ends without an event.
    int stopsInSilence = 10;
    /// How long a run is left alone that says nothing: a running task reports several times a
    /// second, so that only a very slow disk comes near to this.
    std::chrono::milliseconds silence{std::chrono::minutes(5)};
    /// The same for a run whose start has failed: a task that fails at once still says so.
    std::chrono::milliseconds silenceAfterFailedStart{std::chrono::seconds(3)};
};

/// Starts `component` and waits for its end, which `monitor` hears of. When the user interrupts, or
/// when the run has fallen silent (a task could not be created or started), it is stopped. In any
/// case no thread is inside the component any more when this returns.
///
/// `onProgress` is called on this thread, about once a second and whenever the run has reported.
RunEnd runToEnd(KOR::IKorMaterialAnalysis& component, RunMonitor& monitor,
                const std::function<void(int percent)>& onProgress, const Patience& patience = {});

}  // namespace autotrim
