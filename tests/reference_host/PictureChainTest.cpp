#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/media/Container.h"
#include "reference_host/media/PictureChain.h"
#include "tests/reference_host/FootageFiles.h"

namespace reference_host_tests {
namespace {

using namespace reference_host::media;
using Timestamps = std::vector<std::int64_t>;

const std::string x264 = "-c:v libx264 -preset veryfast -g 25 -sc_threshold 0 ";

/// A way to store a video.
struct Storage {
    const char* name;
    std::string arguments;
};

/// The packets of a file, a chain that decodes them, and what has come of it.
struct ChainOfFile {
    explicit ChainOfFile(const std::filesystem::path& file) : container(file, {}) {
        AvPointer<AVPacket> packet = adopt(av_packet_alloc());
        while (container.read(*packet)) {
            packets.push_back(adopt(av_packet_clone(packet.get())));
            packet = adopt(av_packet_alloc());
        }
    }

    void send(std::size_t first, std::size_t end) {
        for (std::size_t i = first; i < end; ++i)
            chain.send(*packets[i], {}, take);
    }

    /// When the packets are shown, in the order in which they are decoded.
    Timestamps stored(std::size_t first, std::size_t end) const {
        Timestamps timestamps;
        for (std::size_t i = first; i < end; ++i)
            timestamps.push_back(packets[i]->pts);
        return timestamps;
    }

    /// Returns the place of the first key frame behind a packet.
    std::size_t nextKey(std::size_t packet) const {
        const auto isKey = [](const auto& one) { return (one->flags & AV_PKT_FLAG_KEY) != 0; };
        const auto from = packets.begin() + static_cast<std::ptrdiff_t>(packet) + 1;
        return static_cast<std::size_t>(std::find_if(from, packets.end(), isKey) - packets.begin());
    }

