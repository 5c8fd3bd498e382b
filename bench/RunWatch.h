#pragma once

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "host/tasks.h"

namespace bench {

/// What a run has told of how far it is.
struct Course {
    int progressEvents = 0;
    /// The highest percentage.
    std::int32_t highest = 0;
    /// A percentage was lower than the one before.
    bool wentBackwards = false;
    /// The longest time, in seconds, without a higher percentage than any before, from the start to
    /// the end.
    double longestStandstill = 0;
    /// From the start to the end.
    double seconds = 0;
    /// Why it failed, where it did.
    std::optional<std::string> failure;
};

/// Watches one run of a task, which is to start right after this was made. Events come on any
/// thread, and another one may wait for the end.
class RunWatch final : public KOR::IKorCallBack {
public:
    using Clock = std::chrono::steady_clock;

    explicit RunWatch(std::function<Clock::time_point()> now = Clock::now)
        : now_(std::move(now)), begin_(now_()), movedAt_(begin_) {}

    KOR::Status onReserved() override { return KOR::statusOk; }

    KOR::Status onTaskEvent(KOR::IDmBaseObj*, std::uint32_t, std::uint32_t event,
                            void* payload) override {
        const Clock::time_point now = now_();
        const auto* const values = static_cast<const KOR::TaskEventPayload*>(payload);
        const std::scoped_lock lock(mutex_);
        if (event == KOR::taskEventProgress && values != nullptr)
            noteProgress(values->progress, now);
        if (event == KOR::taskEventFailed)
            course_.failure = values == nullptr ? "" : values->reason;
        if (event == KOR::taskEventFinished) noteEnd(now);
        return KOR::statusOk;
    }

    /// Waits until the run has finished, well or not.
    Course waitForEnd() {
        std::unique_lock lock(mutex_);
        ended_.wait(lock, [this] { return isOver_; });
        return course_;
    }

private:
    void noteProgress(std::int32_t percent, Clock::time_point now) {
        ++course_.progressEvents;
        course_.wentBackwards = course_.wentBackwards || percent < last_;
        last_ = percent;
        if (percent <= course_.highest) return;
        course_.highest = percent;
        noteMove(now);
    }

    void noteEnd(Clock::time_point now) {
        noteMove(now);
        course_.seconds = secondsBetween(begin_, now);
        isOver_ = true;
        ended_.notify_all();
    }

    void noteMove(Clock::time_point now) {
        course_.longestStandstill =
            std::max(course_.longestStandstill, secondsBetween(movedAt_, now));
        movedAt_ = now;
    }

    static double secondsBetween(Clock::time_point begin, Clock::time_point end) {
        return std::chrono::duration<double>(end - begin).count();
    }

    const std::function<Clock::time_point()> now_;
    const Clock::time_point begin_;
    std::mutex mutex_;
    std::condition_variable ended_;
    Clock::time_point movedAt_;
    std::int32_t last_ = 0;
    bool isOver_ = false;
    Course course_;
};

}  // namespace bench
