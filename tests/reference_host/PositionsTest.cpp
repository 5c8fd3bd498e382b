#include <fstream>
#include <vector>

#include <gtest/gtest.h>

#include "tests/reference_host/FootageFiles.h"
#include "tests/reference_host/PictureReaders.h"

namespace reference_host_tests {
namespace {

using Positions = std::vector<std::int64_t>;

std::int64_t durationOf(const std::filesystem::path& file) {
    return mediaOf(import(file)).getDuration();
}

/// Expects `frames` pictures, 25 a second, in the whole chain of import and reading.
void expectEven(const std::filesystem::path& file, int frames) {
    EXPECT_EQ(positionsOf(file), evenPositions(frames));
    EXPECT_EQ(durationOf(file), frames * KOR::ticksPerSecond / 25);
}

TEST(Positions, RoundToTheNearestTick) {
    const FootageFiles files;
    const auto file = files.make(
        "a.mp4", "-f lavfi -i testsrc2=size=64x48:rate=30000/1001 -frames:v 4 -c:v libx264");
    // Frame i stands at i * 1001 / 30000 seconds.
    EXPECT_EQ(positionsOf(file), (Positions{0, 333667, 667333, 1001000}));
    EXPECT_EQ(durationOf(file), 1334667);
}

TEST(Positions, FollowAVariableFrameRate) {
    const FootageFiles files;
    const auto file =
        files.make("a.mkv", movingPictures(5) +
                                " -vf settb=1/1000,setpts='N*N*100' -vsync "
                                "passthrough -enc_time_base 1/1000 -c:v libx264 -bf 0");
    EXPECT_EQ(positionsOf(file), (Positions{0, 1000000, 4000000, 9000000, 16000000}));
    EXPECT_GT(durationOf(file), 16000000);
}

TEST(Positions, BeginAtTheFirstFrameOfADelayedVideo) {
    const FootageFiles files;
    expectEven(files.makeVideo("a.mkv", 6, "-c:v libx264 -output_ts_offset 2.5"), 6);
    expectEven(files.makeVideo("a.ts", 6, "-c:v libx264 -output_ts_offset 100"), 6);
}

TEST(Positions, BeginAtTheFirstFrameBehindEarlierSound) {
    const FootageFiles files;
    expectEven(
        files.make("a.mp4", "-f lavfi -i sine=d=2 -itsoffset 1.2 " + movingPictures(6) +
                                " -vsync passthrough -c:v libx264 -c:a aac -map 0:a -map 1:v"),
        6);
}

TEST(Positions, StandInOrderWithBFrames) {
    const FootageFiles files;
    const std::string manyBFrames = "-c:v libx264 -bf 3 -x264-params b-adapt=0:b-pyramid=normal";
    expectEven(files.makeVideo("a.mp4", 12, manyBFrames), 12);
    expectEven(files.makeVideo("b.mp4", 12, manyBFrames + " -movflags negative_cts_offsets"), 12);
    expectEven(files.makeVideo("a.mkv", 12, manyBFrames), 12);
    expectEven(files.makeVideo("a.ts", 12, manyBFrames), 12);
}

TEST(Positions, ComeFromTheDecoderWherePacketsHaveNone) {
    const FootageFiles files;
    expectEven(files.makeVideo("a.h264", 12, "-c:v libx264 -bf 2"), 12);
    expectEven(files.makeVideo("a.m4v", 12, "-c:v mpeg4 -bf 2"), 12);
    expectEven(files.makeVideo("a.avi", 12, "-c:v mpeg4 -bf 2"), 12);
}

TEST(Positions, LeaveOutWhatAnEditListCutsOff) {
    const FootageFiles files;
    const auto whole = files.makeVideo("whole.mp4", 20, "-c:v libx264 -g 20 -bf 0");
    // A copy from the middle of a group of pictures keeps its beginning for the decoder only.
    const auto part = files.make("part.mp4", "-ss 0.2 -i '" + whole.string() + "' -c copy");
    expectEven(part, 15);
}

TEST(Positions, DoNotDependOnRotation) {
    const FootageFiles files;
    expectEven(files.makeVideo("a.mp4", 4, "-c:v libx264 -metadata:s:v rotate=90"), 4);
}

TEST(Positions, AreReadFromEveryPixelFormat) {
    const FootageFiles files;
    for (const char* format : {"yuv420p10le", "yuv422p", "yuv444p", "yuv444p16le", "gray", "gray16",
                               "rgb24", "bgra", "yuva420p", "yuv411p"}) {
        SCOPED_TRACE(format);
        const std::string arguments = std::string("-pix_fmt ") + format;
        expectEven(files.makeVideo("a.mkv", 3, "-c:v ffv1 -strict experimental " + arguments), 3);
    }
}

TEST(Positions, AreReadFromOddSizes) {
    const FootageFiles files;
    for (const char* size : {"33x17", "1x1", "2x300", "401x3"}) {
        SCOPED_TRACE(size);
        const std::string scale = std::string("-vf scale=") + size;
        expectEven(files.makeVideo("a.mkv", 3, scale + " -c:v ffv1 -pix_fmt yuv420p"), 3);
    }
}

TEST(Positions, TakeTwoFieldsAsOnePicture) {
    const FootageFiles files;
    expectEven(files.make("a.mp4",
                          movingPictures(6) + " -vf setfield=tff -c:v libx264 -flags +ilme+ildct"),
               6);
    expectEven(files.make("a.ts", movingPictures(6, "720x576") +
                                      " -vf setfield=tff -c:v mpeg2video -flags +ilme+ildct"),
               6);
}

TEST(Positions, CountTheVideoBesideACover) {
    const FootageFiles files;
    const auto cover = files.makeVideo("cover.png", 1, "");
    expectEven(files.make("a.mp4", movingPictures(6) + " -i '" + cover.string() +
                                       "' -map 1 -map 0 -c:v:0 png -c:v:1 libx264 "
                                       "-disposition:v:0 attached_pic"),
               6);
}

TEST(Positions, FollowAChangeOfSizeInTheMiddle) {
    const FootageFiles files;
    const auto one = files.make("one.ts", movingPictures(5, "64x48") + " -c:v libx264 -bf 0");
    const auto two = files.make(
        "two.ts", movingPictures(5, "128x96") + " -c:v libx264 -bf 0 -output_ts_offset 0.2");
    std::ofstream(one, std::ios::binary | std::ios::app)
        << std::ifstream(two, std::ios::binary).rdbuf();
    expectEven(one, 10);
}

TEST(Positions, EndWithTheDelayOfTheLastGifPicture) {
    const FootageFiles files;
    const auto file = files.make("a.gif", movingPictures(3) + " -final_delay 70");
    EXPECT_EQ(positionsOf(file), evenPositions(3));
    EXPECT_EQ(durationOf(file), 800000 + 7000000);
}

TEST(Positions, EndAfterAWholeFrameWhereFieldsAreCounted) {
    const FootageFiles files;
    for (const int frames : {2, 12}) {
        SCOPED_TRACE(frames);
        const auto video = files.makeVideo("a.mp4", frames, "-c:v libx264 -bf 0");
        // Copied without being decoded, the stream keeps its count of fields: 50 a second.
        expectEven(files.make("a.avi", "-i '" + video.string() + "' -c copy"), frames);
    }
}

TEST(Positions, DoNotFollowTheClaimOfTheContainer) {
    const FootageFiles files;
    // Sound of three seconds makes the container that long.
    const auto file = files.make("a.mp4", "-f lavfi -i sine=d=3 " + movingPictures(5) +
                                              " -c:v libx264 -c:a aac -map 0:a -map 1:v");
    expectEven(file, 5);
}

}  // namespace
}  // namespace reference_host_tests
