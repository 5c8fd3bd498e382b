#include "reference_host/scenes/Thumbnail.h"

#include <algorithm>
#include <cmath>

namespace reference_host::scenes {
namespace {

/// Sorts by counting, which for bytes is far faster than comparing.
Thumbnail::Plane sorted(const Thumbnail::Plane& plane) {
    std::array<std::uint16_t, 256> counts{};
    for (const std::uint8_t value : plane)
        ++counts[value];
    Thumbnail::Plane result;
    auto out = result.begin();
    for (std::size_t value = 0; value < counts.size(); ++value) {
        out = std::fill_n(out, counts[value], static_cast<std::uint8_t>(value));
    }
    return result;
}

Thumbnail::Plane mixOf(const Thumbnail::Plane& begin, const Thumbnail::Plane& end, double share) {
    Thumbnail::Plane mix;
    std::transform(begin.begin(), begin.end(), end.begin(), mix.begin(),
                   [share](std::uint8_t a, std::uint8_t b) {
                       return static_cast<std::uint8_t>(std::lround(a + share * (b - a)));
                   });
    return mix;
}

void setTones(Thumbnail& thumbnail) {
    thumbnail.lumaTones = sorted(thumbnail.luma);
    thumbnail.uTones = sorted(thumbnail.u);
    thumbnail.vTones = sorted(thumbnail.v);
}

}  // namespace

Thumbnail thumbnailOf(const PictureSample& picture) {
    constexpr std::size_t factor = lumaWidthPx / thumbnailWidthPx;
    static_assert(factor * thumbnailWidthPx == lumaWidthPx);
    static_assert(factor * thumbnailHeightPx == lumaHeightPx);

    Thumbnail thumbnail;
    for (std::size_t y = 0; y < thumbnailHeightPx; ++y) {
        std::array<std::uint16_t, lumaWidthPx> columns{};
        for (std::size_t row = y * factor; row < (y + 1) * factor; ++row) {
            for (std::size_t x = 0; x < lumaWidthPx; ++x) {
                columns[x] =
                    static_cast<std::uint16_t>(columns[x] + picture.luma[row * lumaWidthPx + x]);
            }
        }
        for (std::size_t x = 0; x < thumbnailWidthPx; ++x) {
            unsigned sum = factor * factor / 2;
            for (std::size_t i = 0; i < factor; ++i)
                sum += columns[x * factor + i];
            thumbnail.luma[y * thumbnailWidthPx + x] =
                static_cast<std::uint8_t>(sum / (factor * factor));
        }
    }
    thumbnail.u = picture.u;
    thumbnail.v = picture.v;
    setTones(thumbnail);
    return thumbnail;
}

Thumbnail mixOf(const Thumbnail& begin, const Thumbnail& end, double share) {
    Thumbnail mix;
    mix.luma = mixOf(begin.luma, end.luma, share);
    mix.u = mixOf(begin.u, end.u, share);
    mix.v = mixOf(begin.v, end.v, share);
    setTones(mix);
    return mix;
}

float brightnessOf(const Thumbnail& thumbnail) {
    std::int32_t sum = 0;
    for (const std::int32_t value : thumbnail.luma)
        sum += value;
    return static_cast<float>(sum) / static_cast<float>(thumbnailPixels);
}

float contrastOf(const Thumbnail& thumbnail) {
    std::int32_t sum = 0;
    std::int32_t sumOfSquares = 0;
    for (const std::int32_t value : thumbnail.luma) {
        sum += value;
        sumOfSquares += value * value;
    }
    constexpr double count = thumbnailPixels;
    const double mean = sum / count;
    return static_cast<float>(std::sqrt(std::max(0.0, sumOfSquares / count - mean * mean)));
}

float sharpnessOf(const PictureSample& picture) {
    std::int64_t sumOfSquares = 0;
    for (std::size_t y = 1; y + 1 < lumaHeightPx; ++y) {
        const std::uint8_t* row = picture.luma.data() + y * lumaWidthPx;
        const std::uint8_t* above = row - lumaWidthPx;
        const std::uint8_t* below = row + lumaWidthPx;
        std::int32_t rowSum = 0;
        for (std::size_t x = 1; x + 1 < lumaWidthPx; ++x) {
            const std::int32_t laplacian =
                4 * row[x] - row[x - 1] - row[x + 1] - above[x] - below[x];
            rowSum += laplacian * laplacian;
        }
        sumOfSquares += rowSum;
    }
    constexpr double count = (lumaWidthPx - 2) * (lumaHeightPx - 2);
    return static_cast<float>(std::sqrt(static_cast<double>(sumOfSquares) / count));
}

}  // namespace reference_host::scenes
