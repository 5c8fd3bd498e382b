#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "host/tasks.h"

namespace validator {

/// One event, as it was told.
struct Told {
    KOR::IDmBaseObj* sender = nullptr;
    std::uint32_t category = 0;
    std::uint32_t event = 0;
    bool hasPayload = false;
    std::int32_t progress = 0;
    std::int32_t reasonCode = 0;
    std::string reason;
    std::thread::id thread;

    bool isLast() const {
        return event == KOR::taskEventFinished || event == KOR::taskEventStopped;
    }
};

/// Listens to a task, keeps what it is told, and does inside an event what a check wants done
/// there. All functions may be called on any thread.
///
/// Nothing is waited for without a bound: a check fails when something does not happen in time.
class Listener final : public KOR::IKorCallBack {
public:
    Listener();

    /// Is called inside every event. A Failure or Skip that it throws goes on in the next of the
    /// functions that wait. Set before the listener is added.
    void doInside(std::function<void(const Told&)> action);

    KOR::Status onReserved() override { return 0; }
    KOR::Status onTaskEvent(KOR::IDmBaseObj* sender, std::uint32_t category, std::uint32_t event,
                            void* payload) override;

    /// Waits until the listener has returned from the `times`th last event of a run.
    void waitForEnd(std::size_t times = 1) const;

    /// Waits until the listener is called, or was, for the `times`th event of this number.
    void waitFor(std::uint32_t event, std::size_t times = 1) const;

    /// Waits until it is called for an event of progress, or a run has ended, and skips the check
    /// where that is the case: the run cannot be held by its progress.
    void waitForProgress() const;

    /// The events so far, in the order in which they began.
    std::vector<Told> events() const;

    /// The numbers of all events but those of progress.
    std::vector<std::uint32_t> milestones() const;

    /// Whether it is being called at this moment, and whether it ever was twice at a time.
    bool isBusy() const;
    bool hasOverlapped() const;

private:
    struct State;

    /// Outlives the listener where it is destroyed while the last event returns.
    std::shared_ptr<State> state_;
};

using Milestones = std::vector<std::uint32_t>;

}  // namespace validator
