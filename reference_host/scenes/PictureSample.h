#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace reference_host::scenes {

/// The size to which the brightness of every picture is scaled: enough to tell a sharp picture from
/// a blurred one, and a multiple of the size that scenes are found on.
constexpr std::size_t lumaWidthPx = 192;
constexpr std::size_t lumaHeightPx = 108;

/// The size to which the colour of every picture is scaled.
constexpr std::size_t chromaWidthPx = 48;
constexpr std::size_t chromaHeightPx = 27;

/// One picture of the footage, small: the whole picture scaled to a fixed size, whatever its aspect
/// ratio, each sample the average of what it covers; rows from top to bottom, without padding.
struct PictureSample {
    /// Where the picture begins to be shown: ticks from the first picture of the footage.
    std::int64_t positionTicks;
    /// Brightness, 0 black to 255 white (full range).
    std::array<std::uint8_t, lumaWidthPx * lumaHeightPx> luma;
    /// Colour differences, full range, 128 without colour.
    std::array<std::uint8_t, chromaWidthPx * chromaHeightPx> u;
    std::array<std::uint8_t, chromaWidthPx * chromaHeightPx> v;
};

}  // namespace reference_host::scenes
