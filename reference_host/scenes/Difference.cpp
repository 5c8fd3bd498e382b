#include "reference_host/scenes/Difference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <tuple>

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

/// Columns of one plane as wide as a block, copied so that their rows follow each other without a
/// gap: compilers then sum up the differences of a block sixteen at a time, which takes a fifth of
/// the time that they need where the rows are apart.
class Strip {
public:
    Strip(const Thumbnail::Plane& plane, std::size_t x0) {
        for (std::size_t y = 0; y < thumbnailHeightPx; ++y)
            std::copy_n(plane.data() + y * thumbnailWidthPx + x0, blockWidthPx,
                        values_.data() + y * blockWidthPx);
    }

    /// Returns the block whose upper edge is at `y0`.
    const std::uint8_t* blockAt(std::size_t y0) const { return values_.data() + y0 * blockWidthPx; }

private:
    std::array<std::uint8_t, thumbnailHeightPx * blockWidthPx> values_;
};

int blockDifference(const std::uint8_t* a, const std::uint8_t* b) {
    int sum = 0;
    for (std::size_t i = 0; i < blockPixels; ++i)
        sum += std::abs(a[i] - b[i]);
    return sum;
}

/// A place that fits a block.
struct Place {
    int difference = std::numeric_limits<int>::max();
    std::size_t x = 0;
    std::size_t y = 0;

    /// Of places that fit equally well, the first in order of rows counts.
    bool isBetterThan(const Place& other) const {
        return std::tie(difference, y, x) < std::tie(other.difference, other.y, other.x);
    }
};

constexpr std::size_t blockRows = thumbnailHeightPx / blockHeightPx;

/// Returns the differences of the blocks of `after` from `x0` on, from the upper to the lower one,
/// to the places near them in `before` where their brightness fits best.
std::array<int, blockRows> bestDifferences(const Thumbnail& before, const Thumbnail& after,
                                           std::size_t x0) {
    const Strip blocks(after.luma, x0);
    std::array<Place, blockRows> best;
    const std::size_t lastX = std::min(x0 + reachXPx, thumbnailWidthPx - blockWidthPx);
    for (std::size_t x = x0 - std::min(x0, reachXPx); x <= lastX; ++x) {
        const Strip places(before.luma, x);
        for (std::size_t i = 0; i < blockRows; ++i) {
            const std::size_t y0 = i * blockHeightPx;
            const std::size_t lastY = std::min(y0 + reachYPx, thumbnailHeightPx - blockHeightPx);
            for (std::size_t y = y0 - std::min(y0, reachYPx); y <= lastY; ++y) {
                const Place place{blockDifference(blocks.blockAt(y0), places.blockAt(y)), x, y};
                if (place.isBetterThan(best[i])) best[i] = place;
            }
        }
    }

    std::array<int, blockRows> differences;
    const Strip blocksU(after.u, x0);
    const Strip blocksV(after.v, x0);
    for (std::size_t i = 0; i < blockRows; ++i) {
        const Place& place = best[i];
        const std::size_t y0 = i * blockHeightPx;
        differences[i] =
            place.difference +
            blockDifference(blocksU.blockAt(y0), Strip(before.u, place.x).blockAt(place.y)) +
            blockDifference(blocksV.blockAt(y0), Strip(before.v, place.x).blockAt(place.y));
    }
    return differences;
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
    for (std::size_t x = 0; x < thumbnailWidthPx; x += blockWidthPx) {
        const auto there = bestDifferences(before, after, x);
        const auto back = bestDifferences(after, before, x);
        for (std::size_t i = 0; i < blockRows; ++i) {
            const std::size_t y = i * blockHeightPx;
            if (isBlack(before, x, y) && isBlack(after, x, y)) continue;
            differences[count++] = std::min(there[i], back[i]);
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
