#include "reference_host/scenes/ChangeSignal.h"

#include <algorithm>

#include "reference_host/scenes/FrameSignal.h"

namespace reference_host::scenes {
namespace {

/// A photographer's flash, a muzzle fire or a lightning lights up the picture for up to a fifth of
/// a second; anything that stays longer is a shot of its own.
constexpr std::int64_t longestFlashTicks = ticksPerSecond / 5;

/// Pictures closer than this are as good as the same; 30 a second are all looked at, however their
/// positions are rounded.
constexpr std::int64_t comparedStepTicks = ticksPerSecond / 33;

/// Less is no candidate for a cut whatever comes after it, and need not be looked into.
constexpr float smallestChange = 1.0F;

}  // namespace

Change changeAt(const ThumbnailWindow& window, std::size_t number, PairDifferences& pairs) {
    if (number == window.begin()) return {};
    const WindowPicture& before = window[number - 1];
    const WindowPicture& here = window[number];
    const Difference difference = pairs.between(window, number - 1, number);
    float lasting = difference.widespread;
    if (lasting < smallestChange) return {difference.overall, lasting};

    std::int64_t compared = here.positionTicks;
    const std::size_t last = std::min(window.end() - 1, number + lastingReach);
    for (std::size_t i = number + 1; i <= last; ++i) {
        const std::int64_t afterwards = window[i].positionTicks;
        if (afterwards - here.positionTicks > longestFlashTicks) break;
        if (afterwards - compared < comparedStepTicks) continue;
        compared = afterwards;
        lasting = std::min(lasting, pairs.between(window, number - 1, i).widespread);
    }

    compared = before.positionTicks;
    const std::size_t first = number - 1 - std::min(number - 1 - window.begin(), lastingReach);
    for (std::size_t i = number - 1; i-- > first;) {
        if (here.positionTicks - window[i + 1].positionTicks > longestFlashTicks) break;
        if (compared - window[i].positionTicks < comparedStepTicks) continue;
        compared = window[i].positionTicks;
        lasting = std::min(lasting, pairs.between(window, i, number).widespread);
    }
    return {difference.overall, lasting};
}

Change changeAt(const ThumbnailWindow& window, std::size_t number) {
    PairDifferences pairs(1);
    return changeAt(window, number, pairs);
}

}  // namespace reference_host::scenes
