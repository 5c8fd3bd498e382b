#include <algorithm>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "reference_host/media/KeyRhythm.h"

namespace reference_host_tests {
namespace {

using reference_host::media::KeyRhythm;

/// Makes a rhythm of groups of these lengths.
KeyRhythm rhythmOf(const std::vector<std::int64_t>& lengths, std::int64_t origin = 1000) {
    std::vector<std::int64_t> keys{origin};
    for (const std::int64_t length : lengths)
        keys.push_back(keys.back() + length);
    return KeyRhythm(keys);
}

bool isInTurn(const KeyRhythm& rhythm, std::int64_t length) {
    return rhythm.isInTurn(5000, 5000 + length);
}

TEST(KeyRhythm, EverythingIsInTurnWhereNothingIsKnown) {
    EXPECT_TRUE(KeyRhythm().isInTurn(0, 1));
    EXPECT_TRUE(KeyRhythm(std::vector<std::int64_t>{}).isInTurn(0, 1));
    EXPECT_TRUE(KeyRhythm(std::vector<std::int64_t>{7}).isInTurn(7, 8));
}

TEST(KeyRhythm, LongestGroupIsInTurnThoughItBeAlone) {
    const KeyRhythm rhythm = rhythmOf({250, 250, 300, 120, 250});
    EXPECT_TRUE(isInTurn(rhythm, 300));
    EXPECT_TRUE(isInTurn(rhythm, 1000));
}

TEST(KeyRhythm, GroupIsAsLongAsTheLongestUpToOnePartInThreeHundred) {
    EXPECT_TRUE(isInTurn(rhythmOf({100'000, 99'668, 25, 26, 27, 28, 29}), 99'668));
    EXPECT_FALSE(isInTurn(rhythmOf({100'000, 99'667, 25, 26, 27, 28, 29}), 99'667));
    // A scene that begins one frame before a key frame in turn.
    EXPECT_FALSE(isInTurn(rhythmOf({249, 120, 248, 80, 110, 60, 90}), 248));
}

TEST(KeyRhythm, LengthThatNoOtherGroupHasIsOutOfTurn) {
    EXPECT_FALSE(isInTurn(rhythmOf({250, 250, 120, 250}), 120));
    EXPECT_FALSE(isInTurn(rhythmOf({120, 250}), 120));
}

TEST(KeyRhythm, LengthOfOneOtherGroupInSixIsInTurn) {
    EXPECT_TRUE(isInTurn(rhythmOf({120, 250, 250, 120, 250, 250}), 120));
    EXPECT_FALSE(isInTurn(rhythmOf({120, 250, 250, 120, 250, 250, 250}), 120));
    EXPECT_TRUE(isInTurn(rhythmOf({120, 250, 120, 250, 120, 250, 250}), 120));
}

TEST(KeyRhythm, LengthsAreTheSameUpToAFiftieth) {
    EXPECT_TRUE(isInTurn(rhythmOf({250, 100, 102, 250}), 100));
    EXPECT_TRUE(isInTurn(rhythmOf({250, 100, 98, 250}), 100));
    EXPECT_FALSE(isInTurn(rhythmOf({250, 100, 103, 250}), 100));
    EXPECT_FALSE(isInTurn(rhythmOf({250, 100, 97, 250}), 100));
}

TEST(KeyRhythm, EverythingIsInTurnBetweenKeyFramesThatWereLeftOut) {
    // Of groups of 250, every second begin is known.
    const KeyRhythm rhythm = rhythmOf({500, 500, 370, 500});
    EXPECT_TRUE(isInTurn(rhythm, 250));
    EXPECT_TRUE(isInTurn(rhythm, 120));
    EXPECT_FALSE(isInTurn(rhythm, 370));
}

/// Lengths of groups as a coder makes them: `usual` in turn, shorter ones where it saw a scene.
std::vector<std::int64_t> anyLengths() {
    const auto usual = *rc::gen::inRange<std::int64_t>(2, 100'000);
    return *rc::gen::nonEmpty(rc::gen::container<std::vector<std::int64_t>>(rc::gen::oneOf(
        rc::gen::just(usual), rc::gen::just(usual), rc::gen::inRange<std::int64_t>(1, usual))));
}

RC_GTEST_PROP(KeyRhythm, DependsOnLengthsAlone, ()) {
    std::vector<std::int64_t> lengths = anyLengths();
    const KeyRhythm rhythm = rhythmOf(lengths);
    const auto length = *rc::gen::elementOf(lengths);
    std::reverse(lengths.begin(), lengths.end());
    const auto origin = *rc::gen::inRange<std::int64_t>(-1'000'000, 1'000'000);
    RC_ASSERT(isInTurn(rhythm, length) == isInTurn(rhythmOf(lengths, origin), length));
}

RC_GTEST_PROP(KeyRhythm, ALengthThatAllGroupsHaveIsInTurn, ()) {
    const auto length = *rc::gen::inRange<std::int64_t>(1, 100'000);
    const auto count = *rc::gen::inRange<std::size_t>(1, 50);
    RC_ASSERT(isInTurn(rhythmOf(std::vector<std::int64_t>(count, length)), length));
}

RC_GTEST_PROP(KeyRhythm, KnowsLengthsThatOthersHave, ()) {
    const std::vector<std::int64_t> lengths = anyLengths();
    const auto length = *rc::gen::elementOf(lengths);
    const auto likeIt = std::count_if(lengths.begin(), lengths.end(), [&](std::int64_t other) {
        return std::max(other, length) - std::min(other, length) <= length / 50;
    });
    const bool isLongest =
        length + length / 300 >= *std::max_element(lengths.begin(), lengths.end());
    const bool isShared = likeIt > 1 && (likeIt - 1) * 6 >= std::ssize(lengths);
    RC_CLASSIFY(!isLongest && isShared);
    RC_ASSERT(isInTurn(rhythmOf(lengths), length) == (isLongest || isShared));
}

}  // namespace
}  // namespace reference_host_tests
