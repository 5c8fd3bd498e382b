#include "fake_host/FakeHost.h"
#include "host/geometry.h"

namespace KOR {

double width(const KorRect& rect) {
    const auto& rule = fake_host::host().geometry.width;
    return rule ? rule(rect) : rect.width;
}

double height(const KorRect& rect) {
    const auto& rule = fake_host::host().geometry.height;
    return rule ? rule(rect) : rect.height;
}

KorPoint centerPoint(const KorRect& rect) {
    const auto& rule = fake_host::host().geometry.centerPoint;
    return rule ? rule(rect) : KorPoint{rect.x + rect.width / 2, rect.y + rect.height / 2};
}

std::int32_t pointInRect(const KorPoint& point, const KorRect& rect) {
    const auto& rule = fake_host::host().geometry.pointInRect;
    if (rule) return rule(point, rect);
    const bool across = rect.x <= point.x && point.x <= rect.x + rect.width;
    const bool along = rect.y <= point.y && point.y <= rect.y + rect.height;
    return across && along ? 1 : 0;
}

}  // namespace KOR
