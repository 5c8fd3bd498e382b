#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace reference_host::vision {

/// The longer side of the pictures that are looked at: larger ones are scaled down to it.
constexpr int maxPictureSidePx = 640;

/// How many pixels of a picture have each brightness, 0 black to 255 white (full range), counted on
/// the picture as it was decoded, before any scaling.
using LumaHistogram = std::array<std::int64_t, 256>;

/// One picture as it is looked at by itself: upright, as a player would show it, with square
/// pixels, and no larger than maxPictureSidePx.
struct Picture {
    int widthPx = 0;
    int heightPx = 0;
    /// Rows from top to bottom, without padding: blue, green, red, 8 bits each, full range.
    std::vector<std::uint8_t> bgr;
    LumaHistogram luma{};
};

}  // namespace reference_host::vision
