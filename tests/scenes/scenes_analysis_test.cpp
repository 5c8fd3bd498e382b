#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "tests/scenes/Reel.h"

namespace reference_host::scenes {
namespace {

using Frames = std::vector<std::size_t>;

const Scenery& scenery(std::uint32_t seed) {
    static const std::vector<Scenery> sceneries = [] {
        std::vector<Scenery> made;
        for (std::uint32_t i = 0; i < 8; ++i)
            made.emplace_back(100 + i);
        return made;
    }();
    return sceneries[seed];
}

TEST(Cuts, BeginAtTheirExactFrame) {
    Reel reel;
    reel.drift(31, scenery(0)).drift(47, scenery(1)).drift(12, scenery(2)).drift(60, scenery(3));
    EXPECT_EQ(reel.boundaries(), Frames({31, 78, 90}));
}

TEST(Cuts, FoundAtFiveToOneHundredAndTwentyPicturesASecond) {
    for (const double rate : {5.0, 10.0, 23.976, 30.0, 60.0, 120.0}) {
        Reel reel(rate);
        reel.drift(30, scenery(0)).drift(40, scenery(1)).drift(30, scenery(2));
        EXPECT_EQ(reel.boundaries(), Frames({30, 70})) << rate;
    }
}

TEST(Cuts, FoundInDarkFootage) {
    Reel reel;
    const auto night = [](const Scenery& place) {
        return [&place](int i) { return mixed(plain(10), place.seenFrom(40 + i, 20), 0.1); };
    };
    reel.show(40, night(scenery(0))).show(40, night(scenery(1)));
    EXPECT_EQ(reel.boundaries(), Frames({40}));
}

TEST(Cuts, FoundBetweenStaticSlides) {
    const auto slide = [](int line, int width) {
        return covered(covered(plain(245), 10, 8, 120, 12, 40, 128, 128), 20, 30 + line, width, 40,
                       90, 120, 130);
    };
    Reel reel;
    reel.hold(50, slide(0, 150)).hold(50, slide(20, 60)).hold(50, Scenery(9).picture());
    EXPECT_EQ(reel.boundaries(), Frames({50, 100}));
}

TEST(Cuts, FoundBetweenPhotosInQuickSuccession) {
    Reel reel;
    for (std::uint32_t i = 0; i < 6; ++i)
        reel.hold(8, scenery(i).picture());
    EXPECT_EQ(reel.boundaries(), Frames({8, 16, 24, 32, 40}));
}

TEST(Cuts, FoundBetweenShakingShots) {
    const auto shaking = [](const Scenery& place) {
        return [&place](int i) {
            return place.seenFrom(60 + 14 * std::sin(i * 1.7), 40 + 9 * std::sin(i * 1.1));
        };
    };
    Reel reel;
    reel.show(50, shaking(scenery(2))).show(50, shaking(scenery(3)));
    EXPECT_EQ(reel.boundaries(), Frames({50}));
}

TEST(Dissolves, AreOneSceneChangeNearTheirMiddle) {
    for (const int length : {8, 12, 18, 25, 36, 48}) {
        const PictureSample from = scenery(0).picture();
        const PictureSample to = scenery(1).picture();
        Reel reel;
        reel.hold(60, from).dissolve(length, from, to).hold(60, to);

        const Frames boundaries = reel.boundaries();

        ASSERT_EQ(boundaries.size(), 1U) << length;
        EXPECT_NEAR(static_cast<double>(boundaries[0]), 59.5 + length / 2.0, 3) << length;
    }
}

TEST(Dissolves, BetweenMovingShotsAreFound) {
    const auto from = [](int i) { return scenery(4).seenFrom(40 + 0.8 * i, 20); };
    const auto to = [](int i) { return scenery(5).seenFrom(120 - 0.8 * i, 30); };
    Reel reel;
    reel.show(50, from);
    reel.show(20, [&](int i) { return mixed(from(50 + i), to(i), (i + 1) / 21.0); });
    reel.show(50, [&](int i) { return to(20 + i); });

    const Frames boundaries = reel.boundaries();

    ASSERT_EQ(boundaries.size(), 1U);
    EXPECT_NEAR(static_cast<double>(boundaries[0]), 60, 3);
}

TEST(Dissolves, TheirFramesAreMarked) {
    const PictureSample from = scenery(0).picture();
    const PictureSample to = scenery(1).picture();
    Reel reel;
    reel.hold(60, from).dissolve(19, from, to).hold(60, to);

    const FootageRecord record = reel.analyse();

    EXPECT_FALSE(record.frames[50].inTransition);
    EXPECT_TRUE(record.frames[65].inTransition);
    EXPECT_TRUE(record.frames[73].inTransition);
    EXPECT_FALSE(record.frames[90].inTransition);
}

TEST(Fades, ThroughAPlainColourAreOneSceneChange) {
    for (const PictureSample& colour : {plain(0), plain(255), plain(90, 200, 60)}) {
        const PictureSample from = scenery(2).picture();
        const PictureSample to = scenery(3).picture();
        Reel reel;
        reel.hold(50, from).dissolve(15, from, colour).hold(6, colour);
        reel.dissolve(15, colour, to).hold(50, to);

        const Frames boundaries = reel.boundaries();

        ASSERT_EQ(boundaries.size(), 1U);
        EXPECT_NEAR(static_cast<double>(boundaries[0]), 68, 2);
    }
}

TEST(Fades, AtTheEndsOfTheFootageAreNone) {
    const PictureSample picture = scenery(2).picture();
    Reel reel;
    reel.hold(10, plain(0)).dissolve(15, plain(0), picture).hold(60, picture);
    reel.dissolve(15, picture, plain(0)).hold(10, plain(0));
    EXPECT_EQ(reel.boundaries(), Frames());
}

TEST(NoScene, Flash) {
    for (int length = 1; length <= 4; ++length) {
        Reel reel;
        reel.show(100, [&](int i) {
            const PictureSample picture = scenery(0).seenFrom(40 + 0.5 * i, 20);
            return i >= 50 && i < 50 + length ? lit(picture, 1, 130) : picture;
        });
        EXPECT_EQ(reel.boundaries(), Frames()) << length;
    }
}

TEST(NoScene, Flicker) {
    for (const int period : {3, 5, 8, 11}) {
        Reel reel;
        reel.show(150, [&](int i) {
            return lit(scenery(1).seenFrom(40 + 0.3 * i, 20), 1,
                       30 * std::sin(6.2832 * i / period));
        });
        EXPECT_EQ(reel.boundaries(), Frames()) << period;
    }
}

TEST(NoScene, FastPan) {
    for (const int length : {8, 12, 20}) {
        Reel reel;
        reel.show(100, [&](int i) {
            return scenery(2).seenFrom(40 + 192 * std::clamp((i - 40.0) / length, 0.0, 1.0), 20);
        });
        EXPECT_EQ(reel.boundaries(), Frames()) << length;
    }
}

TEST(NoScene, FastZoom) {
    Reel reel;
    reel.show(100, [&](int i) {
        const double zoom = 1 + std::clamp((i - 40.0) / 10, 0.0, 1.0);
        return scenery(3).seenFrom(40 + 96 * (1 - 1 / zoom), 20 + 54 * (1 - 1 / zoom), zoom);
    });
    EXPECT_EQ(reel.boundaries(), Frames());
}

TEST(NoScene, PassingObject) {
    Reel reel;
    reel.show(100, [&](int i) {
        return covered(scenery(4).seenFrom(40 + 0.3 * i, 20), -100 + 292 * (i - 40) / 16, 10, 100,
                       90, 200);
    });
    EXPECT_EQ(reel.boundaries(), Frames());
}

TEST(NoScene, WindowPoppingUp) {
    Reel reel(10);
    const PictureSample desk = scenery(5).picture();
    reel.hold(40, desk).hold(40, covered(desk, 60, 30, 70, 40, 240)).hold(40, desk);
    EXPECT_EQ(reel.boundaries(), Frames());
}

TEST(NoScene, TitleFadingInAndOut) {
    const PictureSample picture = scenery(6).picture();
    const PictureSample titled = covered(picture, 20, 80, 120, 14, 250, 128, 128);
    Reel reel;
    reel.hold(40, picture).dissolve(12, picture, titled).hold(40, titled);
    reel.dissolve(12, titled, picture).hold(40, picture);
    EXPECT_EQ(reel.boundaries(), Frames());
}

TEST(NoScene, ExposureChange) {
    const PictureSample picture = lit(scenery(7).picture(), 0.6, 10);
    const PictureSample bright = lit(picture, 1.4, 30);
    Reel reel;
    reel.hold(40, picture).dissolve(20, picture, bright).hold(40, bright);
    EXPECT_EQ(reel.boundaries(), Frames());
}

TEST(NoScene, FrozenAndBlackStretches) {
    Reel reel;
    reel.drift(40, scenery(0)).hold(100, scenery(0).seenFrom(40 + 0.7 * 39, 20 + 0.2 * 39));
    EXPECT_EQ(reel.boundaries(), Frames());
    EXPECT_EQ(Reel().hold(100, plain(0)).boundaries(), Frames());
}

TEST(NoScene, PictureThatIsKnownToGoOn) {
    const auto scenesWhere = [](bool goesOn) {
        SceneAnalysis analysis(3.0);
        for (int i = 0; i < 60; ++i) {
            PictureFeatures picture = featuresOf(scenery(i < 20 ? 0 : 1).picture());
            picture.positionTicks = i * KOR::ticksPerSecond / 25;
            picture.goesOn = goesOn && i == 20;
            analysis.add(picture);
        }
        return analysis.finish(60 * KOR::ticksPerSecond / 25).scenes.size();
    };
    EXPECT_EQ(scenesWhere(true), 1U);
    EXPECT_EQ(scenesWhere(false), 2U);
}

TEST(Threshold, LowerFindsMoreHigherFewer) {
    Reel reel;
    for (std::uint32_t i = 0; i < 8; ++i) {
        const double difference = 0.1 * (i + 1);
        reel.hold(30, mixed(plain(120), scenery(i).picture(), difference));
    }
    std::size_t before = std::numeric_limits<std::size_t>::max();
    for (const double threshold : {0.5, 1.0, 3.0, 6.0, 12.0, 40.0, 200.0}) {
        const std::size_t found = reel.boundaries(threshold).size();
        EXPECT_LE(found, before) << threshold;
        before = found;
    }
    EXPECT_EQ(reel.boundaries(1.0).size(), 7U);
    EXPECT_EQ(reel.boundaries(200.0).size(), 0U);
}

TEST(Threshold, NonsenseCountsAsTheDefault) {
    Reel reel;
    reel.drift(30, scenery(0)).drift(30, scenery(1));
    for (const double threshold :
         {0.0, -1.0, std::nan(""), std::numeric_limits<double>::infinity()}) {
        EXPECT_EQ(reel.boundaries(threshold), Frames({30})) << threshold;
    }
}

TEST(Footage, OfNoneToThreePictures) {
    EXPECT_TRUE(Reel().analyse().scenes.empty());
    for (int count = 1; count <= 3; ++count) {
        const FootageRecord record = Reel().drift(count, scenery(0)).analyse();
        ASSERT_EQ(record.scenes.size(), 1U);
        EXPECT_EQ(record.scenes[0].begin, 0);
        EXPECT_EQ(record.scenes[0].end, record.durationTicks);
        EXPECT_EQ(record.frames.size(), static_cast<std::size_t>(count));
    }
    EXPECT_EQ(Reel().drift(1, scenery(0)).drift(2, scenery(1)).boundaries(), Frames({1}));
}

TEST(Footage, WithoutPicturesIsOneScene) {
    const FootageRecord record = SceneAnalysis(3.0).finish(500);
    ASSERT_EQ(record.scenes.size(), 1U);
    EXPECT_EQ(record.scenes[0].end, 500);
}

TEST(Footage, PicturesOutOfOrderAreLeftOut) {
    SceneAnalysis analysis(3.0);
    PictureSample picture = scenery(0).picture();
    for (const std::int64_t position : {-5, 10, 10, 7, 20}) {
        picture.positionTicks = position;
        analysis.add(featuresOf(picture));
    }
    const FootageRecord record = analysis.finish(30);
    ASSERT_EQ(record.frames.size(), 2U);
    EXPECT_EQ(record.frames[0].positionTicks, 10);
    EXPECT_EQ(record.frames[1].positionTicks, 20);
}

RC_GTEST_PROP(Footage, ScenesAlwaysTileIt, ()) {
    const auto steps = *rc::gen::container<std::vector<std::pair<int, int>>>(
        rc::gen::pair(rc::gen::inRange(0, 10), rc::gen::inRange(-2'000'000, 30'000'000)));
    const double threshold = *rc::gen::element(0.01, 1.0, 3.0, 50.0);
    const auto beyond = *rc::gen::inRange<std::int64_t>(-100'000'000, 100'000'000);
    SceneAnalysis analysis(threshold);
    std::int64_t position = 0;
    for (const auto& [kind, step] : steps) {
        PictureSample picture = kind < 8 ? scenery(static_cast<std::uint32_t>(kind)).picture()
                                         : plain(static_cast<std::uint8_t>(kind * 20));
        picture.positionTicks = position;
        analysis.add(featuresOf(picture));
        position += step;
    }

    const FootageRecord record = analysis.finish(position + beyond);

    std::int64_t end = 0;
    for (const KOR::TickRange& scene : record.scenes) {
        RC_ASSERT(scene.begin == end);
        RC_ASSERT(scene.end > scene.begin);
        end = scene.end;
    }
    RC_ASSERT(end == record.durationTicks);
    RC_ASSERT(record.durationTicks == std::max<std::int64_t>(0, position + beyond));
    for (std::size_t i = 1; i < record.frames.size(); ++i) {
        RC_ASSERT(record.frames[i - 1].positionTicks < record.frames[i].positionTicks);
    }
}

}  // namespace
}  // namespace reference_host::scenes
