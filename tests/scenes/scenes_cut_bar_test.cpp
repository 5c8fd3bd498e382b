#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "reference_host/scenes/CutBar.h"
#include "reference_host/scenes/Difference.h"
#include "tests/scenes/Scenery.h"

namespace reference_host::scenes {
namespace {

/// A plain picture of which it is said that it has such a contrast. Two of them that are `d` steps
/// of brightness apart differ by 2 * d: in shape and in tones.
PictureFeatures grey(int luma, float contrast = 32) {
    PictureFeatures features = featuresOf(plain(static_cast<std::uint8_t>(luma)));
    features.contrast = contrast;
    return features;
}

Passage passageOver(int distance, double pace = 0, double threshold = 3, float contrast = 32) {
    return passageBetween(grey(100, contrast), grey(100 + distance, contrast), pace, threshold);
}

bool areNeighbours(int distance, double pace = 0, double threshold = 3, float contrast = 32) {
    return areNeighboursOfOneScene(grey(100, contrast), grey(100 + distance, contrast), pace,
                                   threshold);
}

TEST(ContrastScale, FollowsTheLargerContrastUpToAnOrdinaryOne) {
    EXPECT_DOUBLE_EQ(contrastScale(16, 8, 0.25), 0.5);
    EXPECT_DOUBLE_EQ(contrastScale(8, 16, 0.25), 0.5);
    EXPECT_DOUBLE_EQ(contrastScale(0, 24, 0.25), 0.75);
    EXPECT_DOUBLE_EQ(contrastScale(32, 0, 0.25), 1);
    EXPECT_DOUBLE_EQ(contrastScale(127.5F, 127.5F, 0.25), 1);
}

TEST(ContrastScale, IsNotBelowTheSmallest) {
    EXPECT_DOUBLE_EQ(contrastScale(0, 0, 0.25), 0.25);
    EXPECT_DOUBLE_EQ(contrastScale(7, 0, 0.25), 0.25);
    EXPECT_DOUBLE_EQ(contrastScale(8, 0, 0.25), 0.25);
    EXPECT_DOUBLE_EQ(contrastScale(0, 0, 0.5), 0.5);
    EXPECT_DOUBLE_EQ(contrastScale(12, 0, 0.5), 0.5);
}

TEST(LeastCut, IsTheThresholdTimesTheStillChange) {
    EXPECT_DOUBLE_EQ(leastCut(32, 0, 3), 9);
    EXPECT_DOUBLE_EQ(leastCut(32, 0, 1.5), 4.5);
    EXPECT_DOUBLE_EQ(leastCut(16, 16, 3), 4.5);
    EXPECT_DOUBLE_EQ(leastCut(0, 0, 3), 2.25);
}

TEST(IsPlain, BelowHalfOfAnOrdinaryContrast) {
    EXPECT_TRUE(isPlain(grey(100, 15.9F)));
    EXPECT_FALSE(isPlain(grey(100, 16)));
}

bool mayBlendOver(int toMiddle, int toLast) {
    return mayBlend(grey(50), grey(50 + toMiddle), grey(50 + toLast));
}

TEST(MayBlend, WhereTheMiddlePictureIsAMixOfTheOthers) {
    EXPECT_TRUE(mayBlendOver(50, 100));
    EXPECT_TRUE(mayBlendOver(15, 100));
    EXPECT_TRUE(mayBlendOver(85, 100));
    EXPECT_FALSE(mayBlendOver(14, 100)) << "nearly all of it is the second step";
    EXPECT_FALSE(mayBlendOver(86, 100)) << "nearly all of it is the first step";
    EXPECT_FALSE(mayBlendOver(150, 100)) << "a flash";
}

TEST(MayBlend, NotWhereHardlyAnythingChanges) {
    EXPECT_FALSE(mayBlendOver(0, 0));
    const PictureFeatures first = featuresOf(Scenery(1).picture());
    EXPECT_FALSE(mayBlend(first, first, first));
    // Two steps of brightness: a difference of 4, where 2 are enough.
    EXPECT_TRUE(mayBlendOver(1, 2));
}

TEST(MayBlend, NotWhereTheMiddleShowsSomethingElse) {
    const PictureFeatures first = featuresOf(Scenery(1).picture());
    const PictureFeatures last = featuresOf(Scenery(2).picture());
    EXPECT_FALSE(mayBlend(first, featuresOf(Scenery(3).picture()), last));
    EXPECT_FALSE(mayBlend(first, first, last));
    EXPECT_FALSE(mayBlend(first, last, last));
}

// At a contrast of 32 and a threshold of 3, the least cut is 9.

bool areStillOver(int distance, double threshold = 3, float contrast = 32) {
    return areStill(grey(100, contrast), grey(100 + distance, contrast), threshold);
}

TEST(AreStill, WhereHardlyAPixelChanges) {
    // 0.45 of the least cut: 4.05
    EXPECT_TRUE(areStillOver(4));
    EXPECT_FALSE(areStillOver(5));
    // 1.01
    EXPECT_TRUE(areStillOver(1, 3, 0));
    EXPECT_FALSE(areStillOver(2, 3, 0));
}

TEST(AreStill, FollowsLowThresholdsOnly) {
    // 2.7
    EXPECT_TRUE(areStillOver(2, 2));
    EXPECT_FALSE(areStillOver(3, 2));
    EXPECT_TRUE(areStillOver(4, 30));
    EXPECT_FALSE(areStillOver(5, 30));
}

TEST(AreStill, NotWhereTheCameraMoves) {
    const Scenery scenery(1);
    const PictureFeatures here = featuresOf(scenery.seenFrom(100, 40));
    const PictureFeatures there = featuresOf(scenery.seenFrom(112, 40));
    EXPECT_TRUE(areNeighboursOfOneScene(here, there, 0, 3));
    EXPECT_FALSE(areStill(here, there, 3));
}

TEST(PassageBetween, OneViewUpToTwiceTheLeastCut) {
    EXPECT_EQ(passageOver(0), Passage::sameView);
    EXPECT_EQ(passageOver(9), Passage::sameView);
    EXPECT_EQ(passageOver(10), Passage::movedView);
}

TEST(PassageBetween, MovementMayExplainUpToFourTimesTheLeastCut) {
    EXPECT_EQ(passageOver(18), Passage::movedView);
    EXPECT_EQ(passageOver(19), Passage::newView);
}

TEST(PassageBetween, PaceMakesANewViewUnclear) {
    // 38 stands out above 36 and three times the pace.
    EXPECT_EQ(passageOver(19, 0.5), Passage::newView);
    EXPECT_EQ(passageOver(19, 0.75), Passage::unclear);
    EXPECT_EQ(passageOver(18, 100), Passage::movedView);
    EXPECT_EQ(passageOver(9, 100), Passage::sameView);
}

TEST(PassageBetween, FollowsThresholdAndContrast) {
    EXPECT_EQ(passageOver(6, 0, 2), Passage::sameView);
    EXPECT_EQ(passageOver(7, 0, 2), Passage::movedView);
    EXPECT_EQ(passageOver(12, 0, 2), Passage::movedView);
    EXPECT_EQ(passageOver(13, 0, 2), Passage::newView);
    EXPECT_EQ(passageOver(2, 0, 3, 0), Passage::sameView);
    EXPECT_EQ(passageOver(4, 0, 3, 0), Passage::movedView);
    EXPECT_EQ(passageOver(5, 0, 3, 0), Passage::unclear);
}

TEST(PassageBetween, FadesLeadToPlainPicturesToo) {
    // At a contrast of 16, the least cut is 4.5.
    EXPECT_EQ(passageOver(9, 0, 3, 16), Passage::movedView);
    EXPECT_EQ(passageOver(10, 0, 3, 16), Passage::newView);
    EXPECT_EQ(passageOver(10, 0, 3, 15.9F), Passage::unclear);
    EXPECT_EQ(passageBetween(grey(0, 15.9F), grey(200, 60), 0, 3), Passage::unclear);
    EXPECT_EQ(passageBetween(grey(0, 60), grey(200, 15.9F), 0, 3), Passage::unclear);
    EXPECT_EQ(passageBetween(grey(0, 60), grey(200, 16), 0, 3), Passage::newView);
}

TEST(PassageBetween, OnePlaceIsNoNewView) {
    const PictureSample desk = Scenery(5).picture();
    PictureFeatures before = featuresOf(desk);
    PictureFeatures after = featuresOf(covered(desk, 64, 18, 64, 72, 250));
    // As if the desk were dark, so that the window that pops up is far above the least cut.
    before.contrast = after.contrast = 0;
    ASSERT_GT(differenceBetween(before.thumbnail, after.thumbnail).overall, 4 * leastCut(0, 0, 3));
    EXPECT_EQ(passageBetween(before, after, 0, 3), Passage::unclear);
}

TEST(PassageBetween, SceneriesAreNewAndASlowCameraIsNot) {
    const Scenery scenery(1);
    const PictureFeatures here = featuresOf(scenery.seenFrom(100, 40));
    EXPECT_EQ(passageBetween(here, featuresOf(Scenery(2).picture()), 0, 3), Passage::newView);
    EXPECT_EQ(passageBetween(here, featuresOf(scenery.seenFrom(104, 42)), 0, 3), Passage::sameView);
}

TEST(MayBeOneView, UpToFourTimesTheLeastCut) {
    EXPECT_TRUE(mayBeOneView(grey(100), grey(100), 3));
    EXPECT_TRUE(mayBeOneView(grey(100), grey(110), 3));
    EXPECT_TRUE(mayBeOneView(grey(100), grey(118), 3));
    EXPECT_FALSE(mayBeOneView(grey(100), grey(119), 3)) << "a new view";
    EXPECT_FALSE(mayBeOneView(grey(0, 15.9F), grey(200, 60), 3)) << "unclear";
}

TEST(NeighboursOfOneScene, StayBelowTheLeastCut) {
    // Four fifths of 9.
    EXPECT_TRUE(areNeighbours(0));
    EXPECT_TRUE(areNeighbours(3));
    EXPECT_FALSE(areNeighbours(4));
}

TEST(NeighboursOfOneScene, MayMoveAtHalfThePace) {
    // Four fifths of 9 and one and a half times the pace.
    EXPECT_FALSE(areNeighbours(4, 0.5));
    EXPECT_TRUE(areNeighbours(4, 1));
    EXPECT_FALSE(areNeighbours(5, 2));
    EXPECT_TRUE(areNeighbours(5, 2.5));
}

TEST(NeighboursOfOneScene, FollowThresholdAndContrast) {
    EXPECT_TRUE(areNeighbours(1, 0, 1));
    EXPECT_FALSE(areNeighbours(2, 0, 1));
    EXPECT_FALSE(areNeighbours(1, 0, 3, 0));
    EXPECT_TRUE(areNeighbours(1, 1, 3, 0));
}

// What holds for any two pictures.

double anyThreshold() {
    return *rc::gen::inRange(1, 200) / 10.0;
}

double anyPace() {
    return *rc::gen::inRange(0, 400) / 10.0;
}

PictureFeatures anyPicture() {
    const auto seed = *rc::gen::inRange<std::uint32_t>(0, 3);
    const PictureSample seen =
        Scenery(seed).seenFrom(40 + *rc::gen::inRange(0, 60), 20 + *rc::gen::inRange(0, 20));
    return featuresOf(lit(seen, *rc::gen::inRange(1, 100) / 100.0, *rc::gen::inRange(0, 40)));
}

int distanceOf(Passage passage) {
    if (passage == Passage::sameView) return 0;
    return passage == Passage::movedView ? 1 : 2;
}

RC_GTEST_PROP(PassageBetween, ALowerThresholdExplainsLess, ()) {
    const PictureFeatures before = anyPicture();
    const PictureFeatures after = anyPicture();
    const double pace = anyPace();
    const double low = anyThreshold();
    const double high = low * *rc::gen::inRange(10, 50) / 10.0;
    const Passage strict = passageBetween(before, after, pace, low);
    const Passage lenient = passageBetween(before, after, pace, high);
    RC_CLASSIFY(strict != lenient);
    RC_ASSERT(distanceOf(strict) >= distanceOf(lenient));
    RC_ASSERT(lenient != Passage::newView || strict == Passage::newView);
    RC_ASSERT(!areNeighboursOfOneScene(before, after, pace, low) ||
              areNeighboursOfOneScene(before, after, pace, high));
}

RC_GTEST_PROP(PassageBetween, MorePaceExplainsMore, ()) {
    const PictureFeatures before = anyPicture();
    const PictureFeatures after = anyPicture();
    const double threshold = anyThreshold();
    const double slow = anyPace();
    const double fast = slow + anyPace();
    const Passage strict = passageBetween(before, after, slow, threshold);
    const Passage lenient = passageBetween(before, after, fast, threshold);
    RC_ASSERT(distanceOf(strict) == distanceOf(lenient));
    RC_ASSERT(lenient != Passage::newView || strict == Passage::newView);
    RC_ASSERT(!areNeighboursOfOneScene(before, after, slow, threshold) ||
              areNeighboursOfOneScene(before, after, fast, threshold));
}

RC_GTEST_PROP(NeighboursOfOneScene, HaveNoCutBetweenThemWhereNothingMoves, ()) {
    const PictureFeatures before = anyPicture();
    const PictureFeatures after = anyPicture();
    const double threshold = anyThreshold();
    const Difference difference = differenceBetween(before.thumbnail, after.thumbnail);
    const bool areNeighbours = areNeighboursOfOneScene(before, after, 0, threshold);
    RC_CLASSIFY(areNeighbours);
    RC_ASSERT(!areNeighbours ||
              difference.overall < leastCut(before.contrast, after.contrast, threshold));
}

}  // namespace
}  // namespace reference_host::scenes
