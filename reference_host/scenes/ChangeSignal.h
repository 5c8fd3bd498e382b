#pragma once

#include <cstddef>

#include "reference_host/scenes/ThumbnailWindow.h"

namespace reference_host::scenes {

/// How many pictures before and after one are looked at for its lasting change: a long flash at 120
/// pictures a second.
constexpr std::size_t lastingReach = 24;

/// Returns how much the picture `number` differs from the one before it, beyond motion. 0 for the
/// first of the window.
float changeAt(const ThumbnailWindow& window, std::size_t number);

/// Returns how much of `change`, which changeAt gave for the same picture, lasts.
///
/// A flash comes and goes: the picture before it is seen again after it. So the smallest difference
/// counts between the picture before and any of those within a flash's length from `number` on, and
/// between any of those within a flash's length before and the picture `number` itself.
float lastingChangeAt(const ThumbnailWindow& window, std::size_t number, float change);

}  // namespace reference_host::scenes
