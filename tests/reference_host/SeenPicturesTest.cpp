#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/media/SeenPictures.h"

namespace reference_host_tests {
namespace {

using reference_host::media::SeenPictures;
using reference_host::scenes::PictureFeatures;

constexpr double threshold = 3;

/// A plain picture of which it is said that it has such a contrast. Two of them that are `d` steps
/// of brightness apart differ by 2 * d, and at a contrast of 32 the least cut is 9.
PictureFeatures grey(int luma, float contrast = 32) {
    PictureFeatures features{};
    features.contrast = contrast;
    for (auto* plane : {&features.thumbnail.luma, &features.thumbnail.lumaTones})
        plane->fill(static_cast<std::uint8_t>(luma));
    return features;
}

/// Pictures of these brightnesses, ten units of time apart, the first one at 0.
void addAll(SeenPictures& seen, const std::vector<int>& lumas) {
    std::int64_t timestamp = 0;
    for (const int luma : lumas)
        seen.add(std::exchange(timestamp, timestamp + 10), grey(luma));
}

TEST(SeenPictures, ShowAnotherViewWhereTheyDifferByMoreThanMovement) {
    SeenPictures seen(threshold, SeenPictures::Blends::sparse);
    EXPECT_FALSE(seen.add(0, grey(100))) << "the first one";
    EXPECT_FALSE(seen.add(10, grey(104))) << "8, of 9";
    // The pace has become a quarter of three.
    EXPECT_FALSE(seen.add(20, grey(109))) << "10, of 9 and three times the pace";
    EXPECT_TRUE(seen.add(30, grey(159)));
}

TEST(SeenPictures, ShowNoNewViewWhereTheSceneIsKnownToGoOn) {
    SeenPictures seen(threshold, SeenPictures::Blends::sparse);
    addAll(seen, {100, 100});
    seen.endChain();
    seen.goOnAt(50);
    EXPECT_FALSE(seen.add(50, grey(200)));
    EXPECT_TRUE(seen.goesOnAt(50));
    EXPECT_FALSE(seen.goesOnAt(10));
}

TEST(SeenPictures, WhatChangesWhileNothingIsDecodedDoesNotCountInThePace) {
    // At this contrast neighbours may differ by 6.75 and 1.2 times the pace. That becomes 0.75 by a
    // change of 8 alone, and 1.875 by a jump before it.
    const auto isLeftOutBehind = [](bool goesOn) {
        SeenPictures seen(threshold, SeenPictures::Blends::sparse);
        seen.add(0, grey(100, 30));
        seen.endChain();
        if (goesOn) seen.goOnAt(500);
        seen.add(500, grey(150, 30));
        seen.add(520, grey(154, 30));
        return seen.isBetweenPicturesOfOneScene(510);
    };
    EXPECT_TRUE(isLeftOutBehind(false));
    EXPECT_FALSE(isLeftOutBehind(true));
}

TEST(SeenPictures, NewestIsTheOneThatCameLast) {
    SeenPictures seen(threshold, SeenPictures::Blends::sparse);
    EXPECT_EQ(seen.newest(), nullptr);
    seen.add(0, grey(1));
    seen.add(40, grey(2));
    seen.add(20, grey(3));
    EXPECT_EQ(seen.newest(), seen.at(20));
    EXPECT_EQ(&seen.last(), seen.at(40));
    EXPECT_EQ(seen.at(30), nullptr);
    seen.endChain();
    EXPECT_EQ(seen.newest(), nullptr);
    EXPECT_EQ(&seen.last(), seen.at(40));
}

TEST(SeenPictures, LatestMovementIsThatOverFourStepsFromABegin) {
    SeenPictures seen(threshold, SeenPictures::Blends::sparse);
    addAll(seen, {90, 100, 101, 103, 106, 110});
    EXPECT_DOUBLE_EQ(seen.latestMovement(0), 2 * 10);
    EXPECT_DOUBLE_EQ(seen.latestMovement(30), 2 * 7);
    EXPECT_DOUBLE_EQ(seen.latestMovement(50), 0);
}

TEST(SeenPictures, MayBeOneViewIfAllSinceABeginMayBe) {
    SeenPictures seen(threshold, SeenPictures::Blends::sparse);
    addAll(seen, {100, 118, 119});
    // Four times the least cut are 36.
    EXPECT_FALSE(seen.mayBeOneViewSince(0, grey(136)));
    EXPECT_TRUE(seen.mayBeOneViewSince(10, grey(136)));
    EXPECT_FALSE(seen.mayBeOneViewSince(10, grey(137)));
    EXPECT_TRUE(seen.mayBeOneViewSince(11, grey(137)));
    EXPECT_FALSE(seen.mayBeOneViewSince(21, grey(119))) << "none has been seen since";
}

TEST(SeenPictures, LightChangesWhereContrastRisesBy4OrFallsBy6Percent) {
    const auto isChanging = [](float before, float after) {
        SeenPictures seen(threshold, SeenPictures::Blends::sparse);
        seen.add(0, grey(100, before));
        seen.add(10, grey(100, after));
        return seen.isLightChanging();
    };
    EXPECT_FALSE(isChanging(50, 50));
    EXPECT_FALSE(isChanging(50, 51.9F));
    EXPECT_TRUE(isChanging(50, 52.1F));
    EXPECT_FALSE(isChanging(52.9F, 50));
    EXPECT_TRUE(isChanging(53.1F, 50));
    EXPECT_TRUE(isChanging(15.9F, 15.9F)) << "plain";
}

TEST(SeenPictures, LightMayChangeWhereNothingIsKnown) {
    SeenPictures seen(threshold, SeenPictures::Blends::sparse);
    EXPECT_TRUE(seen.isLightChanging());
    seen.add(0, grey(100));
    EXPECT_FALSE(seen.isLightChanging()) << "one picture, not plain";
    seen.endChain();
    EXPECT_TRUE(seen.isLightChanging());
}

TEST(SeenPictures, NeedNoPictureBetweenTwoOfOneScene) {
    SeenPictures seen(threshold, SeenPictures::Blends::sparse);
    addAll(seen, {100, 103, 150});
    EXPECT_TRUE(seen.isBetweenPicturesOfOneScene(5));
    EXPECT_FALSE(seen.isBetweenPicturesOfOneScene(15));
    EXPECT_FALSE(seen.isBetweenPicturesOfOneScene(-5)) << "nothing before";
    EXPECT_FALSE(seen.isBetweenPicturesOfOneScene(25)) << "nothing behind";
}

TEST(SeenPictures, MayLackWhatIsBetweenTwoOfAStillScene) {
    SeenPictures seen(threshold, SeenPictures::Blends::sparse);
    // A pixel may change by 4.05.
    addAll(seen, {100, 104, 109});
    EXPECT_TRUE(seen.isInStillness(5, 10));
    EXPECT_FALSE(seen.isInStillness(15, 10));
    EXPECT_FALSE(seen.isInStillness(5, 9)) << "too far apart";
    EXPECT_FALSE(seen.isInStillness(-5, 10)) << "nothing before";
    EXPECT_FALSE(seen.isInStillness(25, 10)) << "nothing behind";
    for (const std::int64_t at : {0, 10, 20})
        EXPECT_FALSE(seen.isInStillness(at, 20)) << at << " has been seen and is needed again";
}

TEST(SeenPictures, MayLackNothingWhileTheLightChanges) {
    for (const bool isChanging : {false, true}) {
        SeenPictures seen(threshold, SeenPictures::Blends::sparse);
        seen.add(0, grey(100, 32));
        seen.add(10, grey(100, isChanging ? 34 : 33));
        EXPECT_EQ(seen.isInStillness(5, 10), !isChanging);
    }
}

TEST(SeenPictures, AreNeededInBlendsThatAreToBeSeenWhole) {
    for (const auto blends : {SeenPictures::Blends::sparse, SeenPictures::Blends::whole}) {
        const bool isSparse = blends == SeenPictures::Blends::sparse;
        SeenPictures steady(threshold, blends);
        addAll(steady, {100, 100, 100, 103, 106});
        EXPECT_EQ(steady.isBetweenPicturesOfOneScene(25), isSparse) << "the first step";
        EXPECT_EQ(steady.isBetweenPicturesOfOneScene(35), isSparse) << "the second step";
        SeenPictures sudden(threshold, blends);
        addAll(sudden, {100, 100, 100, 103, 103});
        for (const std::int64_t at : {25, 35})
            EXPECT_TRUE(sudden.isBetweenPicturesOfOneScene(at)) << at;
    }
}

TEST(SeenPictures, AreNeededWhereABlendMayEndThatBeganInTheSegmentBefore) {
    for (const auto blends : {SeenPictures::Blends::sparse, SeenPictures::Blends::whole}) {
        SeenPictures seen(threshold, blends);
        addAll(seen, {100, 100, 100, 100});
        for (const std::int64_t at : {5, 15})
            EXPECT_EQ(seen.isBetweenPicturesOfOneScene(at), blends == SeenPictures::Blends::sparse);
        EXPECT_TRUE(seen.isBetweenPicturesOfOneScene(25));
    }
}

TEST(SeenPictures, AreNeededBesideABlend) {
    SeenPictures seen(threshold, SeenPictures::Blends::whole);
    addAll(seen, {100, 100, 100, 100, 100, 100, 103, 106, 106, 106, 106});
    // 50 to 70 look like one.
    for (const std::int64_t at : {45, 55, 65, 75})
        EXPECT_FALSE(seen.isBetweenPicturesOfOneScene(at)) << at;
    for (const std::int64_t at : {25, 35, 85, 95})
        EXPECT_TRUE(seen.isBetweenPicturesOfOneScene(at)) << at;
}

TEST(SeenPictures, AreNearABlendUpToHalfItsLengthBehindIt) {
    SeenPictures seen(threshold, SeenPictures::Blends::whole);
    EXPECT_FALSE(seen.isNearBlend(0));
    addAll(seen, {100, 100, 103, 106, 109, 112, 112, 112});
    // It takes from 10 to 50.
    EXPECT_FALSE(seen.isNearBlend(10));
    EXPECT_TRUE(seen.isNearBlend(11));
    EXPECT_TRUE(seen.isNearBlend(50));
    EXPECT_TRUE(seen.isNearBlend(69));
    EXPECT_FALSE(seen.isNearBlend(70));
    seen.add(600, grey(112));
    seen.add(590, grey(112));
    EXPECT_TRUE(seen.isNearBlend(69)) << "what comes later changes nothing";
    EXPECT_FALSE(seen.isNearBlend(70));
    EXPECT_FALSE(seen.isBetweenPicturesOfOneScene(65));
}

TEST(SeenPictures, AreNearNoBlendThatChangesLessThanACut) {
    SeenPictures seen(threshold, SeenPictures::Blends::whole);
    addAll(seen, {100, 101, 102, 103, 104});
    EXPECT_FALSE(seen.isNearBlend(35)) << "8, of 9";
    seen.add(50, grey(105));
    EXPECT_TRUE(seen.isNearBlend(35)) << "10";
}

TEST(SeenPictures, AreNearALongBlendThoughAShortOneFollows) {
    SeenPictures seen(threshold, SeenPictures::Blends::whole);
    // The first one takes from 0 to 100, the second one from 110 to 130.
    addAll(seen, {100, 103, 106, 109, 112, 115, 118, 121, 124, 127, 130, 130, 133, 136, 136});
    EXPECT_TRUE(seen.isNearBlend(105));
    EXPECT_TRUE(seen.isNearBlend(149));
    EXPECT_FALSE(seen.isNearBlend(150));
}

TEST(SeenPictures, AreNearNoBlendWhereSomethingWasLeftOut) {
    SeenPictures seen(threshold, SeenPictures::Blends::whole);
    seen.add(0, grey(100));
    for (const int at : {1, 2, 3, 4}) {
        seen.goOnAt(at * 1000);
        seen.add(at * 1000, grey(100 + 3 * at));
    }
    EXPECT_FALSE(seen.isNearBlend(2500));
    EXPECT_FALSE(seen.isNearBlend(4500));
}

TEST(SeenPictures, BeginANewBlendWhereTheOldOneDoesNotGoOnSteadily) {
    SeenPictures seen(threshold, SeenPictures::Blends::whole);
    addAll(seen, {60, 61, 62, 67});
    EXPECT_TRUE(seen.isNearBlend(1)) << "all of it is one";
    seen.add(40, grey(92));
    // Half of the time brings a sixteenth of the change, so the blend takes from 20 to 40.
    EXPECT_TRUE(seen.isNearBlend(49));
    EXPECT_FALSE(seen.isNearBlend(50));
}

TEST(SeenPictures, AreNearNoBlendWhereThoseAreSparse) {
    SeenPictures seen(threshold, SeenPictures::Blends::sparse);
    addAll(seen, {100, 103, 106, 109});
    EXPECT_FALSE(seen.isNearBlend(15));
}

}  // namespace
}  // namespace reference_host_tests
