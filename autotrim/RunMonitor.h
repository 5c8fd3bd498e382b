#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <optional>

#include "host/tasks.h"

namespace autotrim {

/// Hears what a component reports, on whatever thread, and keeps it for the thread that waits.
class RunMonitor final : public KOR::IKorCallBack {
public:
    /// What is known of a run.
    struct State {
        std::optional<int> percent;  ///< of the whole run; unset before the first progress
        bool finished = false;       ///< the run has come to its end
        bool stopped = false;        ///< a task has been stopped
        bool interrupted = false;    ///< the user wants it to end
        std::uint64_t events = 0;    ///< how many events have come

        /// Whether no task runs any more.
        bool over() const { return finished || stopped; }
    };

    KOR::Status onReserved() override;
    KOR::Status onTaskEvent(KOR::IDmBaseObj* sender, std::uint32_t category, std::uint32_t event,
                            void* payload) override;

    /// Notes that the user wants the run to end. Any thread.
    void interrupt();

    State state() const;

    /// Waits until an event comes, the user interrupts or `time` is over, and returns the state.
    State waitFor(std::chrono::milliseconds time);

private:
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool news_ = false;
    State state_;
};

}  // namespace autotrim
