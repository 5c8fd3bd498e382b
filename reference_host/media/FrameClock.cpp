#include "reference_host/media/FrameClock.h"

extern "C" {
#include <libavutil/mathematics.h>
}

#include <algorithm>
#include <cmath>

#include "host/status.h"
#include "reference_host/media/Limits.h"
#include "reference_host/media/frameDuration.h"

namespace reference_host::media {
namespace {

constexpr AVRational tick{1, static_cast<int>(KOR::ticksPerSecond)};

/// What most footage without any rate of its own was recorded at.
constexpr AVRational fallbackRate{25, 1};

/// How far from a half the claimed part of the time may be: room for single missing frames and for
/// rounded timestamps, and still far from frames that claim all of their time.
constexpr double fieldTolerance = 0.1;

bool isSensible(AVRational rational) {
    return rational.num > 0 && rational.den > 0;
}

std::int64_t distanceOf(const AVStream& stream) {
    const AVRational rate = isSensible(stream.avg_frame_rate) ? stream.avg_frame_rate
                            : isSensible(stream.r_frame_rate) ? stream.r_frame_rate
                                                              : fallbackRate;
    return std::max<std::int64_t>(1, av_rescale_q(1, av_inv_q(rate), stream.time_base));
}

}  // namespace

FrameClock::FrameClock(const AVStream& stream)
    : timeBase_(stream.time_base), ordinaryDistance_(distanceOf(stream)) {}

std::int64_t FrameClock::timestampOf(const AVFrame& frame) {
    const std::int64_t known = frame.best_effort_timestamp;
    const std::int64_t timestamp = known == AV_NOPTS_VALUE ? next_ : known;
    const std::int64_t claimed = frameDuration(frame);
    const std::int64_t shown = claimed > 0 ? claimed : ordinaryDistance_;
    if (__builtin_add_overflow(timestamp, shown, &next_)) next_ = timestamp;
    return timestamp;
}

std::optional<std::int64_t> FrameClock::positionOf(std::int64_t timestamp,
                                                   std::int64_t origin) const {
    std::int64_t distance = 0;
    if (__builtin_sub_overflow(timestamp, origin, &distance)) return std::nullopt;
    // INT64_MIN, the answer to what does not fit, is out of range as well.
    const std::int64_t position = av_rescale_q_rnd(distance, timeBase_, tick, AV_ROUND_NEAR_INF);
    if (position < -maxDurationTicks || position > maxDurationTicks) return std::nullopt;
    return position;
}

void LastFrame::add(std::int64_t timestamp, std::int64_t duration) {
    const auto start = static_cast<double>(timestamp);
    first_ = last_ ? std::min(first_, start) : start;
    claimed_ += static_cast<double>(duration);
    if (last_ && timestamp < *last_) {
        before_ = std::max(before_.value_or(timestamp), timestamp);
        return;
    }
    if (last_ && timestamp > *last_) before_ = last_;
    last_ = timestamp;
    duration_ = duration;
}

bool LastFrame::countsFields() const {
    const double shown = static_cast<double>(*last_) - first_;
    const double claimed = claimed_ - static_cast<double>(duration_);
    return shown > 0 && std::abs(2 * claimed - shown) <= fieldTolerance * shown;
}

std::optional<std::int64_t> LastFrame::end(std::int64_t ordinaryDistance) const {
    if (!last_) return std::nullopt;
    std::int64_t shown = countsFields() ? 0 : duration_;
    if (shown <= 0 && before_ && __builtin_sub_overflow(*last_, *before_, &shown)) shown = 0;
    if (shown <= 0) shown = ordinaryDistance;
    std::int64_t end = 0;
    if (__builtin_add_overflow(*last_, shown, &end)) return std::nullopt;
    return end;
}

}  // namespace reference_host::media
