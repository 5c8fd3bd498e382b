#include "reference_host/scenes/BlendSignal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>

#include "reference_host/scenes/Difference.h"

namespace reference_host::scenes {
namespace {

/// Half lengths that are tried, in pictures: each about a fourth longer than the one before, so
/// that one of them is near enough to any.
constexpr std::array<std::size_t, 12> halfLengths = {3, 4, 5, 6, 8, 10, 12, 15, 18, 22, 27, 32};
static_assert(2 * halfLengths.back() == blendReach);

/// Longer mixes are not dissolves but changes of weather. The longest of 24 pictures a second that
/// has as many as are tried; so where pictures are rare, nothing longer is.
constexpr std::int64_t longestBlendTicks = ticksPerSecond * 9 / 4;

/// A mix that leaves this much unexplained is none; see Mixture::residual. Movement in the two
/// scenes costs up to 0.3.
constexpr float largestResidual = 0.5F;

/// The share may be off a steady course by so much: eased dissolves are off by 0.1, a cut by 0.25
/// at least.
constexpr float largestDeviation = 0.25F;

/// Where the pictures beside change at this part of the pace inside, the blend is but a piece of a
/// longer steady change, such as colours that drift.
constexpr float largestPaceBeside = 0.75F;

/// How much the louder side beside a blend counts: enough to tell the first or last piece of a zoom
/// from a dissolve, and not enough to lose one that follows a cut.
constexpr float weightOfLouderSide = 0.4F;

/// Motion explains more than half of the difference only between pictures of one scene; a slow pan
/// by a pixel or two is a steady mix of its ends, too.
constexpr float leastUnexplained = 0.5F;

/// Across a longer step than this part of its length, a blend is a guess: pictures are missing
/// there, and one step may well be a cut.
constexpr std::int64_t leastStepsOfBlend = 4;

/// Positions are rounded by less than this.
constexpr std::int64_t roundingTicks = ticksPerSecond / 100;

/// Weaker blends are none, at whatever threshold: less than coding noise makes.
constexpr float smallestStrength = 2.0F;

/// Returns 1 for a perfect steady mix, 0 for none.
float steadinessOf(const ThumbnailWindow& window, std::size_t first, std::size_t number,
                   std::size_t last) {
    const WindowPicture& begin = window[first];
    const WindowPicture& end = window[last];
    const double length = static_cast<double>(end.positionTicks - begin.positionTicks);
    const std::size_t quarter = (number - first) / 2;
    float residual = 0;
    float deviation = 0;
    for (const std::size_t i : {number, number - quarter, number + quarter}) {
        const Mixture mixture = mixtureOf(begin.thumbnail, window[i].thumbnail, end.thumbnail);
        const double steady =
            static_cast<double>(window[i].positionTicks - begin.positionTicks) / length;
        residual = std::max(residual, mixture.residual);
        deviation = std::max(deviation, std::abs(mixture.share - static_cast<float>(steady)));
        // Most pictures are no mix; the first look tells.
        if (residual >= largestResidual || deviation >= largestDeviation) return 0;
    }
    return (1 - residual / largestResidual) * (1 - deviation / largestDeviation);
}

/// Returns the difference of two pictures of the window that is not confined to one place.
float differenceOf(const ThumbnailWindow& window, std::size_t first, std::size_t last) {
    return differenceBetween(window[first].thumbnail, window[last].thumbnail).widespread;
}

/// Returns what is left of it when both are seen in the same light.
float unlitDifferenceOf(const ThumbnailWindow& window, std::size_t first, std::size_t last) {
    const Thumbnail& begin = window[first].thumbnail;
    return differenceBetween(begin, inLightOf(begin, window[last].thumbnail)).widespread;
}

/// Returns the time from `first` to `last`.
float secondsOf(const ThumbnailWindow& window, std::size_t first, std::size_t last) {
    const std::int64_t ticks = window[last].positionTicks - window[first].positionTicks;
    return static_cast<float>(ticks) / ticksPerSecond;
}

/// Returns the difference for each second from `first` to `last`.
float paceOf(const ThumbnailWindow& window, std::size_t first, std::size_t last) {
    return differenceOf(window, first, last) / secondsOf(window, first, last);
}

/// Returns the first picture of what lasts half as long as the blend and is before it; `first`
/// where the footage begins later.
std::size_t beginBefore(const ThumbnailWindow& window, std::size_t first, std::int64_t half) {
    const std::int64_t latest = window[first].positionTicks - half + roundingTicks;
    for (std::size_t i = first; i > window.begin();) {
        if (window[--i].positionTicks <= latest) return i;
    }
    return first;
}

/// Returns the last picture of what lasts half as long as the blend and is behind it; `last` where
/// the footage ends earlier.
std::size_t endBehind(const ThumbnailWindow& window, std::size_t last, std::int64_t half) {
    const std::int64_t earliest = window[last].positionTicks + half - roundingTicks;
    for (std::size_t i = last + 1; i < window.end(); ++i) {
        if (window[i].positionTicks >= earliest) return i;
    }
    return last;
}

/// Returns 1 where the pictures beside the blend stand still, 0 where they change nearly as fast as
/// those in it. The quieter side counts most, since the other may hold a cut or the second half of
/// a fade. A side cut short by the end of the footage is taken to be like the other.
float quietnessBeside(const ThumbnailWindow& window, std::size_t first, std::size_t last,
                      float paceInside) {
    const std::int64_t half = (window[last].positionTicks - window[first].positionTicks) / 2;
    const std::size_t begin = beginBefore(window, first, half);
    const std::size_t end = endBehind(window, last, half);
    const bool hasBefore = begin < first;
    const bool hasAfter = last < end;
    if (!hasBefore && !hasAfter) return 1;
    const float before = hasBefore ? paceOf(window, begin, first) : 0;
    const float after = hasAfter ? paceOf(window, last, end) : 0;
    const float quieter = hasBefore && hasAfter ? std::min(before, after) : before + after;
    const float louder = std::min(std::max(before, after), paceInside);
    const float beside = std::max(quieter, weightOfLouderSide * louder);
    return std::max(0.0F, 1 - beside / (largestPaceBeside * paceInside));
}

/// Returns the strength of the blend from `first` to `last`, or 0 where it does not exceed `least`.
float strengthOf(const ThumbnailWindow& window, std::size_t first, std::size_t number,
                 std::size_t last, float least) {
    const float steadiness = steadinessOf(window, first, number, last);
    if (steadiness <= 0) return 0;
    float separation = differenceOf(window, first, last);
    if (separation * steadiness <= least) return 0;
    const float unmoved = unmovedDifference(window[first].thumbnail, window[last].thumbnail);
    if (separation < leastUnexplained * unmoved) return 0;
    separation = std::min(separation, unlitDifferenceOf(window, first, last));
    if (separation * steadiness <= least) return 0;
    const float paceInside = separation / secondsOf(window, first, last);
    return separation * steadiness * quietnessBeside(window, first, last, paceInside);
}

}  // namespace

Blend blendAt(const ThumbnailWindow& window, std::size_t number) {
    Blend strongest;
    std::int64_t longestStep = 0;
    std::size_t covered = 0;
    for (const std::size_t half : halfLengths) {
        if (number < window.begin() + half || number + half >= window.end()) break;
        const WindowPicture& begin = window[number - half];
        const WindowPicture& end = window[number + half];
        if (end.positionTicks - begin.positionTicks > longestBlendTicks) break;
        for (; covered < half; ++covered) {
            longestStep = std::max({longestStep, window[number - covered].stepTicks,
                                    window[number + covered + 1].stepTicks});
        }
        if (longestStep * leastStepsOfBlend > end.positionTicks - begin.positionTicks) continue;
        const float least = std::max(strongest.strength, smallestStrength);
        const float strength = strengthOf(window, number - half, number, number + half, least);
        if (strength <= least) continue;
        const std::size_t frame = window[number].frame;
        const std::size_t last = end.frame + end.framesToNext;
        strongest = {strength, static_cast<std::uint32_t>(frame - begin.frame),
                     static_cast<std::uint32_t>(last - frame),
                     static_cast<std::uint32_t>(2 * half)};
    }
    return strongest;
}

}  // namespace reference_host::scenes
