#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/scenes/Transitions.h"

namespace reference_host::scenes {
namespace {

/// Makes signals of a quiet scene at 25 pictures a second, to be disturbed by the tests.
std::vector<FrameSignal> quietSignals(std::size_t count, float change = 1.0F) {
    std::vector<FrameSignal> signals(count);
    for (std::size_t i = 0; i < count; ++i) {
        signals[i].positionTicks = static_cast<std::int64_t>(i) * ticksPerSecond / 25;
        signals[i].contrast = 40;
        signals[i].change = i == 0 ? 0 : change;
        signals[i].lastingChange = signals[i].change;
    }
    return signals;
}

void setCut(std::vector<FrameSignal>& signals, std::size_t frame, float change) {
    signals[frame].change = change;
    signals[frame].lastingChange = change;
}

void setBlend(std::vector<FrameSignal>& signals, std::size_t frame, float strength,
              std::uint32_t half) {
    signals[frame].blend = {strength, half, half, 2 * half};
}

void setPlain(std::vector<FrameSignal>& signals, std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i)
        signals[i].contrast = 0;
}

std::vector<std::size_t> boundariesOf(const std::vector<Transition>& transitions) {
    std::vector<std::size_t> frames;
    for (const Transition& transition : transitions)
        frames.push_back(transition.boundary);
    return frames;
}

using Frames = std::vector<std::size_t>;

TEST(Cuts, StandOutByTheThreshold) {
    auto signals = quietSignals(60, 5);
    setCut(signals, 20, 23.9F);
    setCut(signals, 40, 24.1F);
    EXPECT_EQ(boundariesOf(findCuts(signals, 3.0)), Frames({40}));
}

TEST(Cuts, NeedMoreInStillFootageThanTheirNeighbours) {
    auto signals = quietSignals(60, 0);
    setCut(signals, 20, 8.9F);
    setCut(signals, 40, 9.1F);
    EXPECT_EQ(boundariesOf(findCuts(signals, 3.0)), Frames({40}));
}

TEST(Cuts, StandOutFromWhatIsKnownOfTheirNeighbours) {
    auto signals = quietSignals(80, 5);
    for (const std::size_t cut : {20U, 60U}) {
        for (std::size_t i = cut - 8; i <= cut + 8; ++i) {
            setCut(signals, i, 0);
            signals[i].isChangeUnknown = true;
        }
    }
    setCut(signals, 20, 23.9F);
    setCut(signals, 60, 24.1F);
    EXPECT_EQ(boundariesOf(findCuts(signals, 3.0)), Frames({60}));
}

TEST(Cuts, NeedLessInFlatPictures) {
    auto signals = quietSignals(60, 0);
    for (FrameSignal& signal : signals)
        signal.contrast = 16;
    setCut(signals, 20, 4.4F);
    setCut(signals, 40, 4.6F);
    EXPECT_EQ(boundariesOf(findCuts(signals, 3.0)), Frames({40}));
}

TEST(Cuts, AreWhatLasts) {
    auto signals = quietSignals(60);
    setCut(signals, 30, 200);
    signals[30].lastingChange = 2;
    EXPECT_TRUE(findCuts(signals, 3.0).empty());
}

TEST(Cuts, AreTheLargestAmongNearFrames) {
    auto signals = quietSignals(60);
    setCut(signals, 30, 40);
    setCut(signals, 31, 60);
    EXPECT_EQ(boundariesOf(findCuts(signals, 3.0)), Frames({31}));
}

TEST(Cuts, FirstOfEqualNearFramesCounts) {
    auto signals = quietSignals(60);
    setCut(signals, 30, 60);
    setCut(signals, 32, 60);
    EXPECT_EQ(boundariesOf(findCuts(signals, 3.0)), Frames({30}));
}

TEST(Cuts, OneLoudNeighbourDoesNotHideThem) {
    auto signals = quietSignals(60);
    setCut(signals, 30, 20);
    signals[33].change = 300;
    signals[33].lastingChange = 1;
    EXPECT_EQ(boundariesOf(findCuts(signals, 3.0)), Frames({30}));
}

TEST(Cuts, RepeatedPicturesAreNoNeighbours) {
    auto signals = quietSignals(120, 0);
    for (std::size_t i = 4; i < 120; i += 4)
        setCut(signals, i, 10);
    EXPECT_TRUE(findCuts(signals, 3.0).empty());
    setCut(signals, 60, 60);
    EXPECT_EQ(boundariesOf(findCuts(signals, 3.0)), Frames({60}));
}

TEST(Cuts, StillPicturesBetweenThemAreNeighbours) {
    auto signals = quietSignals(60, 0);
    for (std::size_t i = 8; i < 60; i += 8)
        setCut(signals, i, 80);
    EXPECT_EQ(boundariesOf(findCuts(signals, 3.0)), Frames({8, 16, 24, 32, 40, 48, 56}));
}

TEST(Cuts, FramesBeyondASecondAreNoNeighbours) {
    auto signals = quietSignals(5, 30);
    for (std::size_t i = 0; i < 5; ++i) {
        signals[i].positionTicks = static_cast<std::int64_t>(i) * 2 * ticksPerSecond;
        setCut(signals, i, i == 0 ? 0 : 30.0F + static_cast<float>(i == 3));
    }
    EXPECT_EQ(boundariesOf(findCuts(signals, 3.0)), Frames({3}));
}

TEST(Cuts, NoSignalsNoCuts) {
    EXPECT_TRUE(findCuts({}, 3.0).empty());
    EXPECT_TRUE(findTransitions({}, 3.0).empty());
    EXPECT_TRUE(findTransitions(quietSignals(1), 3.0).empty());
}

TEST(Dissolves, SpanTheirBlend) {
    auto signals = quietSignals(100);
    setBlend(signals, 50, 60, 10);

    const std::vector<Transition> dissolves = findDissolves(signals, 3.0);

    ASSERT_EQ(dissolves.size(), 1U);
    EXPECT_EQ(dissolves[0].begin, 41U);
    EXPECT_EQ(dissolves[0].boundary, 50U);
    EXPECT_EQ(dissolves[0].end, 60U);
}

TEST(Dissolves, StrongestOfOverlappingBlendsCounts) {
    auto signals = quietSignals(200);
    for (std::size_t i = 45; i <= 55; ++i)
        setBlend(signals, i, 30, 10);
    setBlend(signals, 52, 60, 12);
    setBlend(signals, 150, 40, 12);
    EXPECT_EQ(boundariesOf(findDissolves(signals, 3.0)), Frames({52, 150}));
}

TEST(Dissolves, WholeCountsBeforeAPurerPiece) {
    auto signals = quietSignals(200);
    setBlend(signals, 100, 30, 10);
    setBlend(signals, 108, 50, 3);
    EXPECT_EQ(boundariesOf(findDissolves(signals, 3.0)), Frames({100}));
}

TEST(Dissolves, PiecesThatFollowAtOnceAreOne) {
    auto signals = quietSignals(200);
    setBlend(signals, 50, 60, 6);
    setBlend(signals, 64, 50, 6);
    setBlend(signals, 85, 50, 6);

    const std::vector<Transition> dissolves = findDissolves(signals, 3.0);

    ASSERT_EQ(boundariesOf(dissolves), Frames({57, 85}));
    EXPECT_EQ(dissolves[0].begin, 45U);
    EXPECT_EQ(dissolves[0].end, 70U);
}

TEST(Dissolves, NeedTheThresholdTimesTheLeast) {
    auto signals = quietSignals(200);
    setBlend(signals, 50, 6.8F, 10);
    setBlend(signals, 150, 7.0F, 10);
    EXPECT_EQ(boundariesOf(findDissolves(signals, 3.0)), Frames({150}));
}

TEST(Dissolves, SteadyBlendsDoNotStandOut) {
    auto signals = quietSignals(200);
    for (std::size_t i = 20; i < 180; ++i)
        setBlend(signals, i, 20, 6);
    for (const std::size_t frame : boundariesOf(findDissolves(signals, 3.0))) {
        EXPECT_TRUE(frame < 40 || frame > 160) << frame;
    }
}

TEST(Fades, HalvesAreJoinedInTheMiddleOfThePlainStretch) {
    auto signals = quietSignals(200);
    setBlend(signals, 90, 90, 10);
    setPlain(signals, 99, 110);
    setBlend(signals, 120, 60, 12);

    const std::vector<Transition> fades = findTransitions(signals, 3.0);

    ASSERT_EQ(fades.size(), 1U);
    EXPECT_EQ(fades[0].begin, 81U);
    EXPECT_EQ(fades[0].boundary, 104U);
    EXPECT_EQ(fades[0].end, 132U);
}

TEST(Fades, HardEdgeIsTheBoundary) {
    auto signals = quietSignals(200);
    setBlend(signals, 90, 90, 10);
    setPlain(signals, 99, 110);
    setCut(signals, 110, 90);
    EXPECT_EQ(boundariesOf(findTransitions(signals, 3.0)), Frames({110}));
}

TEST(Fades, LongPlainStretchIsASceneOfItsOwn) {
    auto signals = quietSignals(300);
    setCut(signals, 100, 90);
    setPlain(signals, 100, 160);
    setCut(signals, 160, 90);
    EXPECT_EQ(boundariesOf(findTransitions(signals, 3.0)), Frames({100, 160}));
}

TEST(Fades, AtTheEndsAreNoScenes) {
    auto signals = quietSignals(200);
    setPlain(signals, 0, 5);
    setBlend(signals, 15, 90, 10);
    setBlend(signals, 180, 90, 10);
    setPlain(signals, 190, 200);
    EXPECT_TRUE(findTransitions(signals, 3.0).empty());
}

/// Has every frame of a dissolve change by as much.
void setSteps(std::vector<FrameSignal>& signals, std::size_t begin, std::size_t end, float change) {
    for (std::size_t i = begin; i < end; ++i)
        signals[i].change = signals[i].lastingChange = change;
}

TEST(Transitions, CutInTheMiddleOfADissolveIsPartOfIt) {
    auto signals = quietSignals(200);
    setBlend(signals, 100, 60, 10);
    setSteps(signals, 91, 110, 4);
    setCut(signals, 102, 40);
    EXPECT_EQ(boundariesOf(findTransitions(signals, 3.0)), Frames({100}));
}

TEST(Transitions, CutThatIsMostOfWhatChangesIsNoDissolve) {
    auto signals = quietSignals(200);
    setBlend(signals, 100, 60, 10);
    setCut(signals, 102, 40);
    EXPECT_EQ(boundariesOf(findTransitions(signals, 3.0)), Frames({102}));
}

TEST(Transitions, LastStepOfADissolveIsNoCut) {
    for (const auto& [change, frames] :
         {std::pair(35.0F, Frames({100})), std::pair(60.0F, Frames({100, 112}))}) {
        auto signals = quietSignals(200);
        setBlend(signals, 100, 60, 10);
        setSteps(signals, 91, 110, 20);
        setCut(signals, 112, change);
        EXPECT_EQ(boundariesOf(findTransitions(signals, 3.0)), frames) << change;
    }
}

TEST(Transitions, NoSceneOfLessThanAFifthOfASecondIsBetweenADissolveAndACut) {
    for (const auto& [cut, frames] :
         {std::pair(std::size_t{104}, Frames({104})),
          std::pair(std::size_t{105}, Frames({100, 105})), std::pair(std::size_t{96}, Frames({96})),
          std::pair(std::size_t{95}, Frames({95, 100}))}) {
        auto signals = quietSignals(200);
        setBlend(signals, 100, 60, 6);
        setSteps(signals, 94, 107, 20);
        setCut(signals, cut, 80);
        EXPECT_EQ(boundariesOf(findTransitions(signals, 3.0)), frames) << cut;
    }
}

TEST(Transitions, DissolveEndsAtACutBesideIt) {
    auto signals = quietSignals(200);
    setBlend(signals, 100, 60, 10);
    setCut(signals, 92, 40);
    setCut(signals, 109, 40);

    const std::vector<Transition> transitions = findTransitions(signals, 3.0);

    ASSERT_EQ(boundariesOf(transitions), Frames({92, 100, 109}));
    EXPECT_EQ(transitions[1].begin, 92U);
    EXPECT_EQ(transitions[1].end, 109U);
}

}  // namespace
}  // namespace reference_host::scenes
