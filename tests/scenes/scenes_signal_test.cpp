#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "reference_host/scenes/SignalBuilder.h"
#include "tests/scenes/Scenery.h"

namespace reference_host::scenes {
namespace {

constexpr std::int64_t stepTicks = ticksPerSecond / 25;

/// Builds the signals of pictures that follow each other 25 times a second.
class Signals {
public:
    void show(int count, const PictureSample& picture) {
        for (int i = 0; i < count; ++i) {
            PictureSample placed = picture;
            placed.positionTicks = position_;
            PictureFeatures features = featuresOf(placed);
            features.leftOutBefore = std::exchange(leftOut_, 0);
            builder_.add(features);
            position_ += stepTicks;
        }
    }

    /// Leaves out one picture.
    void skip() {
        position_ += stepTicks;
        ++leftOut_;
    }

    void dissolve(int count, const PictureSample& from, const PictureSample& to) {
        for (int i = 1; i <= count; ++i)
            show(1, mixed(from, to, i / (count + 1.0)));
    }

    std::vector<FrameSignal> finish() { return builder_.finish(); }

private:
    std::int64_t position_ = 0;
    std::uint32_t leftOut_ = 0;
    SignalBuilder builder_;
};

TEST(ChangeSignal, CutChangesAndLasts) {
    Signals signals;
    signals.show(10, plain(50));
    signals.show(10, plain(80));

    const std::vector<FrameSignal> result = signals.finish();

    for (std::size_t i = 0; i < result.size(); ++i) {
        const float expected = i == 10 ? 60.0F : 0.0F;
        EXPECT_FLOAT_EQ(result[i].change, expected) << i;
        EXPECT_FLOAT_EQ(result[i].lastingChange, expected) << i;
    }
}

TEST(ChangeSignal, FlashChangesButDoesNotLast) {
    for (int length = 1; length <= 5; ++length) {
        Signals signals;
        signals.show(10, plain(50));
        signals.show(length, plain(250));
        signals.show(10, plain(50));

        const std::vector<FrameSignal> result = signals.finish();

        const auto end = static_cast<std::size_t>(10 + length);
        EXPECT_FLOAT_EQ(result[10].change, 400) << length;
        EXPECT_FLOAT_EQ(result[end].change, 400) << length;
        EXPECT_FLOAT_EQ(result[10].lastingChange, 0) << length;
        EXPECT_FLOAT_EQ(result[end].lastingChange, 0) << length;
    }
}

TEST(ChangeSignal, MoreThanAFifthOfASecondLasts) {
    Signals signals;
    signals.show(10, plain(50));
    signals.show(6, plain(250));
    signals.show(10, plain(50));

    const std::vector<FrameSignal> result = signals.finish();

    EXPECT_FLOAT_EQ(result[10].lastingChange, 400);
    EXPECT_FLOAT_EQ(result[16].lastingChange, 400);
}

/// Builds the signals of plain pictures of these values of grey, of which those that are `marked`
/// are known to go on with the scene before them.
std::vector<FrameSignal> signalsOf(const std::vector<std::uint8_t>& greys,
                                   const std::vector<bool>& marked) {
    SignalBuilder builder;
    for (std::size_t i = 0; i < greys.size(); ++i) {
        PictureFeatures picture = featuresOf(plain(greys[i]));
        picture.positionTicks = static_cast<std::int64_t>(i) * stepTicks;
        picture.goesOn = marked[i];
        builder.add(picture);
    }
    return builder.finish();
}

TEST(ChangeSignal, PictureThatGoesOnHasNone) {
    std::vector<std::uint8_t> greys(30, 50);
    std::fill(greys.begin() + 10, greys.end(), 80);
    std::fill(greys.begin() + 20, greys.end(), 50);
    std::vector<bool> marked(30, false);
    marked[10] = true;

    const std::vector<FrameSignal> result = signalsOf(greys, marked);

    for (std::size_t i = 0; i < result.size(); ++i) {
        const float expected = i == 20 ? 60.0F : 0.0F;
        EXPECT_FLOAT_EQ(result[i].change, expected) << i;
        EXPECT_FLOAT_EQ(result[i].lastingChange, expected) << i;
    }
}

TEST(ChangeSignal, LastPicturesCanGoOn) {
    const std::vector<FrameSignal> result = signalsOf({50, 50, 80}, {false, false, true});
    EXPECT_FLOAT_EQ(result[2].change, 0);
    EXPECT_FLOAT_EQ(result[2].lastingChange, 0);
}

RC_GTEST_PROP(ChangeSignal, GoingOnConcernsNoOtherPicture, ()) {
    const auto greys =
        *rc::gen::nonEmpty(rc::gen::container<std::vector<std::uint8_t>>(rc::gen::inRange(40, 60)));
    const auto marked =
        *rc::gen::container<std::vector<bool>>(greys.size(), rc::gen::arbitrary<bool>());
    const std::vector<FrameSignal> plainly =
        signalsOf(greys, std::vector<bool>(greys.size(), false));
    const std::vector<FrameSignal> result = signalsOf(greys, marked);
    RC_ASSERT(result.size() == greys.size());
    for (std::size_t i = 0; i < greys.size(); ++i) {
        RC_ASSERT(result[i].change == (marked[i] ? 0 : plainly[i].change));
        RC_ASSERT(result[i].lastingChange == (marked[i] ? 0 : plainly[i].lastingChange));
        RC_ASSERT(result[i].blend.strength == plainly[i].blend.strength);
    }
}

TEST(BlendSignal, StrongestInTheMiddleOfADissolve) {
    Signals signals;
    signals.show(40, Scenery(1).picture());
    signals.dissolve(19, Scenery(1).picture(), Scenery(2).picture());
    signals.show(40, Scenery(2).picture());

    const std::vector<FrameSignal> result = signals.finish();

    const auto strongest = std::max_element(result.begin(), result.end(),
                                            [](const FrameSignal& a, const FrameSignal& b) {
                                                return a.blend.strength < b.blend.strength;
                                            });
    EXPECT_EQ(strongest - result.begin(), 49);
    EXPECT_EQ(strongest->blend.framesBefore, 10U);
    EXPECT_EQ(strongest->blend.framesAfter, 10U);
    EXPECT_GT(strongest->blend.strength, 50);
    EXPECT_FLOAT_EQ(result[20].blend.strength, 0);
    EXPECT_FLOAT_EQ(result[80].blend.strength, 0);
}

TEST(BlendSignal, CutIsNone) {
    Signals signals;
    signals.show(40, Scenery(1).picture());
    signals.show(40, Scenery(2).picture());
    for (const FrameSignal& signal : signals.finish())
        EXPECT_FLOAT_EQ(signal.blend.strength, 0);
}

TEST(BlendSignal, ChangeOfLightIsNone) {
    const PictureSample scene = lit(Scenery(3).picture(), 0.6, 20);
    Signals signals;
    signals.show(30, scene);
    signals.dissolve(20, scene, lit(scene, 1.2, 15));
    signals.show(30, lit(scene, 1.2, 15));
    for (const FrameSignal& signal : signals.finish())
        EXPECT_LT(signal.blend.strength, 4);
}

TEST(BlendSignal, EndlessMixIsNone) {
    Signals signals;
    signals.dissolve(300, Scenery(4).picture(), Scenery(5).picture());
    const std::vector<FrameSignal> result = signals.finish();
    for (std::size_t i = 100; i < 200; ++i)
        EXPECT_LT(result[i].blend.strength, 1) << i;
}

/// Returns the blend in the middle of a dissolve into a scene that slowly changes, of which every
/// second picture is left out, or none.
Blend blendIntoDrift(bool isSparse) {
    const PictureSample before = Scenery(1).picture();
    const PictureSample after = Scenery(2).picture();
    const PictureSample late = Scenery(3).picture();
    Signals signals;
    signals.show(40, before);
    signals.dissolve(19, before, after);
    for (int i = 0; i < 60; ++i) {
        if (isSparse && i > 6 && i % 2 == 1) {
            signals.skip();
        } else {
            signals.show(1, mixed(after, late, i / 400.0));
        }
    }
    return signals.finish()[49].blend;
}

TEST(BlendSignal, WhatIsBesideItChangesAsFastWherePicturesAreRare) {
    const Blend dense = blendIntoDrift(false);
    EXPECT_EQ(dense.framesAfter, 10U);
    EXPECT_FLOAT_EQ(blendIntoDrift(true).strength, dense.strength);
    Signals still;
    still.show(40, Scenery(1).picture());
    still.dissolve(19, Scenery(1).picture(), Scenery(2).picture());
    still.show(60, Scenery(2).picture());
    EXPECT_LT(dense.strength, still.finish()[49].blend.strength) << "which counts against it";
}

/// The signals of a dissolve that takes the pictures 40 to 58 of 99, without those that are `out`.
std::vector<FrameSignal> dissolveWithout(const std::vector<int>& out) {
    const PictureSample from = Scenery(1).picture();
    const PictureSample to = Scenery(2).picture();
    Signals signals;
    for (int i = 0; i < 99; ++i) {
        if (std::ranges::count(out, i) > 0) {
            signals.skip();
        } else {
            signals.show(1, mixed(from, to, std::clamp((i - 39) / 20.0, 0.0, 1.0)));
        }
    }
    return signals.finish();
}

const FrameSignal& strongestOf(const std::vector<FrameSignal>& signals) {
    return *std::max_element(signals.begin(), signals.end(),
                             [](const FrameSignal& a, const FrameSignal& b) {
                                 return a.blend.strength < b.blend.strength;
                             });
}

TEST(BlendSignal, IsInTheSamePlaceWhereverPicturesWereLeftOut) {
    const std::vector<FrameSignal> all = dissolveWithout({});
    const FrameSignal& whole = strongestOf(all);
    ASSERT_EQ(whole.positionTicks, 49 * stepTicks);
    ASSERT_EQ(whole.blend.steps, 20U);
    for (const std::vector<int>& out :
         {std::vector{45}, {41, 43}, {52, 54, 56, 58}, {60, 61, 62, 63, 64}, {38, 39}, {59, 60}}) {
        const std::vector<FrameSignal> some = dissolveWithout(out);
        EXPECT_EQ(some.size() + out.size(), all.size());
        const FrameSignal& strongest = strongestOf(some);
        EXPECT_EQ(strongest.positionTicks, whole.positionTicks) << out.front();
        EXPECT_EQ(strongest.blend.steps, 20U) << out.front();
        // Where it begins or ends, a mix is off by half a step.
        const bool isAtAnEnd = out.front() == 38 || out.front() == 59;
        EXPECT_NEAR(strongest.blend.strength, whole.blend.strength, isAtAnEnd ? 20 : 1)
            << out.front();
    }
}

TEST(BlendSignal, HasAPictureThatWasSeenInItsMiddle) {
    const std::vector<FrameSignal> all = dissolveWithout({});
    const std::vector<FrameSignal> some = dissolveWithout({49});
    EXPECT_GT(all[49].blend.strength, all[48].blend.strength + 5);
    EXPECT_NEAR(some[48].blend.strength, all[48].blend.strength, 1);
}

TEST(BlendSignal, EndsAtPicturesThatWereSeen) {
    const std::vector<FrameSignal> signals =
        dissolveWithout({35, 36, 37, 38, 39, 59, 60, 61, 62, 63});
    const auto middle = std::find_if(signals.begin(), signals.end(), [](const FrameSignal& signal) {
        return signal.positionTicks == 49 * stepTicks;
    });
    // So it would end at the pictures 37 and 61.
    ASSERT_EQ(middle->blend.steps, 24U);
    EXPECT_EQ((middle - middle->blend.framesBefore)->positionTicks, 34 * stepTicks);
    EXPECT_EQ((middle + middle->blend.framesAfter)->positionTicks, 64 * stepTicks);
}

TEST(BlendSignal, IsNoneWhereMoreThanAFourthOfItWasLeftOut) {
    EXPECT_EQ(dissolveWithout({51, 52, 53, 54})[49].blend.steps, 20U);
    EXPECT_EQ(dissolveWithout({51, 52, 53, 54, 55})[49].blend.steps, 24U) << "six steps";
    EXPECT_EQ(dissolveWithout({56, 57, 58, 59, 60, 61, 62, 63, 64, 65, 66})[49].blend.steps, 12U)
        << "twelve steps, of which four would belong to it";
}

TEST(SignalBuilder, LetsNothingStandInWhereNothingWasLeftOut) {
    // Ten times a second, two pictures follow each other too fast for both to be looked at.
    const PictureSample from = Scenery(1).picture();
    const PictureSample to = Scenery(2).picture();
    SignalBuilder builder;
    for (int i = 0; i < 60; ++i) {
        for (const std::int64_t later : {std::int64_t{0}, ticksPerSecond / 100}) {
            PictureFeatures picture =
                featuresOf(mixed(from, to, std::clamp((i - 25) / 10.0, 0.0, 1.0)));
            picture.positionTicks = i * ticksPerSecond / 10 + later;
            builder.add(picture);
        }
    }
    const std::vector<FrameSignal> signals = builder.finish();
    EXPECT_EQ(strongestOf(signals).number, 60U);
    EXPECT_EQ(strongestOf(signals).blend.steps, 10U);
}

TEST(SignalBuilder, StandsInForPicturesWhereNotAllAreLookedAtForBlends) {
    // Sixty pictures a second, of which every second one is looked at. Some of a dissolve and of
    // the still beside it are left out, so that others than usual are.
    const PictureSample from = Scenery(1).picture();
    const PictureSample to = Scenery(2).picture();
    const auto dissolve = [&](bool isSparse) {
        SignalBuilder builder;
        std::uint32_t leftOut = 0;
        for (int i = 0; i < 200; ++i) {
            const bool isOut = isSparse && (i == 79 || i == 80 || (i >= 121 && i < 124));
            if (isOut) ++leftOut;
            if (isOut) continue;
            PictureFeatures picture =
                featuresOf(mixed(from, to, std::clamp((i - 80) / 40.0, 0.0, 1.0)));
            picture.positionTicks = i * ticksPerSecond / 60;
            picture.leftOutBefore = std::exchange(leftOut, 0);
            builder.add(picture);
        }
        return builder.finish();
    };
    const std::vector<FrameSignal> all = dissolve(false);
    const std::vector<FrameSignal> some = dissolve(true);
    ASSERT_EQ(some.size() + 5, all.size());
    EXPECT_EQ(some.back().number, all.back().number);
    const FrameSignal& whole = strongestOf(all);
    const FrameSignal& strongest = strongestOf(some);
    EXPECT_EQ(whole.number, 100U);
    EXPECT_NEAR(strongest.number, whole.number, 1);
    EXPECT_EQ(strongest.blend.steps, whole.blend.steps);
    EXPECT_NEAR(strongest.blend.strength, whole.blend.strength, 20);
}

/// A steady mix from one scenery to another, of pictures that follow each other after these steps.
ThumbnailWindow steadyMix(const std::vector<std::int64_t>& stepsTicks) {
    const PictureSample from = Scenery(1).picture();
    const PictureSample to = Scenery(2).picture();
    std::int64_t length = 0;
    for (const std::int64_t step : stepsTicks)
        length += step;
    ThumbnailWindow window(stepsTicks.size() + 1);
    std::int64_t position = 0;
    for (std::size_t i = 0; i <= stepsTicks.size(); ++i) {
        const double share = static_cast<double>(position) / static_cast<double>(length);
        window.push({i, position, thumbnailOf(mixed(from, to, share)), false,
                     i == 0 ? 0 : stepsTicks[i - 1]});
        if (i < stepsTicks.size()) position += stepsTicks[i];
    }
    return window;
}

TEST(BlendSignal, UnevenStepsMayTakeAFourthOfIt) {
    // Seven pictures are the fewest of a blend, and leave room for no other length.
    for (std::size_t place = 0; place < 6; ++place) {
        std::vector<std::int64_t> steps(6, 3 * stepTicks);
        EXPECT_GT(blendAt(steadyMix(steps), 3).strength, 50) << place;
        steps[place] = 5 * stepTicks;
        EXPECT_EQ(blendAt(steadyMix(steps), 3).framesBefore, 3U) << place;
        EXPECT_GT(blendAt(steadyMix(steps), 3).strength, 50) << place;
        steps[place] = 5 * stepTicks + 1;
        EXPECT_FLOAT_EQ(blendAt(steadyMix(steps), 3).strength, 0) << place;
    }
}

TEST(BlendSignal, LongerOneBridgesAStepThatIsTooLongForAShortOne) {
    std::vector<std::int64_t> steps(16, stepTicks);
    steps[8] = 4 * stepTicks;
    // Up to six steps on each side, the long one is more than a fourth of 15; of 19 it is not.
    const Blend blend = blendAt(steadyMix(steps), 8);
    EXPECT_GT(blend.strength, 50);
    EXPECT_EQ(blend.framesBefore, 8U);
}

RC_GTEST_PROP(BlendSignal, NeverReachesAcrossAStepOfMoreThanAFourth, ()) {
    const auto count = *rc::gen::inRange<std::size_t>(6, 24);
    const auto steps = *rc::gen::container<std::vector<std::int64_t>>(
        count,
        rc::gen::map(rc::gen::element(1, 1, 1, 2, 8), [](int step) { return step * stepTicks; }));
    const ThumbnailWindow window = steadyMix(steps);
    const std::size_t middle = *rc::gen::inRange<std::size_t>(3, count - 2);
    const Blend blend = blendAt(window, middle);
    RC_CLASSIFY(blend.strength > 0);
    if (blend.strength <= 0) return;
    const std::size_t first = middle - blend.framesBefore;
    const std::size_t last = middle + blend.framesAfter;
    const std::int64_t length = window[last].positionTicks - window[first].positionTicks;
    for (std::size_t i = first; i < last; ++i)
        RC_ASSERT(steps[i] * 4 <= length);
}

TEST(SignalBuilder, KeepsPositionsAndStatistics) {
    Signals signals;
    signals.show(1, plain(10));
    signals.show(1, Scenery(6).picture());

    const std::vector<FrameSignal> result = signals.finish();

    ASSERT_EQ(result.size(), 2U);
    EXPECT_EQ(result[1].positionTicks, stepTicks);
    EXPECT_FLOAT_EQ(result[0].contrast, 0);
    EXPECT_FLOAT_EQ(result[1].contrast, contrastOf(thumbnailOf(Scenery(6).picture())));
    EXPECT_FLOAT_EQ(result[1].sharpness, sharpnessOf(Scenery(6).picture()));
}

}  // namespace
}  // namespace reference_host::scenes
