#include "reference_host/scenes/Difference.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace reference_host::scenes {
namespace {

/// A ninth of the picture: large enough not to find itself by chance in another scene, small enough
/// that a zoom is nearly a shift inside it. Sixteen bytes are also what compilers vectorise best.
constexpr std::size_t blockWidthPx = 16;
constexpr std::size_t blockHeightPx = 9;
static_assert(thumbnailWidthPx % blockWidthPx == 0 && thumbnailHeightPx % blockHeightPx == 0);

/// An eighth of the picture's width from one picture to the next: a pan over a whole picture in a
/// third of a second.
constexpr std::size_t reachXPx = 6;
constexpr std::size_t reachYPx = 4;

/// Exposure changes by no more than this between two pictures of one scene; beyond it a plain
/// picture would be stretched into whatever it is compared with.
constexpr float largestGain = 2.0F;

int blockDifference(const Thumbnail::Plane& a, std::size_t offsetA, const Thumbnail::Plane& b,
                    std::size_t offsetB) {
    int sum = 0;
    for (std::size_t y = 0; y < blockHeightPx; ++y) {
        const std::uint8_t* rowA = a.data() + offsetA + y * thumbnailWidthPx;
        const std::uint8_t* rowB = b.data() + offsetB + y * thumbnailWidthPx;
        for (std::size_t x = 0; x < blockWidthPx; ++x)
            sum += std::abs(rowA[x] - rowB[x]);
    }
    return sum;
}

int bestBlockDifference(const Thumbnail& before, const Thumbnail& after, std::size_t x0,
                        std::size_t y0) {
    const std::size_t offset = y0 * thumbnailWidthPx + x0;
    const std::size_t x1 = std::min(x0 + reachXPx, thumbnailWidthPx - blockWidthPx);
    const std::size_t y1 = std::min(y0 + reachYPx, thumbnailHeightPx - blockHeightPx);
    int best = std::numeric_limits<int>::max();
    std::size_t bestOffset = offset;
    for (std::size_t y = y0 - std::min(y0, reachYPx); y <= y1; ++y) {
        for (std::size_t x = x0 - std::min(x0, reachXPx); x <= x1; ++x) {
            const std::size_t candidate = y * thumbnailWidthPx + x;
            const int difference = blockDifference(after.luma, offset, before.luma, candidate);
            if (difference < best) {
                best = difference;
                bestOffset = candidate;
            }
        }
    }
    return best + blockDifference(after.u, offset, before.u, bestOffset) +
           blockDifference(after.v, offset, before.v, bestOffset);
}

int toneDifference(const Thumbnail::Plane& a, const Thumbnail::Plane& b) {
    int sum = 0;
    for (std::size_t i = 0; i < thumbnailPixels; ++i)
        sum += std::abs(a[i] - b[i]);
    return sum;
}

struct Sums {
    std::int32_t middleByEnd = 0;
    std::int32_t middleSquared = 0;
    std::int32_t endSquared = 0;

    void add(const Thumbnail::Plane& begin, const Thumbnail::Plane& middle,
             const Thumbnail::Plane& end) {
        for (std::size_t i = 0; i < thumbnailPixels; ++i) {
            const std::int32_t m = middle[i] - begin[i];
            const std::int32_t e = end[i] - begin[i];
            middleByEnd += m * e;
            middleSquared += m * m;
            endSquared += e * e;
        }
    }
};

}  // namespace

float movedDifference(const Thumbnail& before, const Thumbnail& after) {
    int sum = toneDifference(before.lumaTones, after.lumaTones) +
              toneDifference(before.uTones, after.uTones) +
              toneDifference(before.vTones, after.vTones);
    for (std::size_t y = 0; y < thumbnailHeightPx; y += blockHeightPx) {
        for (std::size_t x = 0; x < thumbnailWidthPx; x += blockWidthPx) {
            sum += bestBlockDifference(before, after, x, y);
        }
    }
    return static_cast<float>(sum) / static_cast<float>(thumbnailPixels);
}

Thumbnail inLightOf(const Thumbnail& model, const Thumbnail& picture) {
    const float contrast = std::max(contrastOf(picture), 1.0F);
    const float gain = std::clamp(contrastOf(model) / contrast, 1.0F / largestGain, largestGain);
    const float offset = brightnessOf(model) - gain * brightnessOf(picture) + 0.5F;
    const auto light = [&](Thumbnail::Plane& plane) {
        for (std::uint8_t& value : plane) {
            const float lit = gain * static_cast<float>(value) + offset;
            value = static_cast<std::uint8_t>(std::clamp(lit, 0.0F, 255.0F));
        }
    };
    Thumbnail result = picture;
    light(result.luma);
    light(result.lumaTones);
    return result;
}

Mixture mixtureOf(const Thumbnail& begin, const Thumbnail& middle, const Thumbnail& end) {
    Sums sums;
    sums.add(begin.luma, middle.luma, end.luma);
    sums.add(begin.u, middle.u, end.u);
    sums.add(begin.v, middle.v, end.v);
    if (sums.endSquared == 0) return {};
    const double distance = sums.endSquared;
    const double share = sums.middleByEnd / distance;
    const double residual = std::max(0.0, sums.middleSquared / distance - share * share);
    return {static_cast<float>(share), static_cast<float>(std::sqrt(residual))};
}

}  // namespace reference_host::scenes
