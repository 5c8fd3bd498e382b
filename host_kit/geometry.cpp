#include "host/geometry.h"

namespace KOR {

double width(const KorRect& rect) {
    return rect.width;
}

double height(const KorRect& rect) {
    return rect.height;
}

KorPoint centerPoint(const KorRect& rect) {
    return {rect.x + rect.width / 2, rect.y + rect.height / 2};
}

std::int32_t pointInRect(const KorPoint& point, const KorRect& rect) {
    const bool inside = rect.x <= point.x && point.x <= rect.x + rect.width && rect.y <= point.y &&
                        point.y <= rect.y + rect.height;
    return inside ? 1 : 0;
}

}  // namespace KOR
