#include <gtest/gtest.h>

#include "reference_host/vision/FaceDetector.h"
#include "tests/vision/Drawing.h"

namespace reference_host::vision {
namespace {

class BuiltInDetector : public testing::Test {
protected:
    std::vector<KOR::KorRect> facesIn(const Drawing& drawing) {
        return detector().detect(drawing.picture());
    }

private:
    /// Made once for all tests: loading takes longer than detecting.
    static FaceDetector& detector() {
        static const std::unique_ptr<FaceDetector> made = makeFaceDetector();
        return *made;
    }
};

/// The face is where `drawing` has it, in pixels of its picture.
void expectFaceAt(const KOR::KorRect& rect, const Drawing& drawing, double centreX, double centreY,
                  double sizePx) {
    const Picture& picture = drawing.picture();
    const KOR::KorPoint centre = KOR::centerPoint(rect);
    EXPECT_NEAR(centre.x * picture.widthPx, centreX, sizePx / 4);
    EXPECT_NEAR(centre.y * picture.heightPx, centreY, sizePx / 4);
    EXPECT_NEAR(rect.width * picture.widthPx, sizePx, sizePx / 4);
    EXPECT_NEAR(rect.height * picture.heightPx, sizePx, sizePx / 4);
}

TEST_F(BuiltInDetector, FindsADrawnFaceAtAnySize) {
    for (const double sizePx : {40.0, 80.0, 160.0, 240.0}) {
        SCOPED_TRACE(sizePx);
        const Drawing drawing = Drawing(640, 480, 150).face(300, 200, sizePx);
        const auto faces = facesIn(drawing);
        ASSERT_EQ(faces.size(), 1U);
        expectFaceAt(faces[0], drawing, 300, 200, sizePx);
    }
}

TEST_F(BuiltInDetector, FindsSeveralLargestFirst) {
    const Drawing drawing =
        Drawing(640, 360, 150).face(110, 200, 50).face(300, 180, 120).face(530, 160, 80);
    const auto faces = facesIn(drawing);
    ASSERT_EQ(faces.size(), 3U);
    expectFaceAt(faces[0], drawing, 300, 180, 120);
    expectFaceAt(faces[1], drawing, 530, 160, 80);
    expectFaceAt(faces[2], drawing, 110, 200, 50);
}

TEST_F(BuiltInDetector, FindsAFaceInUprightPictures) {
    const Drawing drawing = Drawing(270, 480, 150).face(140, 150, 90);
    const auto faces = facesIn(drawing);
    ASSERT_EQ(faces.size(), 1U);
    expectFaceAt(faces[0], drawing, 140, 150, 90);
}

TEST_F(BuiltInDetector, FindsAFaceAtTheBorderInsideThePicture) {
    const auto faces = facesIn(Drawing(400, 300, 150).face(70, 100, 120));
    ASSERT_EQ(faces.size(), 1U);
    EXPECT_GE(faces[0].x, 0);
    EXPECT_GE(faces[0].y, 0);
}

TEST_F(BuiltInDetector, FindsAFaceInGrain) {
    EXPECT_EQ(facesIn(Drawing(640, 480, 150).face(300, 200, 120).noise(8, 5)).size(), 1U);
}

TEST_F(BuiltInDetector, FindsNoFaceUpsideDown) {
    const Drawing upright = Drawing(640, 480, 150).face(300, 200, 120);
    Drawing turned(640, 480, 0);
    turned.fill([&upright](int x, int y) { return upright.at(639 - x, 479 - y); });
    EXPECT_TRUE(facesIn(turned).empty());
}

TEST_F(BuiltInDetector, FindsNoneInEvenPicturesOfAnySize) {
    EXPECT_TRUE(facesIn(Drawing(640, 360, 0)).empty());
    EXPECT_TRUE(facesIn(Drawing(640, 360, 255)).empty());
    EXPECT_TRUE(facesIn(Drawing(1, 1, 90)).empty());
    EXPECT_TRUE(facesIn(Drawing(640, 1, 90)).empty());
    EXPECT_TRUE(facesIn(Drawing(3, 640, 90)).empty());
}

TEST_F(BuiltInDetector, FindsNoneInNoise) {
    for (const std::uint32_t seed : {1U, 2U, 3U}) {
        EXPECT_TRUE(facesIn(Drawing(320, 240, 128).noise(50, seed)).empty());
        EXPECT_TRUE(facesIn(Drawing(320, 240, 128).noise(200, seed).blur(3)).empty());
    }
}

TEST_F(BuiltInDetector, FindsNoneInGradientsAndBars) {
    EXPECT_TRUE(facesIn(Drawing(640, 360, 0).fill([](int x, int) { return x * 0.4; })).empty());
    EXPECT_TRUE(
        facesIn(Drawing(640, 360, 0).fill([](int x, int) { return x / 80 % 2 * 255; })).empty());
    EXPECT_TRUE(facesIn(Drawing(640, 360, 0).fill([](int x, int y) {
                    return (x / 40 + y / 40) % 2 * 255;
                })).empty());
}

TEST_F(BuiltInDetector, FindsNoneInAHeadWithoutFeatures) {
    EXPECT_TRUE(facesIn(Drawing(640, 480, 150)
                            .ellipse(300, 200, 64, 82, 50, 6)
                            .ellipse(300, 215, 54, 70, 190, 16))
                    .empty());
}

}  // namespace
}  // namespace reference_host::vision
