#include "reference_host/vision/measures.h"

#include <cmath>

#include <gtest/gtest.h>

#include "tests/vision/Drawing.h"

namespace reference_host::vision {
namespace {

TEST(Entropy, OneValueHasNone) {
    LumaHistogram luma{};
    luma[77] = 640 * 360;
    EXPECT_EQ(entropyBits(luma), 0.0);
}

TEST(Entropy, TwoEqualHalvesHaveOneBit) {
    LumaHistogram luma{};
    luma[16] = luma[235] = 12345;
    EXPECT_EQ(entropyBits(luma), 1.0);
}

TEST(Entropy, AllValuesAlikeHaveEightBits) {
    LumaHistogram luma{};
    luma.fill(900);
    EXPECT_EQ(entropyBits(luma), 8.0);
}

TEST(Entropy, CountsSharesNotPixels) {
    LumaHistogram luma{};
    luma[0] = 3;
    luma[1] = 1;
    EXPECT_NEAR(entropyBits(luma), 0.25 * 2 + 0.75 * std::log2(4.0 / 3), 1e-12);
}

TEST(Entropy, NoPixelsHaveNone) {
    EXPECT_EQ(entropyBits(LumaHistogram{}), 0.0);
}

TEST(Sharpness, EvenPictureHasNone) {
    EXPECT_EQ(sharpness(Drawing(64, 48, 130).picture()), 0.0);
}

TEST(Sharpness, NoPictureHasNone) {
    EXPECT_EQ(sharpness(Picture{}), 0.0);
}

TEST(Sharpness, OneBrightPixelGivesTheExactVariance) {
    Drawing drawing(10, 10, 0);
    drawing.fill([](int x, int y) { return x == 5 && y == 5 ? 10 : 0; });
    // -40 once and 10 four times among 100 pixels, with a mean of 0.
    EXPECT_NEAR(sharpness(drawing.picture()), (1600 + 4 * 100) / 100.0, 1e-9);
}

TEST(Sharpness, BlurringLowersIt) {
    const Drawing sharp = Drawing(160, 120, 128).noise(30, 1).face(80, 60, 60);
    Drawing blurred = sharp;
    blurred.blur(1);
    Drawing moreBlurred = sharp;
    moreBlurred.blur(3);
    EXPECT_GT(sharpness(sharp.picture()), 2 * sharpness(blurred.picture()));
    EXPECT_GT(sharpness(blurred.picture()), 2 * sharpness(moreBlurred.picture()));
}

TEST(Sharpness, BrighterPictureIsAsSharp) {
    const auto stripes = [](double level) {
        return Drawing(64, 64, 0).fill([level](int x, int) { return level + (x / 4 % 2) * 40; });
    };
    EXPECT_NEAR(sharpness(stripes(20).picture()), sharpness(stripes(180).picture()), 1e-9);
}

TEST(Sharpness, ContrastCountsSquared) {
    const auto stripes = [](double step) {
        return Drawing(64, 64, 0).fill([step](int x, int) { return 100 + (x / 4 % 2) * step; });
    };
    EXPECT_NEAR(sharpness(stripes(80).picture()), 4 * sharpness(stripes(40).picture()), 1e-6);
}

}  // namespace
}  // namespace reference_host::vision
