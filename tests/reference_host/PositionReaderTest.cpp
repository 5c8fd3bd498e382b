#include <algorithm>
#include <fstream>
#include <random>

#include <gtest/gtest.h>

#include "reference_host/media/MediaError.h"
#include "reference_host/media/PositionReader.h"
#include "reference_host/media/inspect.h"
#include "tests/reference_host/NumberedVideo.h"

namespace reference_host_tests {
namespace {

using reference_host::media::FootageFacts;
using reference_host::media::PositionReader;
using reference_host::vision::Picture;

constexpr int frames = 50;
constexpr int groupFrames = 10;

/// What is decoded beyond the frame that was asked for: by the decoder's threads, which are at most
/// four, and because of the order of B-frames.
constexpr int framesAhead = 8;

/// A way to store a video.
struct Storage {
    const char* name;
    std::string arguments;
    /// Frames cannot be found by their timestamps.
    bool isReadFromStart = false;
};

void PrintTo(const Storage& storage, std::ostream* out) {
    *out << storage.name;
}

const std::string x264 = "-c:v libx264 -preset veryfast -g 10 -sc_threshold 0";
const std::string x265 =
    "-c:v libx265 -preset ultrafast -x265-params "
    "log-level=none:keyint=10:min-keyint=10:scenecut=0:bframes=4:b-adapt=0";
const std::string mpeg2 = "-c:v mpeg2video -q:v 2 -g 10 -bf 2 -sc_threshold 1000000000";
const std::string mpeg4 = "-c:v mpeg4 -q:v 2 -g 10 -sc_threshold 1000000000";

const std::vector<Storage> storages{
    {"h264.mp4", x264},
    {"h264.mkv", x264},
    {"h264.ts", x264},
    {"h264.flv", x264},
    {"fragments.mp4", x264 + " -movflags frag_keyframe+empty_moov"},
    {"shifted.mp4", x264 + " -movflags negative_cts_offsets"},
    {"h264_open.mp4", x264 + " -x264-params open-gop=1:bframes=3:b-pyramid=normal"},
    {"h264_open.ts", x264 + " -x264-params open-gop=1:bframes=3"},
    {"h264_refresh.mkv", x264 + " -x264-params intra-refresh=1:bframes=0"},
    {"h264.avi", x264, true},
    {"raw.h264", x264, true},
    {"hevc_open.mp4", x265 + ":open-gop=1"},
    {"hevc_open.mkv", x265 + ":open-gop=1"},
    {"hevc_open.ts", x265 + ":open-gop=1"},
    {"hevc_closed.mp4", x265 + ":open-gop=0"},
    {"vp8.webm", "-c:v libvpx -b:v 1M -cpu-used 8 -auto-alt-ref 1 -lag-in-frames 16 -g 10"},
    {"vp9.webm", "-c:v libvpx-vp9 -b:v 1M -cpu-used 8 -auto-alt-ref 1 -lag-in-frames 16 -g 10"},
    {"vp9.mp4", "-c:v libvpx-vp9 -b:v 1M -cpu-used 8 -g 10"},
    {"av1.mp4", "-c:v libaom-av1 -cpu-used 8 -g 10"},
    {"mpeg2.mp4", mpeg2},
    {"mpeg2.ts", mpeg2},
    {"mpeg2.mkv", mpeg2},
    // Frames that fill packs of 2 KB: only then does each of them have a timestamp.
    {"mpeg2.mpg", "-s 640x480 -maxrate 80M -bufsize 2M -muxrate 100M " + mpeg2},
    {"mpeg2.m2v", mpeg2, true},
    {"mpeg4.mp4", mpeg4 + " -bf 2"},
    {"mpeg4.mkv", mpeg4 + " -bf 2"},
    {"without_b.avi", mpeg4},
    {"with_b.avi", mpeg4 + " -bf 2", true},
    {"prores.mov", "-c:v prores_ks"},
    {"mjpeg.avi", "-c:v mjpeg"},
    {"mjpeg.mov", "-c:v mjpeg"},
    {"theora.ogv", "-c:v libtheora -q:v 9 -g 10"},
    {"a.gif", "", true},
    {"a.apng", "", true},
};

/// Reads a numbered video that is kept in memory as facts and pictures.
class Stored {
public:
    explicit Stored(const Storage& storage)
        : file(makeNumbered(files_, storage.name, frames, storage.arguments)),
          facts(reference_host::media::inspect(file)),
          pictures(numberedPictures(file)) {}

