#include "reference_host/scenes/Difference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace reference_host::scenes {
namespace {

/// A ninth of the picture: large enough not to find itself by chance in another scene, small enough
/// that a zoom is nearly a shift inside it. Sixteen bytes are also what compilers vectorise best.
constexpr std::size_t blockWidthPx = 16;
constexpr std::size_t blockHeightPx = 9;
constexpr std::size_t blockPixels = blockWidthPx * blockHeightPx;
static_assert(thumbnailWidthPx % blockWidthPx == 0 && thumbnailHeightPx % blockHeightPx == 0);

/// An eighth of the picture's width from one picture to the next: a pan over a whole picture in a
/// third of a second.
constexpr std::size_t reachXPx = 6;
constexpr std::size_t reachYPx = 4;

/// How many times the middle block's difference one block may count as widespread. In cuts between
/// real scenes the middle block has 0.6 of the mean at least, so that they lose nothing.
constexpr int largestTimesMiddle = 2;

/// Full-range black with the ringing of a coder at the edge of a bar.
constexpr std::uint8_t brightestBlack = 12;

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

/// Returns the difference of a block of `after` to the place near it in `before` that fits best.
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

bool isBlack(const Thumbnail& thumbnail, std::size_t x0, std::size_t y0) {
    std::uint8_t brightest = 0;
    for (std::size_t y = y0; y < y0 + blockHeightPx; ++y) {
        const std::uint8_t* row = thumbnail.luma.data() + y * thumbnailWidthPx + x0;
        for (std::size_t x = 0; x < blockWidthPx; ++x)
            brightest = std::max(brightest, row[x]);
    }
    return brightest <= brightestBlack;
}

/// Compares the shapes of two pictures. Blocks are looked for both ways: what a pan uncovers at one
/// edge of the later picture has no place in the earlier one, but what it has covered there has one
/// in the later. Bars beside an upright video say nothing and are left out.
Difference shapeDifference(const Thumbnail& before, const Thumbnail& after) {
    std::array<int, thumbnailPixels / blockPixels> differences{};
    std::size_t count = 0;
    for (std::size_t y = 0; y < thumbnailHeightPx; y += blockHeightPx) {
        for (std::size_t x = 0; x < thumbnailWidthPx; x += blockWidthPx) {
            if (isBlack(before, x, y) && isBlack(after, x, y)) continue;
            differences[count++] = std::min(bestBlockDifference(before, after, x, y),
                                            bestBlockDifference(after, before, x, y));
        }
    }
    if (count == 0) return {};
    std::sort(differences.begin(), differences.begin() + count);
    const int limit = largestTimesMiddle * differences[count / 2];
    int overall = 0;
    int widespread = 0;
    for (std::size_t i = 0; i < count; ++i) {
        overall += differences[i];
        widespread += std::min(differences[i], limit);
    }
    const float pixels = static_cast<float>(count * blockPixels);
    return {static_cast<float>(overall) / pixels, static_cast<float>(widespread) / pixels};
}

int planeDifference(const Thumbnail::Plane& a, const Thumbnail::Plane& b) {
    int sum = 0;
    for (std::size_t i = 0; i < thumbnailPixels; ++i)
        sum += std::abs(a[i] - b[i]);
    return sum;
}

/// Returns how far the tones of two pictures are apart: what it takes to turn one picture's tones
/// into the other's, for each pixel. No motion inside the picture changes it.
float toneDifference(const Thumbnail& a, const Thumbnail& b) {
    const int sum = planeDifference(a.lumaTones, b.lumaTones) +
                    planeDifference(a.uTones, b.uTones) + planeDifference(a.vTones, b.vTones);
    return static_cast<float>(sum) / static_cast<float>(thumbnailPixels);
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

Difference differenceBetween(const Thumbnail& before, const Thumbnail& after) {
    const Difference shape = shapeDifference(before, after);
    const float tones = toneDifference(before, after);
    return {shape.overall + std::min(shape.overall, tones),
            shape.widespread + std::min(shape.widespread, tones)};
}

float unmovedDifference(const Thumbnail& a, const Thumbnail& b) {
    const int sum =
        planeDifference(a.luma, b.luma) + planeDifference(a.u, b.u) + planeDifference(a.v, b.v);
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
