#include <limits>

#include <gtest/gtest.h>

#include "host/geometry.h"

namespace {

constexpr KOR::KorRect rect{0.25, 0.5, 0.5, 0.25};

TEST(Geometry, MeasuresARectangle) {
    EXPECT_EQ(KOR::width(rect), 0.5);
    EXPECT_EQ(KOR::height(rect), 0.25);
    EXPECT_EQ(KOR::centerPoint(rect).x, 0.5);
    EXPECT_EQ(KOR::centerPoint(rect).y, 0.625);
}

TEST(Geometry, PointsOnEveryEdgeAreInside) {
    EXPECT_EQ(KOR::pointInRect({0.25, 0.6}, rect), 1);
    EXPECT_EQ(KOR::pointInRect({0.75, 0.6}, rect), 1);
    EXPECT_EQ(KOR::pointInRect({0.5, 0.5}, rect), 1);
    EXPECT_EQ(KOR::pointInRect({0.5, 0.75}, rect), 1);
}

TEST(Geometry, PointsBeyondAnyEdgeAreOutside) {
    EXPECT_EQ(KOR::pointInRect({0.24, 0.6}, rect), 0);
    EXPECT_EQ(KOR::pointInRect({0.76, 0.6}, rect), 0);
    EXPECT_EQ(KOR::pointInRect({0.5, 0.49}, rect), 0);
    EXPECT_EQ(KOR::pointInRect({0.5, 0.76}, rect), 0);
}

TEST(Geometry, NotANumberIsNeverInside) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(KOR::pointInRect({nan, 0.6}, rect), 0);
    EXPECT_EQ(KOR::pointInRect({0.5, nan}, rect), 0);
    EXPECT_EQ(KOR::pointInRect({0.5, 0.6}, {nan, 0.5, 0.5, 0.25}), 0);
}

}  // namespace
