#include "modules/BusinessLayer/MaterialAnalysis/SceneMeasures.h"

namespace KOR {

namespace {

/// What the duration score weighs in the sum of a keyframe's scores.
constexpr double weight = 0.3;

/// Returns end - begin. Bounds come from outside: where the difference leaves the 64 bits it wraps.
std::int64_t lengthOf(const ScenceRange& scene) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(scene.end) -
                                     static_cast<std::uint64_t>(scene.begin));
}

std::int64_t lengthWithBothEnds(const ScenceRange& scene) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(lengthOf(scene)) + 1);
}

}  // namespace

bool lastsAtLeast(const ScenceRange& scene, std::int64_t minSeconds) {
    return lengthOf(scene) / ticksPerSecond >= minSeconds;
}

Place placeOf(std::int64_t position, const ScenceRange& scene) {
    if (position < scene.begin) return Place::before;
    return position >= scene.end ? Place::behind : Place::inside;
}

double durationScore(const ScenceRange& scene, std::int64_t materialDuration) {
    const auto length = static_cast<double>(lengthWithBothEnds(scene));
    return length * weight / static_cast<double>(materialDuration);
}

}  // namespace KOR
