#include <gtest/gtest.h>

#include "reference_host/scenes/Difference.h"
#include "tests/scenes/Scenery.h"

namespace reference_host::scenes {
namespace {

Thumbnail thumbnail(const PictureSample& picture) {
    return thumbnailOf(picture);
}

TEST(Difference, EqualPicturesHaveNone) {
    const Thumbnail picture = thumbnail(Scenery(1).picture());
    EXPECT_FLOAT_EQ(differenceBetween(picture, picture).overall, 0);
    EXPECT_FLOAT_EQ(differenceBetween(picture, picture).widespread, 0);
}

TEST(Difference, AddsShapeAndTones) {
    const Difference difference =
        differenceBetween(thumbnail(plain(100)), thumbnail(plain(110, 131)));
    EXPECT_FLOAT_EQ(difference.overall, 26);
    EXPECT_FLOAT_EQ(difference.widespread, 26);
}

TEST(Difference, SmallShiftLeavesLittle) {
    const Scenery scenery(3);
    const Thumbnail before = thumbnail(scenery.seenFrom(100, 40));
    const Thumbnail panned = thumbnail(scenery.seenFrom(108, 44));
    const Thumbnail other = thumbnail(Scenery(4).picture());

    const float moved = differenceBetween(before, panned).overall;
    EXPECT_LT(moved * 4, differenceBetween(before, other).overall);
}

TEST(Difference, OnePlaceIsNotWidespread) {
    const PictureSample desk = Scenery(5).picture();
    const PictureSample popup = covered(desk, 64, 36, 64, 36, 250);

    const Difference difference = differenceBetween(thumbnail(desk), thumbnail(popup));

    EXPECT_GT(difference.overall, 5);
    EXPECT_FLOAT_EQ(difference.widespread, 0);
}

TEST(Difference, OnePlaceCountsTwiceTheMiddleAtMost) {
    const PictureSample popup = covered(plain(103), 64, 36, 64, 36, 200, 128, 128);

    const Difference difference = differenceBetween(thumbnail(plain(100)), thumbnail(popup));

    EXPECT_GT(difference.overall, 12);
    EXPECT_FLOAT_EQ(difference.widespread, 2 * (8 * 3 + 6) / 9.0F);
}

TEST(Difference, BlackBarsDoNotDilute) {
    const auto upright = [](std::uint32_t seed) {
        const PictureSample picture = Scenery(seed).picture();
        return thumbnail(
            covered(covered(picture, 0, 0, 64, 108, 0, 128, 128), 128, 0, 64, 108, 0, 128, 128));
    };
    EXPECT_GT(differenceBetween(upright(1), upright(2)).widespread, 30);
}

TEST(Difference, AllBlackPicturesHaveNone) {
    EXPECT_FLOAT_EQ(differenceBetween(thumbnail(plain(0)), thumbnail(plain(3))).overall, 0);
}

TEST(Light, MatchesBrightnessAndContrast) {
    const PictureSample picture = lit(Scenery(6).picture(), 0.5, 40);
    const Thumbnail model = thumbnail(picture);
    const Thumbnail brighter = thumbnail(lit(picture, 1.4, 10));

    const Thumbnail matched = inLightOf(model, brighter);

    EXPECT_NEAR(brightnessOf(matched), brightnessOf(model), 1);
    EXPECT_NEAR(contrastOf(matched), contrastOf(model), 1);
    EXPECT_LT(differenceBetween(model, matched).overall, 2.5);
    EXPECT_GT(differenceBetween(model, brighter).overall, 30);
    EXPECT_TRUE(std::is_sorted(matched.lumaTones.begin(), matched.lumaTones.end()));
}

TEST(Light, NeverStretchesAPlainPictureIntoAnother) {
    const Thumbnail model = thumbnail(Scenery(7).picture());
    EXPECT_LT(contrastOf(inLightOf(model, thumbnail(plain(100)))), 1);
}

TEST(Mixture, FindsTheShareOfEachEnd) {
    const PictureSample a = Scenery(8).picture();
    const PictureSample b = Scenery(9).picture();
    for (const double share : {0.0, 0.25, 0.5, 0.8, 1.0}) {
        const Mixture mixture =
            mixtureOf(thumbnail(a), thumbnail(mixed(a, b, share)), thumbnail(b));
        EXPECT_NEAR(mixture.share, share, 0.01);
        EXPECT_LT(mixture.residual, 0.02);
    }
}

TEST(Mixture, HalfOfEachPictureLeavesAHalf) {
    const Thumbnail mixture = thumbnail(covered(plain(50), 0, 0, 96, 108, 150, 128, 128));
    const Mixture half = mixtureOf(thumbnail(plain(50)), mixture, thumbnail(plain(150)));
    EXPECT_NEAR(half.share, 0.5, 0.001);
    EXPECT_NEAR(half.residual, 0.5, 0.001);
}

TEST(Mixture, EqualEndsGiveNothing) {
    const Thumbnail end = thumbnail(plain(50));
    const Mixture mixture = mixtureOf(end, thumbnail(plain(90)), end);
    EXPECT_FLOAT_EQ(mixture.share, 0);
    EXPECT_FLOAT_EQ(mixture.residual, 0);
}

}  // namespace
}  // namespace reference_host::scenes
