#pragma once

#include <cstdint>

namespace KOR {

/// A point of a picture, in fractions of its width and height, from the upper left corner.
struct KorPoint {
    double x;
    double y;
};

/// A rectangle of a picture, in the same fractions; (x, y) is its upper left corner.
struct KorRect {
    double x;
    double y;
    double width;
    double height;
};

/// Return the side's length. Any thread.
double width(const KorRect& rect);
double height(const KorRect& rect);

/// Returns the centre: (x + width / 2, y + height / 2).
KorPoint centerPoint(const KorRect& rect);

/// Returns 1 when the point lies in the rectangle, else 0. Points on an edge, any of the four,
/// count as inside: x <= px <= x + width and y <= py <= y + height. NaN is never inside.
std::int32_t pointInRect(const KorPoint& point, const KorRect& rect);

}  // namespace KOR
