#include <gtest/gtest.h>

#include "host/results.h"
#include "reference_host/vision/FaceBoxes.h"

namespace reference_host::vision {
namespace {

void expectRect(const KOR::KorRect& rect, double x, double y, double width, double height) {
    EXPECT_EQ(rect.x, x);
    EXPECT_EQ(rect.y, y);
    EXPECT_EQ(rect.width, width);
    EXPECT_EQ(rect.height, height);
}

TEST(FaceBoxes, OverlapIsTheSharedPart) {
    EXPECT_EQ(overlap({0, 0, 10, 10}, {0, 0, 10, 10}), 1);
    EXPECT_EQ(overlap({0, 0, 10, 10}, {0, 5, 10, 10}), 50.0 / 150);
    EXPECT_EQ(overlap({0, 0, 10, 10}, {2, 2, 5, 5}), 0.25);
}

TEST(FaceBoxes, BoxesThatOnlyTouchOverlapNot) {
    EXPECT_EQ(overlap({0, 0, 10, 10}, {10, 0, 10, 10}), 0);
    EXPECT_EQ(overlap({0, 0, 10, 10}, {50, 50, 10, 10}), 0);
}

TEST(FaceBoxes, OverlappingFindsLeaveTheSurest) {
    const auto faces = withoutDuplicates(
        {{{10, 10, 40, 40}, 0.5}, {{14, 12, 40, 40}, 1.5}, {{12, 12, 44, 44}, 1.0}});
    ASSERT_EQ(faces.size(), 1U);
    EXPECT_EQ(faces[0].score, 1.5);
    EXPECT_EQ(faces[0].box.x, 14);
}

TEST(FaceBoxes, NeighboursCheekToCheekStayTwo) {
    const auto faces = withoutDuplicates({{{0, 0, 40, 40}, 1}, {{24, 0, 40, 40}, 2}});
    ASSERT_EQ(faces.size(), 2U);
    EXPECT_EQ(faces[0].score, 2);
}

TEST(FaceBoxes, RectanglesAreFractionsOfEachSide) {
    const auto rects = faceRects({{{160, 90, 80, 90}, 1}}, 640, 360);
    ASSERT_EQ(rects.size(), 1U);
    expectRect(rects[0], 0.25, 0.25, 0.125, 0.25);
}

TEST(FaceBoxes, BoxesAreClippedToThePicture) {
    const auto rects = faceRects({{{-20, -10, 60, 50}, 1}, {{80, 60, 100, 100}, 1}}, 100, 80);
    ASSERT_EQ(rects.size(), 2U);
    expectRect(rects[0], 0, 0, 0.4, 0.5);
    expectRect(rects[1], 0.8, 0.75, 0.2, 0.25);
}

TEST(FaceBoxes, BoxesOutsideAreLeftOut) {
    EXPECT_TRUE(faceRects({{{-50, 0, 50, 50}, 1}, {{0, 80, 50, 50}, 1}}, 100, 80).empty());
}

TEST(FaceBoxes, LargestComeFirstWhateverTheirScore) {
    const auto rects =
        faceRects({{{0, 0, 10, 10}, 3}, {{50, 50, 30, 30}, 1}, {{20, 20, 20, 20}, 2}}, 100, 100);
    ASSERT_EQ(rects.size(), 3U);
    EXPECT_EQ(rects[0].width, 0.3);
    EXPECT_EQ(rects[1].width, 0.2);
    EXPECT_EQ(rects[2].width, 0.1);
}

TEST(FaceBoxes, SizeIsWhatThePictureShows) {
    const auto rects = faceRects({{{-30, 0, 40, 40}, 1}, {{50, 50, 25, 25}, 1}}, 100, 100);
    ASSERT_EQ(rects.size(), 2U);
    EXPECT_EQ(rects[0].width, 0.25);
}

TEST(FaceBoxes, TwentyLargestAreKept) {
    std::vector<Find> finds;
    for (int size = 1; size <= 25; ++size)
        finds.push_back({{static_cast<double>(size * 30), 0, static_cast<double>(size), 10}, 1});
    const auto rects = faceRects(finds, 1000, 10);
    ASSERT_EQ(rects.size(), static_cast<std::size_t>(KOR::maxFacesPerFrame));
    EXPECT_EQ(rects.front().width, 0.025);
    EXPECT_EQ(rects.back().width, 0.006);
}

}  // namespace
}  // namespace reference_host::vision
