#pragma once

#include <array>
#include <cstdint>

namespace reference_host::media {

/// What has to be done to a stored picture to make it upright: one of the eight ways to mirror and
/// turn a rectangle.
struct Orientation {
    /// First, left and right are swapped,
    bool isMirrored = false;
    /// then the picture is turned clockwise so many times: 0 to 3.
    int quarterTurns = 0;

    bool operator==(const Orientation&) const = default;

    /// Says whether the upright picture is as wide as the stored one is high.
    bool swapsSides() const { return quarterTurns % 2 != 0; }

    /// Returns the meaning of the EXIF tag "Orientation"; upright for all but its values 1 to 8.
    static Orientation ofExif(int value);

    /// Returns what comes nearest to a display matrix, of which the first two numbers are where the
    /// stored picture's step to the right leads, and the fourth and fifth where its step downwards
    /// does (FFmpeg's layout, and that of the MP4 container).
    static Orientation ofDisplayMatrix(const std::array<std::int32_t, 9>& matrix);
};

/// A place in a picture, counted from its top left corner.
struct Place {
    int x;
    int y;
    bool operator==(const Place&) const = default;
};

/// Returns which place of a stored picture of `widthPx` by `heightPx` is seen at `upright`.
Place storedPlace(Place upright, Orientation orientation, int widthPx, int heightPx);

}  // namespace reference_host::media
