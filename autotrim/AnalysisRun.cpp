#include "autotrim/AnalysisRun.h"

#include <algorithm>

namespace autotrim {
namespace {

using std::chrono::milliseconds;

/// The remaining time on the display changes once a second.
constexpr milliseconds displayInterval{1000};

/// Counts how long nothing has been heard, in time that was waited: a machine that sleeps, or a
/// program that is held, does not count.
class Silence {
public:
    explicit Silence(milliseconds limit) : limit_(limit) {}

    /// Takes in that one more wait of at most `waited` has ended; true when it has been too long.
    bool tooLong(std::uint64_t events, milliseconds waited) {
        total_ = events == events_ ? total_ + waited : milliseconds(0);
        events_ = events;
        return total_ >= limit_;
    }

private:
    milliseconds limit_;
    milliseconds total_{0};
    std::uint64_t events_ = 0;
};

void bringToStop(KOR::IKorMaterialAnalysis& component, RunMonitor& monitor,
                 const Patience& patience) {
    for (int i = 0; i < patience.stopsInSilence && !monitor.state().over(); ++i) {
        component.stop();
        if (!monitor.state().over()) monitor.waitFor(patience.stopEvery);
    }
}

RunMonitor::State waitForEnd(RunMonitor& monitor, milliseconds silenceLimit,
                             const std::function<void(int percent)>& onProgress) {
    Silence silence(silenceLimit);
    const milliseconds interval = std::min(displayInterval, silenceLimit);
    RunMonitor::State state = monitor.state();
    while (!state.over() && !state.interrupted && !silence.tooLong(state.events, interval)) {
        if (state.percent) onProgress(*state.percent);
        state = monitor.waitFor(interval);
    }
    if (state.finished) onProgress(100);
    return state;
}

}  // namespace

RunEnd runToEnd(KOR::IKorMaterialAnalysis& component, RunMonitor& monitor,
                const std::function<void(int percent)>& onProgress, const Patience& patience) {
    component.addCallBack(&monitor);
    const bool started = component.start() == KOR::statusOk;
    waitForEnd(monitor, started ? patience.silence : patience.silenceAfterFailedStart, onProgress);
    bringToStop(component, monitor, patience);
    // The last event may still be on its way back through the component; stop waits for it.
    component.stop();
    component.removeCallBack(&monitor);

    const RunMonitor::State state = monitor.state();
    if (state.finished) return RunEnd::complete;
    return state.interrupted ? RunEnd::interrupted : RunEnd::stalled;
}

}  // namespace autotrim
