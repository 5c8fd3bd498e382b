#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/media/inspect.h"
#include "reference_host/scenes/Difference.h"
#include "reference_host/scenes/SceneAnalysis.h"
#include "tests/reference_host/FootageFiles.h"
#include "tests/reference_host/NumberedVideo.h"
#include "tests/reference_host/PictureReaders.h"

namespace reference_host_tests {
namespace {

using reference_host::media::FootageFacts;
using reference_host::media::PictureReader;
using reference_host::scenes::PictureFeatures;
using reference_host::scenes::Thumbnail;
using reference_host::scenes::unmovedDifference;
using Plan = PictureReader::Plan;

constexpr std::int64_t stepTicks = KOR::ticksPerSecond / 25;
constexpr std::int64_t tenSeconds = 10 * KOR::ticksPerSecond;

/// How far a picture of which the edges of blocks are not smoothed may be from the one where they
/// are, in steps for each pixel. Up to 2.2 have been met; neighbours in a numbered video differ by
/// more than 15.
constexpr float differenceOfEdges = 3;

/// A way to store a video.
struct Storage {
    const char* name;
    std::string arguments;
    /// How far its pictures may be from what they are where all are decoded.
    float difference = 0;
};

void PrintTo(const Storage& storage, std::ostream* out) {
    *out << storage.name;
}

const std::string x264 = "-c:v libx264 -preset veryfast -g 25 ";
const std::string x265 =
    "-c:v libx265 -preset ultrafast -x265-params log-level=none:keyint=25:min-keyint=25";
const std::string mpeg2 = "-c:v mpeg2video -q:v 2 -g 12 -bf 2";

/// Some that can be divided, and some that cannot or only seem so.
const std::vector<Storage> storages{
    {"closed.mp4", x264 + "-x264-params open-gop=0", differenceOfEdges},
    {"open.mp4", x264 + "-x264-params open-gop=1:bframes=3:b-pyramid=normal", differenceOfEdges},
    {"open.ts", x264 + "-x264-params open-gop=1:bframes=3", differenceOfEdges},
    {"without_b.mkv", x264 + "-bf 0", differenceOfEdges},
    {"refresh.mkv", x264 + "-x264-params intra-refresh=1:bframes=0"},
    {"fields.mp4", x264 + "-flags +ilme+ildct"},
    {"one_group.mp4", "-c:v libx264 -preset veryfast -g 999 -sc_threshold 0"},
    {"h264.avi", x264},
    {"hevc_open.mp4", x265 + ":open-gop=1", differenceOfEdges},
    {"hevc_closed.mkv", x265 + ":open-gop=0", differenceOfEdges},
    {"vp8.webm", "-c:v libvpx -b:v 1M -cpu-used 8 -auto-alt-ref 1 -lag-in-frames 16 -g 25",
     differenceOfEdges},
    {"vp9.webm", "-c:v libvpx-vp9 -b:v 1M -cpu-used 8 -auto-alt-ref 1 -lag-in-frames 16 -g 25"},
    {"mpeg2.ts", mpeg2},
    {"mpeg2.mkv", mpeg2},
    {"mpeg4.mp4", "-c:v mpeg4 -q:v 2 -g 25 -bf 2"},
    {"mpeg4.mkv", "-c:v mpeg4 -q:v 2 -g 25"},
    {"mjpeg.avi", "-c:v mjpeg"},
    {"prores.mov", "-c:v prores_ks"},
    {"theora.ogv", "-c:v libtheora -q:v 9 -g 25"},
    {"a.gif", ""},
};

class ScenePictures : public testing::TestWithParam<Storage> {};

bool areEqual(const Thumbnail& a, const Thumbnail& b) {
    return a.luma == b.luma && a.u == b.u && a.v == b.v;
}

bool areTheSame(const PictureFeatures& a, const PictureFeatures& b) {
    return a.positionTicks == b.positionTicks && a.sharpness == b.sharpness &&
           a.goesOn == b.goesOn && areEqual(a.thumbnail, b.thumbnail);
}

/// Expects what is given of a file for its scenes to be what comes of decoding all of it, up to a
/// difference.
void expectTheVeryPictures(const std::filesystem::path& file, float difference) {
    std::map<std::int64_t, Thumbnail> all;
    for (const PictureFeatures& picture : picturesOf(*readerOfAll(file)))
        all[picture.positionTicks] = picture.thumbnail;

    const auto pictures = picturesOf(*readerForScenes(file, {.gap = {tenSeconds, tenSeconds, 0}}));

    ASSERT_FALSE(pictures.empty());
    EXPECT_EQ(pictures.front().positionTicks, 0);
    std::int64_t before = -1;
    for (const PictureFeatures& picture : pictures) {
        EXPECT_LT(std::exchange(before, picture.positionTicks), picture.positionTicks);
        ASSERT_TRUE(all.contains(picture.positionTicks)) << picture.positionTicks;
        EXPECT_LE(unmovedDifference(picture.thumbnail, all[picture.positionTicks]), difference)
            << picture.positionTicks << " shows " << numberOf(picture.thumbnail);
    }
}

/// Three sceneries of four, three and three seconds, with a slow movement in each.
std::filesystem::path makeScenes(const FootageFiles& files, const Storage& storage) {
    const std::string picture = "=size=160x96:rate=25";
    const auto scene = [&](const char* source, int seconds) {
        return "-f lavfi -t " + std::to_string(seconds) + " -i " + source + picture + " ";
    };
    return files.make(storage.name, scene("testsrc", 4) + scene("smptebars", 3) +
                                        scene("mandelbrot", 3) +
                                        "-filter_complex "
                                        "\"[0]format=yuv420p,setsar=1[a];[1]format=yuv420p,"
                                        "setsar=1[b];[2]format=yuv420p,setsar=1[c];"
                                        "[a][b][c]concat=n=3:v=1\" " +
                                        storage.arguments);
}

TEST_P(ScenePictures, AreTheVeryPicturesOfTheirPositions) {
    const FootageFiles files;
    const Storage& storage = GetParam();
    expectTheVeryPictures(makeNumbered(files, storage.name, 240, storage.arguments),
                          storage.difference);
    expectTheVeryPictures(makeScenes(files, storage), storage.difference);
}

TEST_P(ScenePictures, AreAllWhereNothingMayBeTakenForTheSame) {
    const FootageFiles files;
    const auto file = makeNumbered(files, GetParam().name, 240, GetParam().arguments);
    std::vector<std::int64_t> positions;
    for (const PictureFeatures& picture : picturesOf(*readerForScenes(file, {.threshold = 1e-6})))
        positions.push_back(picture.positionTicks);
    EXPECT_EQ(positions, positionsOf(file));
}

std::vector<std::int64_t> beginsOfScenes(PictureReader& reader) {
    reference_host::scenes::SceneAnalysis analysis(3.0);
    for (const PictureFeatures& picture : picturesOf(reader))
        analysis.add(picture);
    std::vector<std::int64_t> begins;
    for (const KOR::TickRange& scene : analysis.finish(tenSeconds).scenes)
        begins.push_back(scene.begin);
    return begins;
}

TEST_P(ScenePictures, ShowTheScenesThatAllPicturesShow) {
    const FootageFiles files;
    const auto file = makeScenes(files, GetParam());
    const std::vector<std::int64_t> begins = beginsOfScenes(*readerOfAll(file));
    EXPECT_EQ(begins, (std::vector<std::int64_t>{0, 100 * stepTicks, 175 * stepTicks}));
    for (const std::int64_t gap : {tenSeconds, KOR::ticksPerSecond * 5 / 4}) {
        EXPECT_EQ(beginsOfScenes(*readerForScenes(file, {.gap = {gap, gap, 0}})), begins) << gap;
    }
}

INSTANTIATE_TEST_SUITE_P(PictureReader, ScenePictures, testing::ValuesIn(storages),
                         [](const auto& param) {
                             std::string name = param.param.name;
                             std::replace(name.begin(), name.end(), '.', '_');
                             return name;
                         });

const Storage simple{"a.mp4", x264};

TEST(ScenePictures, AreTheSameWithAnyNumberOfThreads) {
    const FootageFiles files;
    const auto file = makeScenes(files, simple);
    const auto picturesWith = [&](unsigned threads) {
        return picturesOf(
            *readerForScenes(file, {.gap = {tenSeconds, tenSeconds, 0}, .threads = threads}));
    };
    const std::vector<PictureFeatures> alone = picturesWith(1);
    EXPECT_LT(alone.size(), 250U) << "something is left out";
    for (const unsigned threads : {2U, 3U, 8U}) {
        const std::vector<PictureFeatures> pictures = picturesWith(threads);
        EXPECT_TRUE(
            std::equal(alone.begin(), alone.end(), pictures.begin(), pictures.end(), areTheSame))
            << threads;
    }
}

TEST(ScenePictures, OfAStillAreFewButNeverTooFarApart) {
    const FootageFiles files;
    const auto file = files.make(
        "a.mp4", "-f lavfi -i smptebars=size=160x96:rate=25:duration=20 -c:v libx264 -g 75");
    const auto longestGap = [&](std::int64_t gapTicks, std::size_t& count) {
        const auto pictures = picturesOf(*readerForScenes(file, {.gap = {gapTicks, gapTicks, 0}}));
        count = pictures.size();
        std::int64_t longest = 0;
        for (std::size_t i = 1; i < pictures.size(); ++i)
            longest = std::max(longest, pictures[i].positionTicks - pictures[i - 1].positionTicks);
        return longest;
    };
    std::size_t few = 0;
    EXPECT_EQ(longestGap(tenSeconds, few), 75 * stepTicks) << "key frames alone";
    std::size_t more = 0;
    EXPECT_LE(longestGap(KOR::ticksPerSecond, more), KOR::ticksPerSecond);
    EXPECT_LT(few, 40U);
    EXPECT_GT(more, few);
    EXPECT_LT(more, 500U);
}

TEST(ScenePictures, GoOnWhereWhatIsBetweenIsLeftOut) {
    const FootageFiles files;
    // Of several segments: it goes on from one to the next, too.
    const auto file = files.make(
        "a.mp4", "-f lavfi -i smptebars=size=160x96:rate=25:duration=20 -c:v libx264 -g 75");
    const auto pictures = picturesOf(*readerForScenes(file, {.gap = {tenSeconds, tenSeconds, 0}}));
    std::vector<std::int64_t> positions;
    for (const PictureFeatures& picture : pictures) {
        if (picture.goesOn) positions.push_back(picture.positionTicks);
    }
    EXPECT_EQ(positions,
              (std::vector<std::int64_t>{75 * stepTicks, 150 * stepTicks, 225 * stepTicks,
                                         300 * stepTicks, 375 * stepTicks, 450 * stepTicks}));
}

TEST(ScenePictures, CountAllFramesThoughFewAreDecoded) {
    const FootageFiles files;
    const auto file = makeScenes(files, simple);
    const auto reader = readerForScenes(file, {.gap = {tenSeconds, tenSeconds, 0}});
    EXPECT_LT(picturesOf(*reader).size(), 250U);
    EXPECT_EQ(reader->damage().all, 250);
    EXPECT_EQ(reader->damage().damaged, 0);
}

TEST(ScenePictures, EndWhenTheyAreStopped) {
    const FootageFiles files;
    const auto file = makeScenes(files, simple);
    std::stop_source stop;
    const auto reader =
        readerForScenes(file, {.gap = {stepTicks, stepTicks, 0}, .threads = 2}, stop.get_token());
    PictureFeatures picture;
    EXPECT_TRUE(reader->next(picture));
    stop.request_stop();
    // What has been looked at may still come.
    std::size_t rest = 0;
    while (reader->next(picture))
        ++rest;
    EXPECT_LT(rest, 125U);
}

TEST(ScenePictures, CanBeGivenUpAnywhere) {
    const FootageFiles files;
    const auto file = makeScenes(files, simple);
    for (int taken = 0; taken < 60; taken += 7) {
        const auto reader = readerForScenes(file, {.gap = {stepTicks, stepTicks, 0}, .threads = 3});
        PictureFeatures picture;
        for (int i = 0; i < taken; ++i)
            ASSERT_TRUE(reader->next(picture));
    }
}

TEST(ScenePictures, TellHowMuchIsDone) {
    const FootageFiles files;
    for (const Storage& storage : {simple, Storage{"one.mp4", x264 + "-g 999 -sc_threshold 0"}}) {
        const auto file = makeScenes(files, storage);
        std::vector<double> told;
        const auto tell = [&](double share) { told.push_back(share); };
        PictureReader reader(file, reference_host::media::inspect(file),
                             {.gap = {tenSeconds, tenSeconds, 0}, .threads = 1}, {}, tell);
        picturesOf(reader);
        ASSERT_FALSE(told.empty());
        EXPECT_GE(*std::min_element(told.begin(), told.end()), 0);
        EXPECT_LE(*std::max_element(told.begin(), told.end()), 1);
    }
}

TEST(ScenePictures, GoOnOneByOneWhereAGroupIsTooLong) {
    const FootageFiles files;
    // Five pictures a second for 40 seconds and a hundred a second for 16, which are one group.
    const auto file = files.make(
        "a.mkv", movingPictures(1800) +
                     " -vf \"settb=1/1000,setpts='if(lt(N,200),N*200,40000+(N-200)*10)'\" "
                     "-vsync passthrough -enc_time_base 1/1000 -c:v libx264 -preset ultrafast "
                     "-bf 0 -g 9999 -sc_threshold 0 "
                     "-force_key_frames 'expr:gte(t,n_forced*4)*lte(t,40)'");
    ASSERT_EQ(reference_host::media::inspect(file).keyTimestamps.size(), 11U);
    const auto alone =
        picturesOf(*readerForScenes(file, {.gap = {tenSeconds, tenSeconds, 0}, .threads = 1}));
    EXPECT_LT(alone.size(), 1800U) << "of what is before it, something is left out";
    std::int64_t before = -1;
    std::int64_t dense = 0;
    for (const PictureFeatures& picture : alone) {
        EXPECT_LT(std::exchange(before, picture.positionTicks), picture.positionTicks);
        if (picture.positionTicks >= 4 * tenSeconds) ++dense;
    }
    EXPECT_EQ(dense, 1600);
    for (const unsigned threads : {2U, 3U, 4U, 4U}) {
        const auto pictures = picturesOf(
            *readerForScenes(file, {.gap = {tenSeconds, tenSeconds, 0}, .threads = threads}));
        EXPECT_TRUE(
            std::equal(alone.begin(), alone.end(), pictures.begin(), pictures.end(), areTheSame))
            << threads << ' ' << pictures.size() << ' ' << alone.size();
    }
}

TEST(ScenePictures, OfADamagedFileAreTheSameWithAnyNumberOfThreads) {
    const FootageFiles files;
    std::mt19937 random(1);
    std::int64_t damaged = 0;
    for (const Storage& storage :
         {simple, Storage{"a.mkv", x265 + ":open-gop=1"}, Storage{"a.ts", mpeg2},
          Storage{"b.mp4", "-c:v mpeg4 -q:v 2 -g 25 -bf 2"},
          Storage{"a.webm", "-c:v libvpx-vp9 -b:v 1M -cpu-used 8 -g 25"}}) {
        SCOPED_TRACE(storage.name);
        const auto file = makeScenes(files, storage);
        const FootageFacts facts = reference_host::media::inspect(file);
        const auto size = static_cast<std::int64_t>(std::filesystem::file_size(file));
        for (int i = 0; i < 12; ++i) {
            const auto at = static_cast<std::int64_t>(random() % 60 + 20) * size / 100;
            FootageFiles::patch(file, at, std::string(24, static_cast<char>(random())));
        }
        const auto readWith = [&](unsigned threads) {
            return std::make_unique<PictureReader>(
                file, facts, Plan{.gap = {tenSeconds, tenSeconds, 0}, .threads = threads},
                std::stop_token(), [](double) {});
        };
        const auto alone = readWith(1);
        const std::vector<PictureFeatures> expected = picturesOf(*alone);
        ASSERT_FALSE(expected.empty());
        for (std::size_t i = 1; i < expected.size(); ++i)
            EXPECT_LT(expected[i - 1].positionTicks, expected[i].positionTicks);
        damaged += alone->damage().damaged;
        for (const unsigned threads : {2U, 4U, 4U, 4U}) {
            const auto reader = readWith(threads);
            const std::vector<PictureFeatures> pictures = picturesOf(*reader);
            EXPECT_TRUE(std::equal(expected.begin(), expected.end(), pictures.begin(),
                                   pictures.end(), areTheSame))
                << threads << ' ' << expected.size() << ' ' << pictures.size();
            EXPECT_EQ(reader->damage().damaged, alone->damage().damaged) << threads;
            EXPECT_EQ(reader->damage().all, alone->damage().all) << threads;
        }
    }
    EXPECT_GT(damaged, 0) << "decoders of some formats notice";
}

TEST(ScenePictures, EndWithAKeyFrameThatIsAlone) {
    const FootageFiles files;
    const auto file = files.make("a.mp4",
                                 "-f lavfi -i smptebars=size=160x96:rate=25 -frames:v 101 "
                                 "-c:v libx264 -g 25 -keyint_min 25 -sc_threshold 0");
    const auto pictures = picturesOf(*readerForScenes(file, {.gap = {tenSeconds, tenSeconds, 0}}));
    ASSERT_FALSE(pictures.empty());
    EXPECT_EQ(pictures.back().positionTicks, 100 * stepTicks);
}

TEST(ScenePictures, OfACutOffFileEndWithIt) {
    const FootageFiles files;
    const auto file = makeScenes(files, {"a.mkv", x264});
    const FootageFacts facts = reference_host::media::inspect(file);
    FootageFiles::truncate(file, 0.5);
    PictureReader reader(file, facts, {.gap = {tenSeconds, tenSeconds, 0}}, {}, [](double) {});
    const auto pictures = picturesOf(reader);
    ASSERT_FALSE(pictures.empty());
    EXPECT_EQ(pictures.back().positionTicks, positionsOf(file).back());
    EXPECT_LT(pictures.back().positionTicks, tenSeconds - 10 * stepTicks);
}

}  // namespace
}  // namespace reference_host_tests
