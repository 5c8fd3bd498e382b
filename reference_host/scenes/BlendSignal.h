#pragma once

#include <cstddef>

#include "reference_host/scenes/FrameSignal.h"
#include "reference_host/scenes/ThumbnailWindow.h"

namespace reference_host::scenes {

/// How many pictures before and after one are looked at for a dissolve: the longest half length,
/// and as much beside it.
constexpr std::size_t blendReach = 64;

/// Returns the strongest dissolve that has the picture `number` in its middle.
///
/// For each of some half lengths, the pictures so far before and after are taken as its ends. In a
/// dissolve those between are a mix of the two that goes steadily from one to the other, and the
/// two differ by more than motion or light.
Blend blendAt(const ThumbnailWindow& window, std::size_t number);

}  // namespace reference_host::scenes
