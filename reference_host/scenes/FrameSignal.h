#pragma once

#include <cstddef>
#include <cstdint>

namespace reference_host::scenes {

constexpr std::int64_t ticksPerSecond = 10'000'000;

/// How much the pictures around one picture look like a dissolve with this one in its middle.
struct Blend {
    /// 0 for not at all; otherwise the distance of the two ends, less the worse they explain what
    /// is between them.
    float strength = 0;
    /// The last picture of the old scene and the first of the new one, as counts of frames from
    /// this one.
    std::uint32_t framesBefore = 0;
    std::uint32_t framesAfter = 0;
    /// How many steps it takes from the one to the other at the rate at which blends are looked
    /// for.
    std::uint32_t steps = 0;
};

/// What the decisions know of one picture.
struct FrameSignal {
    std::int64_t positionTicks = 0;
    /// How many pictures the footage has before it, also those that were left out.
    std::uint32_t number = 0;
    float sharpness = 0;
    /// Standard deviation of the brightness.
    float contrast = 0;
    /// Difference to the picture before that motion does not explain.
    float change = 0;
    /// The same, as far as it lasts: what remains of it when the pictures shortly before are
    /// compared with those shortly after.
    float lastingChange = 0;
    /// What is before the picture was left out, so that nothing is known of its change.
    bool isChangeUnknown = false;
    Blend blend;
};

}  // namespace reference_host::scenes
