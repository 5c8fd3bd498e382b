#pragma once

#include <cstdint>
#include <vector>

#include "host/tasks.h"

namespace reference_host::scenes {

/// What stays known of one picture after it has been analysed.
struct FrameRecord {
    /// Where it begins to be shown: ticks from the first picture.
    std::int64_t positionTicks = 0;
    /// How much fine detail it shows: comparable between pictures of one scene; 0 for a plain one.
    float sharpness = 0;
    /// How much it differs from the picture before, 0 to 255; 0 for the first.
    float change = 0;
    /// It belongs to a dissolve or fade, and so shows no scene purely.
    bool inTransition = false;
    /// It was kept, so that it costs little to look at it.
    bool isKept = false;
    /// How many frames the footage has before it, also those that were left out.
    std::uint32_t number = 0;
};

/// What scene analysis has learnt about one video: a small record for each picture, and the scenes.
struct FootageRecord {
    /// In strictly ascending position and number.
    std::vector<FrameRecord> frames;
    /// They tile the footage: the first begins at 0, each begins where the one before ends, the
    /// last ends at the duration. Empty when the duration is not above 0.
    std::vector<KOR::TickRange> scenes;
    /// Ticks; not below 0.
    std::int64_t durationTicks = 0;
};

}  // namespace reference_host::scenes
