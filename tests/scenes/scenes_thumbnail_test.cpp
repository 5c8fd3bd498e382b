#include <algorithm>

#include <gtest/gtest.h>

#include "reference_host/scenes/Thumbnail.h"
#include "reference_host/scenes/ThumbnailWindow.h"
#include "tests/scenes/Scenery.h"

namespace reference_host::scenes {
namespace {

TEST(Thumbnail, AveragesFourByFourSamplesRounded) {
    PictureSample picture = plain(0);
    picture.luma[0] = 255;
    picture.luma[3 * lumaWidthPx + 3] = 17;
    picture.luma[4] = 8;
    picture.luma.back() = 7;

    const Thumbnail thumbnail = thumbnailOf(picture);

    EXPECT_EQ(thumbnail.luma[0], 17);
    EXPECT_EQ(thumbnail.luma[1], 1);
    EXPECT_EQ(thumbnail.luma.back(), 0);
}

TEST(Thumbnail, TakesColourAsItIs) {
    const PictureSample picture = Scenery(1).picture();

    const Thumbnail thumbnail = thumbnailOf(picture);

    EXPECT_EQ(thumbnail.u, picture.u);
    EXPECT_EQ(thumbnail.v, picture.v);
}

TEST(Thumbnail, TonesAreItsValuesInOrder) {
    const Thumbnail thumbnail = thumbnailOf(Scenery(2).picture());

    Thumbnail::Plane expected = thumbnail.luma;
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(thumbnail.lumaTones, expected);
    expected = thumbnail.u;
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(thumbnail.uTones, expected);
    expected = thumbnail.v;
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(thumbnail.vTones, expected);
}

TEST(Thumbnail, MixesOfTwo) {
    PictureSample begin;
    PictureSample end;
    begin.luma.fill(10);
    end.luma.fill(20);
    begin.u.fill(0);
    end.u.fill(255);
    begin.v.fill(200);
    end.v.fill(100);
    begin.v[0] = 100;
    end.v[0] = 200;

    const Thumbnail mix = mixOf(thumbnailOf(begin), thumbnailOf(end), 0.25);

    EXPECT_EQ(mix.luma[5], 13) << "12.5, rounded";
    EXPECT_EQ(mix.u[5], 64) << "63.75, rounded";
    EXPECT_EQ(mix.v[0], 125);
    EXPECT_EQ(mix.v[1], 175);
    EXPECT_EQ(mix.vTones.front(), 125);
    EXPECT_EQ(mix.vTones.back(), 175);
    EXPECT_EQ(mix.lumaTones, mix.luma);
    EXPECT_EQ(mix.uTones, mix.u);
}

TEST(Thumbnail, ContrastIsTheStandardDeviation) {
    EXPECT_FLOAT_EQ(contrastOf(thumbnailOf(plain(77))), 0);
    const PictureSample halves = covered(plain(0), 0, 0, lumaWidthPx / 2, lumaHeightPx, 255);
    EXPECT_FLOAT_EQ(contrastOf(thumbnailOf(halves)), 127.5F);
    EXPECT_FLOAT_EQ(brightnessOf(thumbnailOf(halves)), 127.5F);
}

TEST(Thumbnail, SharpnessFallsWithBlur) {
    PictureSample sharp = plain(100);
    PictureSample soft = plain(100);
    for (std::size_t i = 0; i < sharp.luma.size(); ++i) {
        sharp.luma[i] = i / 4 % 2 == 0 ? 60 : 140;
        soft.luma[i] = i / 4 % 2 == 0 ? 90 : 110;
    }
    EXPECT_FLOAT_EQ(sharpnessOf(plain(200)), 0);
    EXPECT_FLOAT_EQ(sharpnessOf(sharp), 4 * sharpnessOf(soft));
}

TEST(Thumbnail, SharpnessOfOneBrightPixel) {
    PictureSample picture = plain(0);
    picture.luma[50 * lumaWidthPx + 50] = 10;
    const double pixels = (lumaWidthPx - 2) * (lumaHeightPx - 2);
    EXPECT_FLOAT_EQ(sharpnessOf(picture),
                    static_cast<float>(std::sqrt((40.0 * 40 + 4 * 10 * 10) / pixels)));
}

TEST(ThumbnailWindow, KeepsTheNewestPictures) {
    ThumbnailWindow window(3);
    for (std::size_t i = 0; i < 5; ++i) {
        WindowPicture picture;
        picture.frame = 10 * i;
        window.push(picture);
    }
    EXPECT_EQ(window.begin(), 2U);
    EXPECT_EQ(window.end(), 5U);
    EXPECT_EQ(window[2].frame, 20U);
    EXPECT_EQ(window[4].frame, 40U);
}

}  // namespace
}  // namespace reference_host::scenes
