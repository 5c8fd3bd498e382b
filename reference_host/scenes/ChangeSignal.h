#pragma once

#include <cstddef>

#include "reference_host/scenes/PairDifferences.h"
#include "reference_host/scenes/ThumbnailWindow.h"

namespace reference_host::scenes {

/// How many pictures before and after one are looked at for its lasting change: a long flash at 120
/// pictures a second.
constexpr std::size_t lastingReach = 24;

/// What the pictures around one say about a change at it.
struct Change {
    /// The difference to the picture before.
    float overall = 0;
    /// The part of it that is widespread and lasts.
    float lasting = 0;
};

/// Compares the picture `number` with those around it. The first of the window has no change.
///
/// A flash comes and goes: the picture before it is seen again after it. So the smallest difference
/// counts between the picture before and any of those within a flash's length from `number` on, and
/// between any of those within a flash's length before and the picture `number` itself.
Change changeAt(const ThumbnailWindow& window, std::size_t number);

/// The same, with what is remembered of earlier calls for this window.
Change changeAt(const ThumbnailWindow& window, std::size_t number, PairDifferences& pairs);

}  // namespace reference_host::scenes