    Container container;
    std::vector<AvPointer<AVPacket>> packets;
    Timestamps taken;
    const PictureChain::Take take = [this](const AVFrame&, std::int64_t timestamp) {
        taken.push_back(timestamp);
    };
    PictureChain chain{container.video()};
};

/// Replaces all but the beginning of a packet by what means nothing.
void breakOff(AVPacket& packet) {
    ASSERT_GE(av_packet_make_writable(&packet), 0);
    std::fill(packet.data + packet.size / 4, packet.data + packet.size, std::uint8_t{0xa5});
}

TEST(PictureChain, GivesEachPictureAtOnceInFormatsThatStoreThemInAnotherOrder) {
    const FootageFiles files;
    for (const Storage& storage :
         {Storage{"a.mp4", x264 + "-bf 3"}, Storage{"b.mp4", x264 + "-bf 0"},
          Storage{"c.mkv", "-c:v libx265 -preset ultrafast -x265-params log-level=none:keyint=25"},
          Storage{"d.mp4", "-c:v mpeg4 -g 25 -bf 2"}, Storage{"e.mkv", "-c:v mpeg2video -bf 2"}}) {
        SCOPED_TRACE(storage.name);
        ChainOfFile file(files.makeVideo(storage.name, 50, storage.arguments));
        EXPECT_TRUE(file.chain.givesAtOnce());
        for (std::size_t i = 0; i < file.packets.size(); ++i) {
            file.send(i, i + 1);
            ASSERT_EQ(file.taken, file.stored(0, i + 1));
        }
        EXPECT_TRUE(file.chain.end(file.take));
        EXPECT_EQ(file.taken.size(), 50U) << "nothing is left to come";
        EXPECT_EQ(file.chain.takeDamage(), 0);
    }
}

TEST(PictureChain, GivesThePicturesOfOtherFormatsInTheirOrder) {
    const FootageFiles files;
    for (const Storage& storage :
         {Storage{"a.webm",
                  "-c:v libvpx-vp9 -b:v 1M -cpu-used 8 -auto-alt-ref 1 "
                  "-lag-in-frames 16 -g 25"},
          Storage{"b.webm", "-c:v libvpx -b:v 1M -cpu-used 8 -g 25"},
          Storage{"c.avi", "-c:v mjpeg"}, Storage{"d.mov", "-c:v prores_ks"}}) {
        SCOPED_TRACE(storage.name);
        ChainOfFile file(files.makeVideo(storage.name, 50, storage.arguments));
        EXPECT_FALSE(file.chain.givesAtOnce());
        file.send(0, file.packets.size());
        EXPECT_TRUE(file.chain.end(file.take));
        EXPECT_EQ(file.taken.size(), 50U);
        EXPECT_TRUE(std::is_sorted(file.taken.begin(), file.taken.end()));
    }
}

TEST(PictureChain, IsBegunFromItsFirstPacketToItsEnd) {
    const FootageFiles files;
    ChainOfFile file(files.makeVideo("a.mp4", 50, x264));
    EXPECT_FALSE(file.chain.isBegun());
    EXPECT_TRUE(file.chain.end(file.take)) << "nothing has been announced";
    file.send(0, 10);
    EXPECT_TRUE(file.chain.isBegun());
    EXPECT_TRUE(file.chain.end(file.take));
    EXPECT_FALSE(file.chain.isBegun());
    file.taken.clear();
    file.send(25, 50);
    EXPECT_EQ(file.taken, file.stored(25, 50)) << "another group";
    EXPECT_TRUE(file.chain.end(file.take));
}

TEST(PictureChain, LeavesOutWhatNoOtherPictureNeeds) {
    const FootageFiles files;
    ChainOfFile file(
        files.makeVideo("a.mp4", 25, x264 + "-x264-params bframes=3:b-adapt=0:b-pyramid=none"));
    for (const auto& packet : file.packets)
        file.chain.send(*packet, {.leavesOutUnneeded = true}, file.take);
    // One key frame, and of each four pictures behind it the one that is stored first.
    EXPECT_EQ(file.taken.size(), 7U);
    EXPECT_TRUE(file.chain.end(file.take)) << "what was left out was not announced";
    EXPECT_EQ(file.chain.takeDamage(), 0);
}

TEST(PictureChain, SaysAtItsEndThatPacketsLackedWhatTheyNeed) {
    const FootageFiles files;
    // Behind its later key frames, the picture is refreshed bit by bit.
    ChainOfFile file(files.makeVideo("a.mkv", 75, x264 + "-x264-params intra-refresh=1:bframes=0"));
    const std::size_t next = file.nextKey(0);
    ASSERT_GT(file.packets.size(), next);
    file.send(0, next);
    EXPECT_TRUE(file.chain.end(file.take));
    file.send(next, file.nextKey(next));
    EXPECT_FALSE(file.chain.end(file.take));
    file.send(0, next);
    EXPECT_TRUE(file.chain.end(file.take)) << "what was lacking before is forgotten";
}

TEST(PictureChain, MissesNothingWhenItEndsSoonBehindAKeyFrameOfAnOpenGroup) {
    const FootageFiles files;
    ChainOfFile file(files.makeVideo("a.mkv", 75,
                                     x264 + "-x264-params open-gop=1:keyint=27:bframes=3:b-adapt=0:"
                                            "b-pyramid=normal"));
    const std::size_t key = file.nextKey(0);
    ASSERT_GT(file.packets.size(), key + 8);
    // Behind the key frame come those that are shown before it, and need what is before it.
    std::size_t behind = key + 1;
    while (file.packets[behind]->pts < file.packets[key]->pts)
        ++behind;
    ASSERT_GT(behind, key + 1);
    for (std::size_t count = 0; count < 6; ++count) {
        file.send(key, key + 1);
        file.send(behind, behind + count);
        EXPECT_TRUE(file.chain.end(file.take)) << count;
        EXPECT_EQ(file.chain.takeDamage(), 0) << count;
    }
}

TEST(PictureChain, MissesWhatTheFirstPicturesBehindAKeyFrameInNameOnlyNeed) {
    const FootageFiles files;
    ChainOfFile file(
        files.makeVideo("a.mkv", 75, x264 + "-x264-params intra-refresh=1:bframes=3:b-adapt=0"));
    const std::size_t key = file.nextKey(0);
    for (std::size_t count = 1; count < 6; ++count) {
        file.send(key, key + count);
        EXPECT_FALSE(file.chain.end(file.take)) << count;
    }
}

TEST(PictureChain, CountsDamageOnce) {
    const FootageFiles files;
    ChainOfFile file(files.makeVideo("a.mp4", 50, "-s 320x240 " + x264 + "-bf 0"));
    file.send(0, 5);
    EXPECT_FALSE(file.chain.hasMetDamage());
    breakOff(*file.packets[5]);
    file.send(5, 25);
    file.chain.end(file.take);
    EXPECT_EQ(file.chain.takeDamage(), 1);
    EXPECT_EQ(file.chain.takeDamage(), 0) << "it has been told of";
    EXPECT_TRUE(file.chain.hasMetDamage());
    file.send(25, 50);
    EXPECT_TRUE(file.chain.end(file.take));
    EXPECT_EQ(file.chain.takeDamage(), 0);
    EXPECT_TRUE(file.chain.hasMetDamage()) << "for ever";
}

TEST(PictureChain, GlimpsesAtAPictureWithoutWhatItNeeds) {
    const FootageFiles files;
    for (const Storage& storage :
         {Storage{"a.mp4", x264 + "-bf 0"}, Storage{"b.mp4", x264 + "-bf 3 -refs 4"},
          Storage{"c.mkv",
                  "-c:v libx265 -preset ultrafast "
                  "-x265-params log-level=none:keyint=25:min-keyint=25:scenecut=0"},
          Storage{"d.mp4", "-c:v mpeg4 -g 25"}}) {
        SCOPED_TRACE(storage.name);
        ChainOfFile file(files.makeVideo(storage.name, 50, "-s 320x240 " + storage.arguments));
        file.send(0, 5);
        file.taken.clear();
        file.chain.glimpse(*file.packets[24], file.take);
        EXPECT_EQ(file.taken, file.stored(24, 25));
        EXPECT_TRUE(file.chain.end(file.take)) << "nothing is wrong with the file";
        EXPECT_EQ(file.chain.takeDamage(), 0) << "it is made up on purpose";
        file.taken.clear();
        const std::size_t key = file.nextKey(0);
        file.send(key, file.packets.size());
        EXPECT_EQ(file.taken, file.stored(key, file.packets.size()));
        EXPECT_TRUE(file.chain.end(file.take));
        EXPECT_EQ(file.chain.takeDamage(), 0);
    }
}

TEST(PictureChain, DoesNotCountTheDamageOfAGlimpse) {
    const FootageFiles files;
    ChainOfFile file(files.makeVideo("a.mp4", 25, "-s 320x240 " + x264 + "-bf 0"));
    breakOff(*file.packets[3]);
    breakOff(*file.packets[24]);
    file.send(0, 5);
    file.chain.glimpse(*file.packets[24], file.take);
    file.chain.end(file.take);
    EXPECT_EQ(file.chain.takeDamage(), 1) << "of what was decoded in its turn";
    EXPECT_TRUE(file.chain.hasMetDamage());
}

}  // namespace
}  // namespace reference_host_tests
