#include <vector>

#include <gtest/gtest.h>

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
            builder_.add(featuresOf(placed));
            position_ += stepTicks;
        }
    }

    void dissolve(int count, const PictureSample& from, const PictureSample& to) {
        for (int i = 1; i <= count; ++i)
            show(1, mixed(from, to, i / (count + 1.0)));
    }

    std::vector<FrameSignal> finish() { return builder_.finish(); }

private:
    std::int64_t position_ = 0;
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
