#pragma once

#include <cstdint>
#include <optional>

#include "reference_host/media/AvPointers.h"

namespace reference_host::media {

/// Tells when the frames of one stream are shown. Timestamps are counts of the stream's own unit;
/// positions are ticks.
class FrameClock {
public:
    explicit FrameClock(const AVStream& stream);

    /// Returns the timestamp of the next decoded frame: its presentation time; where that is
    /// missing, its decoding time; where that is missing too, the end of the frame before.
    std::int64_t timestampOf(const AVFrame& frame);

    /// How long a frame is shown that says nothing about it itself: by the average frame rate.
    /// Above 0.
    std::int64_t ordinaryDistance() const { return ordinaryDistance_; }

    /// Returns the position of `timestamp` when `origin` is at 0, rounded to the nearest tick;
    /// none when it is beyond maxDurationTicks before or after.
    std::optional<std::int64_t> positionOf(std::int64_t timestamp, std::int64_t origin) const;

private:
    AVRational timeBase_;
    std::int64_t ordinaryDistance_;
    std::int64_t next_ = 0;
};

/// Finds where the last of many frames, which come in any order, ends.
class LastFrame {
public:
    /// Takes a frame's timestamp and how long it is shown; 0 where it is unknown.
    void add(std::int64_t timestamp, std::int64_t duration);

    /// Returns the last frame's timestamp; 0 where there is no frame.
    std::int64_t timestamp() const { return last_.value_or(0); }

    /// Returns the end of the last frame: after its own duration, otherwise after the distance to
    /// the frame before it, otherwise after `ordinaryDistance`. None when there is no frame or no
    /// such number.
    ///
    /// Its own duration is not believed where the frames before it claim, taken together, about
    /// half of the time that they were really shown: then the container counts fields.
    std::optional<std::int64_t> end(std::int64_t ordinaryDistance) const;

private:
    bool countsFields() const;

    std::optional<std::int64_t> last_;
    std::optional<std::int64_t> before_;
    std::int64_t duration_ = 0;
    /// The first frame's timestamp, and all durations together. No more than their proportion is
    /// asked for, which may be rounded but must not overflow.
    double first_ = 0;
    double claimed_ = 0;
};

}  // namespace reference_host::media
