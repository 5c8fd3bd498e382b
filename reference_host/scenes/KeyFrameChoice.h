#pragma once

#include <cstdint>
#include <vector>

#include "host/tasks.h"
#include "reference_host/scenes/FootageRecord.h"

namespace reference_host::scenes {

/// Chooses good frames of each range: sharp, not inside a dissolve or fade, spread out in time, and
/// clear of the range's ends.
///
/// `ranges` may be anything: empty, reversed or beyond the footage (those get nothing), overlapping
/// or in any order. Each range that holds a frame gets at least one, even where the margins or
/// dissolves leave no good one. Values of `parameters` below the smallest allowed count as it.
/// Returns positions of frames of `footage`, each inside one of the ranges (begin included, end
/// not), in ascending order without duplicates. Any thread.
std::vector<std::int64_t> chooseKeyFrames(const FootageRecord& footage,
                                          const std::vector<KOR::TickRange>& ranges,
                                          const KOR::KeyFrameParameters& parameters);

}  // namespace reference_host::scenes
