#pragma once

#include <cstdint>

#include "modules/BusinessLayer/MaterialAnalysis/Records.h"

namespace KOR {

/// Says whether a scene lasts at least `minSeconds`, its length counted in whole seconds (towards
/// zero). Works for reversed scenes and for bounds at the ends of the range, too.
bool lastsAtLeast(const ScenceRange& scene, std::int64_t minSeconds);

/// Where a keyframe lies as seen from a scene.
enum class Place { before, inside, behind };

Place placeOf(std::int64_t position, const ScenceRange& scene);

/// Returns the duration score that every keyframe of `scene` gets: 0.3 for the whole of a material
/// of `materialDuration` ticks, less in proportion. The scene's length counts both its ends, so the
/// whole gives a little over 0.3.
double durationScore(const ScenceRange& scene, std::int64_t materialDuration);

}  // namespace KOR
