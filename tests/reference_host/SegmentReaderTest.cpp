#include <algorithm>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/media/Container.h"
#include "reference_host/media/SegmentReader.h"
#include "tests/reference_host/FootageFiles.h"

namespace reference_host_tests {
namespace {

using namespace reference_host::media;

const std::string closedGroups = "-c:v libx264 -preset ultrafast -g 10 -bf 0 -sc_threshold 0";
const std::string openGroups =
    "-c:v libx264 -preset veryfast -g 12 -sc_threshold 0 "
    "-x264-params open-gop=1:bframes=3:b-adapt=0:b-pyramid=none";

/// What is compared of packets.
struct PacketContent {
    std::int64_t timestamp;
    bool isKey;
    std::vector<std::uint8_t> bytes;

    bool operator==(const PacketContent&) const = default;
};

using Contents = std::vector<PacketContent>;

PacketContent contentOf(const AVPacket& packet) {
    return {packet.pts,
            (packet.flags & AV_PKT_FLAG_KEY) != 0,
            {packet.data, packet.data + packet.size}};
}

Contents contentsOf(const PacketGroup& group) {
    Contents contents;
    for (const auto& packet : group)
        contents.push_back(contentOf(*packet));
    return contents;
}

std::vector<std::size_t> sizesOf(const std::vector<PacketGroup>& groups) {
    std::vector<std::size_t> sizes;
    for (const PacketGroup& group : groups)
        sizes.push_back(group.size());
    return sizes;
}

/// Returns all segments, kept until the last one is read.
std::vector<Segment> segmentsOf(const std::filesystem::path& file) {
    Container container(file, {});
    SegmentReader reader(container);
    std::vector<Segment> segments;
    while (std::optional<Segment> segment = reader.next())
        segments.push_back(std::move(*segment));
    EXPECT_FALSE(reader.next()) << "the end remains";
    return segments;
}

/// Returns all packets as they are in the file.
Contents packetsOf(const std::filesystem::path& file) {
    Container container(file, {});
    const AvPointer<AVPacket> packet = adopt(av_packet_alloc());
    Contents contents;
    while (container.read(*packet))
        contents.push_back(contentOf(*packet));
    return contents;
}

/// Expects that `segments` hold the packets of `file`, each once and in order, and that each of
/// them can be decoded to its end.
void expectWhole(const std::vector<Segment>& segments, const std::filesystem::path& file) {
    Contents contents;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const Segment& segment = segments[i];
        EXPECT_EQ(segment.number, static_cast<std::int64_t>(i));
        ASSERT_FALSE(segment.groups.empty());
        for (const PacketGroup& group : segment.groups) {
            ASSERT_FALSE(group.empty());
            const Contents packets = contentsOf(group);
            EXPECT_TRUE(packets.front().isKey);
            contents.insert(contents.end(), packets.begin(), packets.end());
        }
        const Contents next = contentsOf(segment.next);
        EXPECT_EQ(next.empty(), i + 1 == segments.size());
        if (next.empty()) continue;
        const Contents follows = contentsOf(segments[i + 1].groups.front());
        ASSERT_LE(next.size(), follows.size());
        EXPECT_TRUE(std::equal(next.begin(), next.end(), follows.begin()));
    }
    EXPECT_EQ(contents, packetsOf(file));
}

TEST(SegmentReader, TakesWholeGroupsUpToNinetyPackets) {
    const FootageFiles files;
    const auto file = files.makeVideo("a.mp4", 250, closedGroups);
    const std::vector<Segment> segments = segmentsOf(file);
    ASSERT_EQ(segments.size(), 3U);
    EXPECT_EQ(sizesOf(segments[0].groups), std::vector<std::size_t>(9, 10));
    EXPECT_EQ(sizesOf(segments[1].groups), std::vector<std::size_t>(9, 10));
    EXPECT_EQ(sizesOf(segments[2].groups), std::vector<std::size_t>(7, 10));
    EXPECT_EQ(segments[0].next.size(), 1U) << "nothing is shown before a closed group";
    EXPECT_EQ(segments[1].next.size(), 1U);
    expectWhole(segments, file);
}

TEST(SegmentReader, EndsASegmentBehindTheGroupThatFillsIt) {
    const FootageFiles files;
    const auto file =
        files.makeVideo("a.mp4", 200, "-c:v libx264 -preset ultrafast -g 40 -bf 0 -sc_threshold 0");
    const std::vector<Segment> segments = segmentsOf(file);
    ASSERT_EQ(segments.size(), 2U);
    EXPECT_EQ(sizesOf(segments[0].groups), (std::vector<std::size_t>{40, 40, 40}));
    EXPECT_EQ(sizesOf(segments[1].groups), (std::vector<std::size_t>{40, 40}));
    expectWhole(segments, file);
}

TEST(SegmentReader, ShortVideoIsOneSegment) {
    const FootageFiles files;
    for (const int frames : {1, 5, 90}) {
        const auto file = files.makeVideo("a.mp4", frames, closedGroups);
        const std::vector<Segment> segments = segmentsOf(file);
        EXPECT_EQ(segments.size(), 1U) << frames;
        expectWhole(segments, file);
    }
}

TEST(SegmentReader, GroupsEightPicturesThatStandAlone) {
    const FootageFiles files;
    for (const auto& [name, coder] :
         {std::pair("a.avi", "mjpeg"), std::pair("a.mov", "prores_ks"),
          std::pair("a.mkv", "huffyuv"), std::pair("a.nut", "rawvideo")}) {
        SCOPED_TRACE(coder);
        const auto file = files.makeVideo(name, 101, std::string("-c:v ") + coder);
        const std::vector<Segment> segments = segmentsOf(file);
        ASSERT_EQ(segments.size(), 2U);
        EXPECT_EQ(sizesOf(segments[0].groups), std::vector<std::size_t>(12, 8));
        EXPECT_EQ(sizesOf(segments[1].groups), std::vector<std::size_t>{5});
        EXPECT_EQ(segments[0].next.size(), 1U);
        expectWhole(segments, file);
    }
}

TEST(SegmentReader, KeyFramesOfOtherFormatsMakeGroupsHoweverShort) {
    const FootageFiles files;
    const auto file = files.makeVideo("a.mp4", 20, "-c:v libx264 -preset ultrafast -g 1");
    EXPECT_EQ(sizesOf(segmentsOf(file).front().groups), std::vector<std::size_t>(20, 1));
}

/// Expects `next` to be a key frame and `leading` packets that are shown before it.
void expectLeading(const PacketGroup& next, std::size_t leading) {
    ASSERT_EQ(next.size(), 1 + leading);
    EXPECT_NE(next.front()->flags & AV_PKT_FLAG_KEY, 0);
    for (std::size_t i = 1; i < next.size(); ++i)
        EXPECT_LT(next[i]->pts, next.front()->pts);
}

TEST(SegmentReader, NextHoldsThePicturesThatAreShownBeforeItsKeyFrame) {
    const FootageFiles files;
    struct Case {
        const char* name;
        std::string stored;
        std::size_t leading;
    };
    const std::string mpeg2 = "-c:v mpeg2video -g 12 -bf 2 -sc_threshold 1000000000";
    const std::vector<Case> cases{{"a.mp4", openGroups, 3},
                                  {"a.mkv", openGroups, 3},
                                  {"b.mkv", mpeg2, 2},
                                  {"c.mkv", mpeg2 + " -flags +cgop", 0}};
    for (const Case& one : cases) {
        SCOPED_TRACE(one.name);
        const auto file = files.makeVideo(one.name, 200, one.stored);
        const std::vector<Segment> segments = segmentsOf(file);
        ASSERT_EQ(segments.size(), 3U);
        expectLeading(segments[0].next, one.leading);
        expectLeading(segments[1].next, one.leading);
        expectWhole(segments, file);
    }
}

// What takes too much memory.

TEST(SegmentReader, HoldsFifteenHundredPacketsOfAGroupAndNoMore) {
    const FootageFiles files;
    const std::string oneGroup = "-c:v libx264 -preset ultrafast -g 9999 -sc_threshold 0";
    const auto longest = segmentsOf(files.makeVideo("a.mp4", 1500, oneGroup));
    ASSERT_EQ(longest.size(), 1U);
    EXPECT_EQ(sizesOf(longest.front().groups), std::vector<std::size_t>{1500});
    EXPECT_THROW(segmentsOf(files.makeVideo("b.mp4", 1501, oneGroup)), SegmentTooLong);
}

TEST(SegmentReader, RefusesAGroupOfTooManyBytes) {
    const FootageFiles files;
    // Twelve and a half megabytes each: 48 MB are exceeded by the fifth.
    const std::string raw = "-s 2560x1632 -pix_fmt yuv444p -c:v rawvideo";
    const auto four = files.makeVideo("a.nut", 4, raw);
    EXPECT_EQ(segmentsOf(four).size(), 1U);
    EXPECT_THROW(segmentsOf(files.makeVideo("b.nut", 5, raw)), SegmentTooLong);
}

TEST(SegmentReader, EndsASegmentWhereItsBytesExceedTheLimit) {
    const FootageFiles files;
    // Groups of about 18 MB: three exceed 48 MB.
    const auto file = files.makeVideo("a.nut", 33, "-s 1280x1184 -pix_fmt yuv420p -c:v rawvideo");
    const std::vector<Segment> segments = segmentsOf(file);
    ASSERT_EQ(segments.size(), 2U);
    EXPECT_EQ(sizesOf(segments[0].groups), (std::vector<std::size_t>{8, 8, 8}));
    EXPECT_EQ(sizesOf(segments[1].groups), (std::vector<std::size_t>{8, 1}));
}

// Parameters that change on the way.

TEST(SegmentReader, HandsChangedParametersToEveryKeyFrameBehindThem) {
    const FootageFiles files;
    const std::string stored = "-c:v libx264 -preset ultrafast -g 40 -bf 0 -sc_threshold 0 -f flv ";
    const auto one = files.make("one.flv", movingPictures(40, "64x48") + " " + stored);
    const auto two =
        files.make("two.flv", movingPictures(160, "128x96") + " -output_ts_offset 1.6 " + stored);
    // Behind the head of its file, the second part goes on as if it were of the first.
    constexpr std::size_t headBytes = 13;
    std::ofstream(one, std::ios::binary | std::ios::app)
        << reference_host_tests::contentOf(two).substr(headBytes);
    const std::vector<Segment> segments = segmentsOf(one);
    ASSERT_EQ(segments.size(), 2U);
    const auto hasParameters = [](const PacketGroup& group) {
        return av_packet_get_side_data(group.front().get(), AV_PKT_DATA_NEW_EXTRADATA, nullptr) !=
               nullptr;
    };
    ASSERT_EQ(sizesOf(segments[0].groups), (std::vector<std::size_t>{40, 40, 40}));
    EXPECT_FALSE(hasParameters(segments[0].groups[0]));
    EXPECT_TRUE(hasParameters(segments[0].groups[1]));
    EXPECT_TRUE(hasParameters(segments[0].groups[2]));
    EXPECT_TRUE(hasParameters(segments[0].next));
    EXPECT_TRUE(hasParameters(segments[1].groups[0]));
    EXPECT_TRUE(hasParameters(segments[1].groups[1]));
}

}  // namespace
}  // namespace reference_host_tests
