#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "reference_host/scenes/SignalBuilder.h"
#include "tests/scenes/PlainDifference.h"
#include "tests/scenes/Scenery.h"

namespace reference_host::scenes {
namespace {

/// Equal to the last bit: short cuts of the search may change nothing.
void expectPlain(const Thumbnail& before, const Thumbnail& after) {
    const Difference expected = PlainDifference::between(before, after);
    const Difference difference = differenceBetween(before, after);
    RC_ASSERT(difference.overall == expected.overall);
    RC_ASSERT(difference.widespread == expected.widespread);
}

/// A picture of noise: each value one of `tones` grey levels, so that few of them make many places
/// that fit equally well.
PictureSample noise(std::uint32_t seed, int tones) {
    PictureSample picture = plain(0);
    const auto fill = [&](auto& plane) {
        for (std::uint8_t& value : plane) {
            seed = seed * 1664525U + 1013904223U;
            value = static_cast<std::uint8_t>((seed >> 8U) % static_cast<std::uint32_t>(tones) *
                                              255 / static_cast<std::uint32_t>(tones));
        }
    };
    fill(picture.luma);
    fill(picture.u);
    fill(picture.v);
    return picture;
}

/// Brightness in whole pixels of a thumbnail, so that averaging leaves it as it is.
PictureSample coarseNoise(std::uint32_t seed, int tones) {
    PictureSample picture = noise(seed, tones);
    for (std::size_t y = 0; y < lumaHeightPx; ++y) {
        for (std::size_t x = 0; x < lumaWidthPx; ++x)
            picture.luma[y * lumaWidthPx + x] = picture.luma[y / 4 * 4 * lumaWidthPx + x / 4 * 4];
    }
    return picture;
}

RC_GTEST_PROP(PlainDifference, HoldsForNoise, ()) {
    const int tones = *rc::gen::inRange(2, 256);
    const auto before = *rc::gen::arbitrary<std::uint32_t>();
    const auto after = *rc::gen::arbitrary<std::uint32_t>();
    expectPlain(thumbnailOf(coarseNoise(before, tones)), thumbnailOf(coarseNoise(after, tones)));
}

RC_GTEST_PROP(PlainDifference, HoldsForAMovingCamera, ()) {
    const Scenery scenery(*rc::gen::arbitrary<std::uint32_t>());
    const auto place = [] { return *rc::gen::inRange(0, 120); };
    const double zoom = *rc::gen::inRange(90, 110) / 100.0;
    const PictureSample before = scenery.seenFrom(place(), place());
    const PictureSample after = scenery.seenFrom(place(), place(), zoom);
    expectPlain(thumbnailOf(before), thumbnailOf(after));
    expectPlain(thumbnailOf(before),
                inLightOf(thumbnailOf(before), thumbnailOf(lit(after, 1.3, -20))));
}

RC_GTEST_PROP(PlainDifference, HoldsForBarsPlainAreasAndOtherScenes, ()) {
    const auto seed = [] { return *rc::gen::inRange<std::uint32_t>(0, 1000); };
    const auto place = [] { return *rc::gen::inRange(-40, 160); };
    const auto tone = [] { return static_cast<std::uint8_t>(*rc::gen::inRange(0, 30)); };
    const auto picture = [&] {
        return covered(Scenery(seed()).picture(), place(), place(), place(), place(), tone());
    };
    const Thumbnail before = thumbnailOf(picture());
    const Thumbnail after = thumbnailOf(picture());
    const Thumbnail still = thumbnailOf(plain(tone()));
    expectPlain(before, after);
    expectPlain(before, before);
    expectPlain(before, still);
    expectPlain(still, after);
}

RC_GTEST_PROP(PairDifferences, AreThoseOfThePictures, ()) {
    const Scenery scenery(*rc::gen::inRange<std::uint32_t>(0, 1000));
    constexpr std::size_t reach = 4;
    ThumbnailWindow window(2 * reach);
    PairDifferences pairs(reach);
    for (std::size_t i = 0; i < 3 * reach; ++i) {
        WindowPicture picture;
        picture.thumbnail =
            thumbnailOf(scenery.seenFrom(*rc::gen::inRange(0, 200), *rc::gen::inRange(0, 100)));
        window.push(picture);
        // Pairs near and farther than what is remembered, in any order and repeatedly.
        for (std::size_t ask = 0; ask < 6 && i > 0; ++ask) {
            const std::size_t last = *rc::gen::inRange(window.begin() + 1, window.end());
            const std::size_t first = *rc::gen::inRange(window.begin(), last);
            const Difference expected =
                differenceBetween(window[first].thumbnail, window[last].thumbnail);
            const Difference difference = pairs.between(window, first, last);
            RC_ASSERT(difference.overall == expected.overall);
            RC_ASSERT(difference.widespread == expected.widespread);
        }
    }
}

/// A camera that shakes, with a flash and a cut in between.
TEST(PairDifferences, ChangeNoSignal) {
    const Scenery first(1);
    const Scenery second(2);
    for (const std::int64_t rate : {10, 25, 30, 50, 120}) {
        constexpr std::size_t count = 60;
        ThumbnailWindow window(count);
        SignalBuilder builder;
        for (std::size_t i = 0; i < count; ++i) {
            const double place = 60 + static_cast<double>(i * i * 37 % 50);
            PictureSample picture =
                i == 20 ? plain(250) : (i < 40 ? first : second).seenFrom(place, 20);
            picture.positionTicks = static_cast<std::int64_t>(i) * ticksPerSecond / rate;
            builder.add(featuresOf(picture));
            window.push({i, picture.positionTicks, thumbnailOf(picture)});
        }
        const std::vector<FrameSignal> signals = builder.finish();
        for (std::size_t i = 0; i < count; ++i) {
            const Change expected = changeAt(window, i);
            EXPECT_EQ(signals[i].change, expected.overall) << rate << " " << i;
            EXPECT_EQ(signals[i].lastingChange, expected.lasting) << rate << " " << i;
        }
    }
}

TEST(PlainDifference, HoldsForTheLargestDistances) {
    const Thumbnail black = thumbnailOf(plain(0, 0, 0));
    const Thumbnail white = thumbnailOf(plain(255, 255, 255));
    EXPECT_EQ(differenceBetween(black, white).overall, 6 * 255);
    EXPECT_EQ(PlainDifference::between(black, white).overall, 6 * 255);
}

}  // namespace
}  // namespace reference_host::scenes