    void expectExact(const std::vector<NumberedPicture>& asked, const char* order) const {
        PositionReader reader(file, facts, {});
        Picture picture;
        for (const NumberedPicture& expected : asked) {
            ASSERT_TRUE(reader.read(expected.positionTicks, picture))
                << expected.positionTicks << ' ' << order;
            EXPECT_EQ(numberOf(picture), expected.number) << expected.positionTicks << ' ' << order;
        }
    }

private:
    FootageFiles files_;

public:
    const std::filesystem::path file;
    const FootageFacts facts;
    const std::vector<NumberedPicture> pictures;
};

void expectTheVeryPictures(const Stored& stored) {
    std::vector<NumberedPicture> asked = stored.pictures;
    stored.expectExact(asked, "ascending");
    std::reverse(asked.begin(), asked.end());
    stored.expectExact(asked, "descending");
    std::shuffle(asked.begin(), asked.end(), std::mt19937(1));
    stored.expectExact(asked, "in disorder");
}

void expectTheShortWay(const Stored& stored, bool isReadFromStart) {
    PositionReader reader(stored.file, stored.facts, {});
    Picture picture;
    ASSERT_TRUE(reader.read(stored.pictures.back().positionTicks, picture));
    const PositionReader::Effort effort = reader.effort();
    if (isReadFromStart) {
        EXPECT_EQ(effort.jumps, 0);
        EXPECT_GE(effort.frames, frames);
    } else {
        EXPECT_LE(effort.frames, 2 * groupFrames);
        EXPECT_LE(effort.packets, 3 * groupFrames + framesAhead);
    }
}

void expectOneWayForAscendingPositions(const Stored& stored) {
    PositionReader reader(stored.file, stored.facts, {});
    Picture picture;
    for (std::size_t i = 0; i < stored.pictures.size(); i += 3)
        ASSERT_TRUE(reader.read(stored.pictures[i].positionTicks, picture));
    EXPECT_EQ(reader.effort().jumps, 0);
    EXPECT_LE(reader.effort().frames, frames);
}

class EveryStorage : public testing::TestWithParam<Storage> {};

TEST_P(EveryStorage, GivesTheVeryPicturesOnTheShortestWay) {
    const Stored stored(GetParam());
    ASSERT_EQ(stored.pictures.size(), std::size_t{frames});
    EXPECT_EQ(stored.facts.keyTimestamps.size() < 2, GetParam().isReadFromStart);
    expectTheVeryPictures(stored);
    expectTheShortWay(stored, GetParam().isReadFromStart);
    expectOneWayForAscendingPositions(stored);
}

INSTANTIATE_TEST_SUITE_P(PositionReader, EveryStorage, testing::ValuesIn(storages),
                         [](const auto& param) {
                             std::string name = param.param.name;
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

const Storage simple{"a.mp4", x264};

TEST(PositionReader, GivesThePictureShownBetweenTwoPositions) {
    const Stored stored(simple);
    std::vector<NumberedPicture> asked;
    for (const NumberedPicture& picture : stored.pictures)
        asked.push_back({picture.positionTicks + 399999, picture.number});
    stored.expectExact(asked, "ascending");
    std::reverse(asked.begin(), asked.end());
    stored.expectExact(asked, "descending");
}

TEST(PositionReader, GivesTheLastPictureBeyondTheEnd) {
    const Stored stored(simple);
    stored.expectExact({{stored.facts.durationTicks, frames - 1},
                        {stored.facts.durationTicks * 1000, frames - 1},
                        {INT64_MAX, frames - 1}},
                       "beyond");
}

TEST(PositionReader, HasNoPictureBeforeTheFirst) {
    const Stored stored(simple);
    PositionReader reader(stored.file, stored.facts, {});
    Picture picture;
    EXPECT_FALSE(reader.read(-1, picture));
    EXPECT_FALSE(reader.read(INT64_MIN, picture));
    EXPECT_TRUE(reader.read(0, picture));
    EXPECT_FALSE(reader.read(-1, picture));
    EXPECT_TRUE(reader.read(0, picture)) << "and goes on";
}

TEST(PositionReader, LeapsOverGroupsBetween) {
    const Stored stored(simple);
    PositionReader reader(stored.file, stored.facts, {});
    Picture picture;
    ASSERT_TRUE(reader.read(stored.pictures[1].positionTicks, picture));
    ASSERT_TRUE(reader.read(stored.pictures[41].positionTicks, picture));
    EXPECT_EQ(numberOf(picture), 41);
    EXPECT_EQ(reader.effort().jumps, 1);
    EXPECT_LE(reader.effort().frames, 2 * framesAhead);
}

TEST(PositionReader, DecodesNothingForTheSamePictureAgain) {
    const Stored stored(simple);
    PositionReader reader(stored.file, stored.facts, {});
    Picture picture;
    ASSERT_TRUE(reader.read(stored.pictures[25].positionTicks, picture));
    const PositionReader::Effort before = reader.effort();
    ASSERT_TRUE(reader.read(stored.pictures[25].positionTicks, picture));
    EXPECT_EQ(reader.effort().frames, before.frames);
    EXPECT_EQ(reader.effort().jumps, before.jumps);
}

TEST(PositionReader, CountsFromTheFirstPictureThatAnEditListLeaves) {
    const FootageFiles files;
    const auto whole = makeNumbered(files, "whole.mp4", frames, x264 + " -bf 2");
    const auto part = files.make("part.mp4", "-ss 0.52 -i '" + whole.string() + "' -c copy");
    const FootageFacts facts = reference_host::media::inspect(part);
    std::vector<NumberedPicture> asked = numberedPictures(part);
    ASSERT_EQ(asked.front().number, 13);
    std::reverse(asked.begin(), asked.end());
    PositionReader reader(part, facts, {});
    Picture picture;
    for (const NumberedPicture& expected : asked) {
        ASSERT_TRUE(reader.read(expected.positionTicks, picture));
        EXPECT_EQ(numberOf(picture), expected.number);
    }
}

TEST(PositionReader, FollowsTimestampsThatStartAgain) {
    const FootageFiles files;
    // Of the second part, nothing is shown, and no search by timestamps may end there.
    const auto one = makeNumbered(files, "one.ts", 20, x264);
    const auto two = makeNumbered(files, "two.ts", 20, x264 + " -vf negate");
    std::ofstream(one, std::ios::binary | std::ios::app)
        << std::ifstream(two, std::ios::binary).rdbuf();
    const FootageFacts facts = reference_host::media::inspect(one);
    std::vector<NumberedPicture> asked = numberedPictures(one);
    ASSERT_GE(asked.size(), 20U);
    std::reverse(asked.begin(), asked.end());
    PositionReader reader(one, facts, {});
    Picture picture;
    for (const NumberedPicture& expected : asked) {
        ASSERT_TRUE(reader.read(expected.positionTicks, picture));
        EXPECT_EQ(numberOf(picture), expected.number) << expected.positionTicks;
    }
}

TEST(PositionReader, ReadsNothingOnceItIsStopped) {
    const Stored stored(simple);
    std::stop_source stop;
    PositionReader reader(stored.file, stored.facts, stop.get_token());
    Picture picture;
    EXPECT_TRUE(reader.read(stored.pictures[30].positionTicks, picture));
    stop.request_stop();
    EXPECT_FALSE(reader.read(stored.pictures[5].positionTicks, picture));
    EXPECT_FALSE(reader.read(stored.pictures[40].positionTicks, picture));
}

// What is damaged.

TEST(PositionReader, PassesOverPicturesThatCannotBeDecoded) {
    const FootageFiles files;
    // Every picture by itself, so that damage does not spread.
    const auto file = makeNumbered(files, "a.mkv", 20, "-c:v png");
    const FootageFacts facts = reference_host::media::inspect(file);
    std::string bytes = contentOf(file);
    std::size_t picture = 0;
    for (int i = 0; i <= 7; ++i)
        picture = bytes.find("\x89PNG", picture + 1);
    FootageFiles::patch(file, static_cast<std::int64_t>(picture), "damage!!");
    PositionReader reader(file, facts, {});
    Picture read;
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(reader.read(i * 400000, read), i != 7) << i;
        if (i == 7) continue;
        EXPECT_EQ(numberOf(read), i);
    }
}

TEST(PositionReader, HasNoPictureBeyondWhereAFileWasCutOff) {
    const FootageFiles files;
    for (const Storage& storage : {Storage{"a.mkv", "-c:v mjpeg"}, Storage{"a.avi", "-c:v mjpeg"},
                                   Storage{"a.ts", mpeg2}, Storage{"a.h264", x264}}) {
        SCOPED_TRACE(storage.name);
        const auto file = makeNumbered(files, storage.name, frames, storage.arguments);
        const FootageFacts facts = reference_host::media::inspect(file);
        FootageFiles::truncate(file, 0.5);
        PositionReader reader(file, facts, {});
        Picture picture;
        EXPECT_FALSE(reader.read(40 * 400000, picture));
        EXPECT_FALSE(reader.read(facts.durationTicks - 1, picture));
        ASSERT_TRUE(reader.read(5 * 400000, picture)) << "and goes on";
        EXPECT_EQ(numberOf(picture), 5);
    }
}

TEST(PositionReader, RefusesAFileThatHasGone) {
    const Stored stored(simple);
    std::filesystem::remove(stored.file);
    EXPECT_THROW(PositionReader(stored.file, stored.facts, {}), reference_host::media::MediaError);
}

TEST(PositionReader, SurvivesAFileThatHasBecomeAnother) {
    const FootageFiles files;
    const auto file = makeNumbered(files, "a.mkv", frames, x264);
    const FootageFacts facts = reference_host::media::inspect(file);
    makeNumbered(files, "a.mkv", 5, "-c:v ffv1");
    PositionReader reader(file, facts, {});
    Picture picture;
    EXPECT_FALSE(reader.read(30 * 400000, picture));
    EXPECT_TRUE(reader.read(0, picture));
    files.write("a.mkv", "All work and no play makes Jack a dull boy.\n");
    EXPECT_THROW(PositionReader(file, facts, {}), reference_host::media::MediaError);
}

}  // namespace
}  // namespace reference_host_tests
