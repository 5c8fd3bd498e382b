#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "reference_host/media/PacketPlan.h"

namespace reference_host_tests {
namespace {

using reference_host::media::beginsEvenly;
using reference_host::media::bringNoScene;
using reference_host::media::PacketFacts;
using reference_host::media::packetsBeforeQuiet;
using Group = std::vector<PacketFacts>;

/// Sums are made of so many packets, and packets are compared with so many on each side.
constexpr std::size_t window = 8;

/// To each packet of groups with such a key frame, 11 bytes are added.
constexpr std::int64_t keyBytes = 1000;
constexpr std::int64_t added = 11;

/// A group in which packets are decoded in the order in which they are shown, and are of one size.
Group evenGroup(std::size_t size, std::int64_t bytes) {
    Group group;
    for (std::size_t i = 0; i < size; ++i)
        group.push_back({static_cast<std::int64_t>(i), i == 0 ? keyBytes : bytes});
    return group;
}

/// Two frames between each two others are shown before the second of these, but stored behind it.
Group withTwoBFrames(Group group) {
    for (std::size_t i = 1; i + 2 < group.size(); i += 3) {
        std::rotate(group.begin() + static_cast<std::ptrdiff_t>(i),
                    group.begin() + static_cast<std::ptrdiff_t>(i) + 2,
                    group.begin() + static_cast<std::ptrdiff_t>(i) + 3);
    }
    return group;
}

TEST(PacketsBeforeQuiet, KeyFrameIsEnoughForAnEvenGroup) {
    for (const std::size_t size : {9U, 10U, 17U, 250U}) {
        for (const std::int64_t bytes : {0, 1, 100, 5000})
            EXPECT_EQ(packetsBeforeQuiet(evenGroup(size, bytes)), 1U) << size << ' ' << bytes;
    }
}

TEST(PacketsBeforeQuiet, GroupsWithoutAWholeWindowAreNeeded) {
    for (std::size_t size = 0; size <= window; ++size)
        EXPECT_EQ(packetsBeforeQuiet(evenGroup(size, 100)), size);
}

TEST(PacketsBeforeQuiet, LargePacketAndAWindowBehindItAreNeeded) {
    Group group = evenGroup(40, 100);
    group[15].bytes = 1000;
    EXPECT_EQ(packetsBeforeQuiet(group), 16 + window);
    group[31].bytes = 1000;
    EXPECT_EQ(packetsBeforeQuiet(group), 40U) << "behind it, there is just one window";
    group[31].bytes = 100;
    group[1].bytes = 1000;
    EXPECT_EQ(packetsBeforeQuiet(group), 16 + window) << "the last one counts";
    group[15].bytes = 100;
    EXPECT_EQ(packetsBeforeQuiet(group), 2 + window);
}

TEST(PacketsBeforeQuiet, LargePacketInTheLastWindowNeedsAll) {
    for (std::size_t i = 32; i < 40; ++i) {
        Group group = evenGroup(40, 100);
        group[i].bytes = 1000;
        EXPECT_EQ(packetsBeforeQuiet(group), 40U) << i;
    }
}

TEST(PacketsBeforeQuiet, PacketStandsOutAboveThirteenTenths) {
    Group group = evenGroup(40, 100 - added);
    group[15].bytes = 130 - added;
    EXPECT_EQ(packetsBeforeQuiet(group), 1U);
    group[15].bytes = 131 - added;
    EXPECT_EQ(packetsBeforeQuiet(group), 16 + window);
    // A second one near by is what is usual there; the sums stay even, too.
    group[15 + window].bytes = 131 - added;
    EXPECT_EQ(packetsBeforeQuiet(group), 1U);
    group[15 + window].bytes = 100 - added;
    group[16 + window].bytes = 131 - added;
    EXPECT_EQ(packetsBeforeQuiet(group), 17 + 2 * window);
}

TEST(PacketsBeforeQuiet, SumsMayDifferByAHalf) {
    const auto stepsTo = [](std::int64_t bytes) {
        Group group = evenGroup(40, 100 - added);
        for (std::size_t i = 1; i <= 15; ++i)
            group[i].bytes = bytes - added;
        return packetsBeforeQuiet(group);
    };
    EXPECT_EQ(stepsTo(150), 1U);
    // Only the windows that begin with packets 1 to 8 hold nothing but larger ones.
    EXPECT_EQ(stepsTo(151), 9 + window);
    // A window with four that are twice as large is even still: the first one is packet 12.
    EXPECT_EQ(stepsTo(200), 12 + window);
}

TEST(PacketsBeforeQuiet, DissolveIsNeededUpToItsEnd) {
    Group group = evenGroup(60, 100);
    for (std::size_t i = 20; i < 32; ++i)
        group[i].bytes = 300;
    const std::size_t needed = packetsBeforeQuiet(group);
    EXPECT_GE(needed, 32U);
    EXPECT_LE(needed, 32 + window);
}

TEST(PacketsBeforeQuiet, PartOfTheKeyFrameEvensOutTinyPackets) {
    Group group = evenGroup(40, 0);
    for (std::size_t i = 1; i < 20; ++i)
        group[i].bytes = 5;
    EXPECT_EQ(packetsBeforeQuiet(group), 1U);
    group.front().bytes = 99;
    EXPECT_GT(packetsBeforeQuiet(group), 20U) << "they count as what they are";
}

TEST(PacketsBeforeQuiet, CountsInTheOrderOfDecoding) {
    Group shown = evenGroup(40, 100);
    shown[15].bytes = 1000;
    // Pictures up to 23 are needed; the one shown as 24 is stored before 22 and 23.
    EXPECT_EQ(packetsBeforeQuiet(withTwoBFrames(shown)), 17 + window);
}

TEST(PacketsBeforeQuiet, SizesFollowEachOtherAsTheyAreShown) {
    // Stored as large small small small, and shown in disorder: two windows in any order of
    // showing hold the same, while in the order of storing the large ones stand out.
    Group group = evenGroup(41, 100);
    for (std::size_t i = 1; i < group.size(); i += 4)
        group[i].bytes = 400;
    EXPECT_EQ(packetsBeforeQuiet(group), 1U);
    Group halves = group;
    // All that are large are shown first.
    for (std::size_t i = 1; i < halves.size(); ++i)
        halves[i].timestamp += halves[i].bytes == 400 ? 0 : 1000;
    EXPECT_GT(packetsBeforeQuiet(halves), 10U);
}

TEST(BeginsEvenly, TwoWindowsCount) {
    for (const std::size_t changed : {1U, 8U, 15U, 16U, 30U}) {
        Group group = evenGroup(40, 100);
        group[changed].bytes = 1000;
        EXPECT_EQ(beginsEvenly(group), changed >= 2 * window) << changed;
    }
    EXPECT_TRUE(beginsEvenly(evenGroup(40, 100)));
}

TEST(BeginsEvenly, NotWithoutAWholeWindow) {
    for (std::size_t size = 0; size <= window; ++size)
        EXPECT_FALSE(beginsEvenly(evenGroup(size, 100))) << size;
    EXPECT_TRUE(beginsEvenly(evenGroup(window + 1, 100)));
}

TEST(BringNoScene, SevenTwentiethsOfTheKeyFrameAreTheMost) {
    Group rest = evenGroup(10, 100);
    rest.front().bytes = 100;
    EXPECT_TRUE(bringNoScene(rest, keyBytes));
    rest[7].bytes = 350;
    EXPECT_TRUE(bringNoScene(rest, keyBytes));
    rest[7].bytes = 351;
    EXPECT_FALSE(bringNoScene(rest, keyBytes));
    EXPECT_TRUE(bringNoScene(rest, 1003));
    EXPECT_TRUE(bringNoScene({}, keyBytes)) << "nothing brings nothing";
    EXPECT_FALSE(bringNoScene(rest, 0));
}

TEST(BringNoScene, FirstAndLastPacketCount) {
    for (const std::size_t i : {0U, 9U}) {
        Group rest = evenGroup(10, 100);
        rest.front().bytes = 100;
        rest[i].bytes = 351;
        EXPECT_FALSE(bringNoScene(rest, keyBytes)) << i;
    }
}

// What holds for any group.

/// A group of any size and order; mostly of packets that are much alike, but for a few.
Group anyGroup() {
    const auto size = *rc::gen::resize(rc::kNominalSize, rc::gen::inRange<std::size_t>(1, 60));
    const auto spread = *rc::gen::element<std::int64_t>(1, 10, 60, 1000);
    const auto key = *rc::gen::inRange<std::int64_t>(0, 20000);
    Group group;
    for (std::size_t i = 0; i < size; ++i) {
        const auto bytes = i == 0 ? key : 100 + *rc::gen::inRange<std::int64_t>(0, spread);
        group.push_back({40 * static_cast<std::int64_t>(i), bytes});
    }
    const auto large = *rc::gen::container<std::vector<std::size_t>>(
        *rc::gen::element<std::size_t>(0, 1, 1, 2), rc::gen::inRange<std::size_t>(0, size / 2 + 1));
    for (const std::size_t i : large)
        group[i].bytes += *rc::gen::inRange<std::int64_t>(0, 2000);
    return *rc::gen::arbitrary<bool>() ? withTwoBFrames(group) : group;
}

/// What packets count for, in the order in which they are shown.
std::vector<std::int64_t> sizesAsShown(Group group) {
    const std::int64_t toEach = group.front().bytes / 100 + 1;
    std::sort(group.begin(), group.end(),
              [](const PacketFacts& a, const PacketFacts& b) { return a.timestamp < b.timestamp; });
    std::vector<std::int64_t> sizes;
    for (const PacketFacts& packet : group)
        sizes.push_back(packet.bytes + toEach);
    return sizes;
}

/// Says whether, of the pictures from `begin` on, all windows are even, and none stands out from
/// those near it but the key frame.
bool isQuietFrom(std::size_t begin, const std::vector<std::int64_t>& sizes) {
    std::vector<std::int64_t> sums;
    for (std::size_t i = begin; i + window <= sizes.size(); ++i) {
        std::int64_t sum = 0;
        for (std::size_t k = i; k < i + window; ++k)
            sum += sizes[k];
        sums.push_back(sum);
    }
    if (sums.empty()) return false;
    const auto [least, most] = std::minmax_element(sums.begin(), sums.end());
    if (*most * 2 > *least * 3) return false;
    for (std::size_t i = begin; i < sizes.size(); ++i) {
        std::int64_t near = 0;
        for (std::size_t k = 1; k < sizes.size(); ++k) {
            if (k != i && std::max(i, k) - std::min(i, k) <= window)
                near = std::max(near, sizes[k]);
        }
        if (sizes[i] * 10 > near * 13) return false;
    }
    return true;
}

RC_GTEST_PROP(PacketsBeforeQuiet, KeyFrameIsEnoughWhereAllIsQuietAndNowhereElse, ()) {
    const Group group = anyGroup();
    const bool isAllQuiet = isQuietFrom(1, sizesAsShown(group));
    RC_CLASSIFY(isAllQuiet);
    RC_ASSERT((group.size() > 1 && packetsBeforeQuiet(group) == 1) == isAllQuiet);
}

RC_GTEST_PROP(PacketsBeforeQuiet, RestIsQuiet, ()) {
    const Group group = anyGroup();
    const std::size_t needed = packetsBeforeQuiet(group);
    RC_ASSERT(needed >= 1U);
    RC_ASSERT(needed <= group.size());
    std::int64_t last = 0;
    for (std::size_t i = 0; i < needed; ++i)
        last = std::max(last, group[i].timestamp);
    const auto begin = static_cast<std::size_t>(
        std::count_if(group.begin(), group.end(),
                      [last](const PacketFacts& packet) { return packet.timestamp <= last; }));
    const bool hasRest = begin + window <= group.size();
    RC_CLASSIFY(hasRest && needed > 1);
    RC_ASSERT(!hasRest || isQuietFrom(begin, sizesAsShown(group)));
}

RC_GTEST_PROP(PacketsBeforeQuiet, NeverEndBeforeAPacketAsLargeAsTheKeyFrame, ()) {
    Group group = anyGroup();
    RC_PRE(group.size() > 1U);
    const auto at = *rc::gen::inRange<std::size_t>(1, group.size());
    group[at].bytes = 20000;
    RC_ASSERT(packetsBeforeQuiet(group) > at);
}

RC_GTEST_PROP(PacketsBeforeQuiet, DoNotDependOnTheOriginOrUnitOfTime, ()) {
    Group group = anyGroup();
    Group later = group;
    const auto origin = *rc::gen::inRange<std::int64_t>(-1'000'000'000, 1'000'000'000);
    for (PacketFacts& packet : later)
        packet.timestamp = origin + 3 * packet.timestamp;
    RC_ASSERT(packetsBeforeQuiet(later) == packetsBeforeQuiet(group));
}

}  // namespace
}  // namespace reference_host_tests
