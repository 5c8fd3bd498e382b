#include <array>
#include <cmath>
#include <limits>

#include "host/geometry.h"
#include "validator/host/exports.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

/// All its edges are exact, so that the next number beyond each is outside.
constexpr KOR::KorRect rect{0.25, 0.5, 0.5, 0.125};
constexpr double right = rect.x + rect.width;
constexpr double bottom = rect.y + rect.height;

void expectInside(const HostLibrary& host, const KOR::KorPoint& point, const KOR::KorRect& of,
                  std::int32_t expected) {
    const auto inside =
        host.service<std::int32_t(const KOR::KorPoint&, const KOR::KorRect&)>(exports::pointInRect);
    expectEqual("pointInRect() of (" + shown(point.x) + ", " + shown(point.y) + ") in {" +
                    shown(of.x) + ", " + shown(of.y) + ", " + shown(of.width) + ", " +
                    shown(of.height) + "}",
                inside(point, of), expected);
}

void sides(HostLibrary& host) {
    const auto width = host.service<double(const KOR::KorRect&)>(exports::width);
    const auto height = host.service<double(const KOR::KorRect&)>(exports::height);
    for (const double length : {0.5, 0.0, 1e-300, -0.25, 0.1}) {
        expectEqual("width()", width({0.7, 0.6, length, 3}), length);
        expectEqual("height()", height({0.7, 0.6, 3, length}), length);
    }
}

void centre(HostLibrary& host) {
    const auto centerPoint = host.service<KOR::KorPoint(const KOR::KorRect&)>(exports::centerPoint);
    for (const KOR::KorRect& of :
         {rect, KOR::KorRect{0.1, 0.2, 0.3, 0.7}, KOR::KorRect{-1, 2, -3, 0}}) {
        const KOR::KorPoint point = centerPoint(of);
        expectEqual("centerPoint().x", point.x, of.x + of.width / 2);
        expectEqual("centerPoint().y", point.y, of.y + of.height / 2);
    }
}

void edges(HostLibrary& host) {
    for (const KOR::KorPoint& point :
         {KOR::KorPoint{rect.x, 0.55}, {right, 0.55}, {0.5, rect.y}, {0.5, bottom}})
        expectInside(host, point, rect, 1);
}

void corners(HostLibrary& host) {
    for (const KOR::KorPoint& point :
         {KOR::KorPoint{rect.x, rect.y}, {right, rect.y}, {rect.x, bottom}, {right, bottom}})
        expectInside(host, point, rect, 1);
}

void beyond(HostLibrary& host) {
    for (const KOR::KorPoint& point : {KOR::KorPoint{std::nextafter(rect.x, -1), 0.55},
                                       {std::nextafter(right, 1), 0.55},
                                       {0.5, std::nextafter(rect.y, -1)},
                                       {0.5, std::nextafter(bottom, 1)},
                                       {-infinity, 0.55},
                                       {0.5, infinity}})
        expectInside(host, point, rect, 0);
}

void sums(HostLibrary& host) {
    // 0.1 + 0.7 is less than 0.8.
    for (const auto& [begin, length] : {std::array{0.1, 0.7}, {0.1, 0.2}, {0.3, 0.6}}) {
        const double end = begin + length;
        expectInside(host, {end, end}, {begin, begin, length, length}, 1);
        expectInside(host, {std::nextafter(end, 2), end}, {begin, begin, length, length}, 0);
        expectInside(host, {end, std::nextafter(end, 2)}, {begin, begin, length, length}, 0);
    }
}

void notNumbers(HostLibrary& host) {
    for (const KOR::KorPoint& point : {KOR::KorPoint{nan, 0.55}, {0.5, nan}, {nan, nan}})
        expectInside(host, point, rect, 0);
    for (const KOR::KorRect& of :
         {KOR::KorRect{nan, 0, 1, 1}, {0, nan, 1, 1}, {0, 0, nan, 1}, {0, 0, 1, nan}})
        expectInside(host, {0.5, 0.5}, of, 0);
}

void noArea(HostLibrary& host) {
    expectInside(host, {0.5, 0.25}, {0.5, 0.25, 0, 0}, 1);
    expectInside(host, {0.5, 0.26}, {0.5, 0.25, 0, 0}, 0);
    expectInside(host, {0.4, 0.4}, {0.5, 0.5, -0.2, -0.2}, 0);
    expectInside(host, {0.5, 0.5}, {0.5, 0.5, -0.2, -0.2}, 0);
}

}  // namespace

const std::vector<HostCheck> geometryChecks = {
    {"geometry.sides", "width and height return a rectangle's sides as they are.", sides},
    {"geometry.centre", "centerPoint returns (x + width / 2, y + height / 2).", centre},
    {"geometry.point-inside", "pointInRect returns 1 for a point within a rectangle.",
     [](HostLibrary& host) {
         expectInside(host, {0.5, 0.55}, rect, 1);
     }},
    {"geometry.edges-are-inside", "A point on an edge, any of the four, is inside.", edges},
    {"geometry.corners-are-inside", "A point on a corner, any of the four, is inside.", corners},
    {"geometry.beyond-is-outside",
     "The smallest step beyond any of the edges is outside, and so is infinity.", beyond},
    {"geometry.edges-are-sums",
     "The far edges are at the sums x + width and y + height as doubles give them.", sums},
    {"geometry.nan-is-never-inside",
     "Neither is a point with NaN in a rectangle, nor any point in a rectangle with NaN.",
     notNumbers},
    {"geometry.rectangles-without-area",
     "A rectangle without sides holds its one point, and one with negative sides holds none.",
     noArea},
};

}  // namespace validator
