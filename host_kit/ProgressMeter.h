#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

namespace host_kit {

/// Lets through as much of a run's progress as is worth an event: ascending whole percentages,
/// about 20 a second, and 100 in any case. Belongs to one thread.
class ProgressMeter {
public:
    using Clock = std::chrono::steady_clock;

    ProgressMeter(std::function<void(std::int32_t)> tell,
                  std::function<Clock::time_point()> now = Clock::now)
        : tell_(std::move(tell)), now_(std::move(now)) {}

    /// Tells of `percent`, 0 to 100, where it is more than was told before and not too soon; 100
    /// never is.
    void report(std::int32_t percent) {
        if (percent <= told_) return;
        const Clock::time_point now = now_();
        if (toldAt_ && now - *toldAt_ < shortestInterval && percent < whole) return;
        told_ = percent;
        toldAt_ = now;
        tell_(percent);
    }

private:
    static constexpr std::chrono::milliseconds shortestInterval{50};
    static constexpr std::int32_t whole = 100;

    std::function<void(std::int32_t)> tell_;
    std::function<Clock::time_point()> now_;
    std::int32_t told_ = -1;
    std::optional<Clock::time_point> toldAt_;
};

}  // namespace host_kit
