#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/media/SegmentPackets.h"

namespace reference_host_tests {
namespace {

using namespace reference_host::media;

constexpr int keyBytes = 1000;
constexpr int bytes = 100;

AvPointer<AVPacket> packetOf(std::int64_t timestamp, int size) {
    AvPointer<AVPacket> packet = adopt(av_packet_alloc());
    EXPECT_EQ(av_new_packet(packet.get(), size), 0);
    packet->pts = timestamp;
    return packet;
}

/// A group of packets ten units of time apart, of one size behind its key frame.
PacketGroup groupOf(std::int64_t begin, int size) {
    PacketGroup group;
    for (int i = 0; i < size; ++i)
        group.push_back(packetOf(begin + 10 * i, i == 0 ? keyBytes : bytes));
    return group;
}

/// Has two of a group's pictures shown before its key frame.
PacketGroup withLeading(PacketGroup group) {
    group[1]->pts = group[0]->pts - 5;
    group[2]->pts = group[0]->pts - 3;
    return group;
}

/// A segment of two groups of forty packets, and the next key frame.
Segment twoGroups() {
    Segment segment;
    segment.groups.push_back(groupOf(0, 40));
    segment.groups.push_back(groupOf(400, 40));
    segment.next = groupOf(800, 1);
    return segment;
}

TEST(SegmentPackets, AreThoseOfTheSegmentAndTheNextKeyFrame) {
    const Segment segment = twoGroups();
    const SegmentPackets packets(segment, {});
    EXPECT_EQ(packets.groups(), 2U);
    EXPECT_EQ(packets.count(), 80U);
    EXPECT_EQ(packets.keyOf(1), segment.groups[1].front().get());
    EXPECT_EQ(packets.keyOf(2), segment.next.front().get());
    EXPECT_TRUE(packets.isFirstOfVideo(0));
    EXPECT_FALSE(packets.isFirstOfVideo(1));
}

TEST(SegmentPackets, AreGivenInOneRow) {
    Segment segment = twoGroups();
    segment.standsAlone = true;
    const SegmentPackets packets(segment, {});
    EXPECT_TRUE(packets.standAlone());
    const auto all = packets.all();
    ASSERT_EQ(all.size(), 80U);
    for (std::size_t i = 0; i < all.size(); ++i)
        EXPECT_EQ(all[i]->pts, static_cast<std::int64_t>(10 * i));
}

TEST(SegmentPackets, HaveNoNextKeyFrameAtTheEndOfTheVideo) {
    Segment segment;
    segment.number = 7;
    segment.groups.push_back(groupOf(0, 40));
    const SegmentPackets packets(segment, {1000, 1000, 0});
    EXPECT_EQ(packets.keyOf(1), nullptr);
    EXPECT_FALSE(packets.isFirstOfVideo(0));
    EXPECT_EQ(packets.needed(0), 40U) << "nobody knows what comes behind them";
}

TEST(SegmentPackets, LeadWhereTheyAreShownBeforeTheKeyFrame) {
    Segment segment;
    segment.groups.push_back(groupOf(0, 40));
    segment.groups.push_back(withLeading(groupOf(400, 40)));
    const SegmentPackets packets(segment, {});
    EXPECT_FALSE(packets.hasLeading(0));
    EXPECT_TRUE(packets.hasLeading(1));
    EXPECT_TRUE(packets.isLeading(1, 2));
    EXPECT_FALSE(packets.isLeading(1, 3));
    EXPECT_FALSE(packets.hasLeading(2)) << "nothing";
}

TEST(SegmentPackets, AreNeededUpToTheLongestGap) {
    const Segment segment = twoGroups();
    const auto neededWith = [&](const LongestGap& gap) {
        return SegmentPackets(segment, gap).needed(0);
    };
    EXPECT_EQ(neededWith({400, 400, 0}), 1U);
    // The last one that is decoded is shown at 200 or later.
    EXPECT_EQ(neededWith({200, 200, 0}), 21U);
    EXPECT_EQ(neededWith({100, 200, 0.25}), 31U) << "a quarter of the group";
    EXPECT_EQ(neededWith({150, 200, 0.25}), 26U) << "always";
    EXPECT_EQ(neededWith({100, 150, 0.75}), 26U) << "at most";
    EXPECT_EQ(neededWith({80, 80, 0}), 40U) << "less than eight are not left out";
    EXPECT_EQ(neededWith({90, 90, 0}), 32U);
}

TEST(SegmentPackets, AreNeededWhereTheyAreUneven) {
    const Segment segment = twoGroups();
    segment.groups[0][10]->size = keyBytes;
    const SegmentPackets packets(segment, {400, 400, 0});
    EXPECT_EQ(packets.needed(0), 19U) << "and eight behind";
    EXPECT_EQ(packets.needed(1), 1U);
}

TEST(SegmentPackets, AreBriefAndSmall) {
    const Segment segment = twoGroups();
    EXPECT_TRUE(SegmentPackets(segment, {0, 0, 0, 400}).areBriefAndSmall(0));
    EXPECT_FALSE(SegmentPackets(segment, {0, 0, 0, 399}).areBriefAndSmall(0));
    segment.groups[0][20]->size = 351;
    EXPECT_FALSE(SegmentPackets(segment, {0, 0, 0, 400}).areBriefAndSmall(0));
}

TEST(SegmentPackets, BringNoSceneAsLargeAsTheNextKeyFrame) {
    const Segment segment = twoGroups();
    segment.groups[1][20]->size = 350;
    const SegmentPackets packets(segment, {});
    EXPECT_TRUE(packets.bringNoScene(1, 1));
    segment.next[0]->size = 999;
    EXPECT_FALSE(packets.bringNoScene(1, 1));
    EXPECT_FALSE(packets.bringNoScene(1, 20));
    EXPECT_TRUE(packets.bringNoScene(1, 21));
}

TEST(SegmentPackets, BeginEvenlyIfTheyAreKnown) {
    const Segment segment = twoGroups();
    const SegmentPackets packets(segment, {});
    EXPECT_TRUE(packets.beginEvenly(1));
    EXPECT_FALSE(packets.beginEvenly(2)) << "the next segment's";
    segment.groups[1][3]->size = keyBytes;
    EXPECT_FALSE(packets.beginEvenly(1));
}

TEST(SegmentPackets, LastMomentsAreAsLongAsABriefScene) {
    const Segment segment = twoGroups();
    const SegmentPackets packets(segment, {0, 0, 0, 125});
    EXPECT_EQ(packets.lastMomentsBefore(1), 275);
    EXPECT_EQ(packets.lastMomentsBefore(2), 675);
}

TEST(SegmentPackets, TellOfTheEndByTheLargestAndTheLast) {
    Segment segment = twoGroups();
    PacketGroup& group = segment.groups[0];
    group[31]->size = 900;  // One too early.
    group[34]->size = 200;
    group[39]->size = 800;
    // Stored in another order than shown.
    std::swap(group[38], group[39]);
    const SegmentPackets packets(segment, {});
    EXPECT_EQ(packets.tellingEnd(0),
              (std::vector<const AVPacket*>{group[34].get(), group[38].get()}));
    group[32]->size = 201;
    EXPECT_EQ(packets.tellingEnd(0),
              (std::vector<const AVPacket*>{group[32].get(), group[38].get()}));
}

}  // namespace
}  // namespace reference_host_tests
