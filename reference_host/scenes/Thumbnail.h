#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "reference_host/scenes/PictureSample.h"

namespace reference_host::scenes {

constexpr std::size_t thumbnailWidthPx = chromaWidthPx;
constexpr std::size_t thumbnailHeightPx = chromaHeightPx;
constexpr std::size_t thumbnailPixels = thumbnailWidthPx * thumbnailHeightPx;

/// A picture so small that grain, compression and fine motion are averaged away, and that whole
/// seconds of footage fit into a fixed window; brightness and colour at the same size.
struct Thumbnail {
    using Plane = std::array<std::uint8_t, thumbnailPixels>;

    Plane luma;
    Plane u;
    Plane v;
    /// The same values in ascending order: which tones the picture has, wherever they are.
    Plane lumaTones;
    Plane uTones;
    Plane vTones;
};

/// Averages the picture's brightness down to the size of its colour.
Thumbnail thumbnailOf(const PictureSample& picture);

/// Returns a mix of two pictures: `begin` for the share 0, `end` for 1.
Thumbnail mixOf(const Thumbnail& begin, const Thumbnail& end, double share);

/// Returns the mean brightness, 0 to 255.
float brightnessOf(const Thumbnail& thumbnail);

/// Returns the standard deviation of the brightness, 0 (plain) to 127.5.
float contrastOf(const Thumbnail& thumbnail);

/// Returns how much fine detail the full sample shows: the root mean square of its Laplacian.
float sharpnessOf(const PictureSample& picture);

}  // namespace reference_host::scenes
