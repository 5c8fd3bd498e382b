#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/media/Container.h"
#include "reference_host/media/SegmentDecoder.h"
#include "reference_host/media/SegmentReader.h"
#include "reference_host/media/inspect.h"
#include "reference_host/scenes/SceneAnalysis.h"
#include "tests/reference_host/FootageFiles.h"
#include "tests/reference_host/PictureReaders.h"

namespace reference_host_tests {
namespace {

using namespace reference_host::media;
using reference_host::scenes::PictureFeatures;

constexpr std::int64_t stepTicks = KOR::ticksPerSecond / 25;
constexpr std::int64_t tenSeconds = 10 * KOR::ticksPerSecond;
constexpr LongestGap gap{tenSeconds, tenSeconds, 0};
constexpr LongestGap gapWithBriefGroups{tenSeconds, tenSeconds, 0, KOR::ticksPerSecond * 5 / 4};

const std::string format = "=size=160x96:rate=25";

/// The numbers of pictures and of those that begin scenes.
struct Look {
    std::vector<std::int64_t> pictures;
    std::vector<std::int64_t> begins;
};

/// Looks at a video that has lost nothing: with those that are left out, pictures are numbered
/// without a gap.
Look lookAt(PictureReader& reader, std::int64_t frames) {
    reference_host::scenes::SceneAnalysis analysis(3.0);
    Look look;
    std::int64_t number = 0;
    for (const PictureFeatures& picture : picturesOf(reader)) {
        analysis.add(picture);
        number += picture.leftOutBefore;
        EXPECT_EQ(picture.positionTicks / stepTicks, number++);
        look.pictures.push_back(picture.positionTicks / stepTicks);
    }
    for (const KOR::TickRange& scene : analysis.finish(frames * stepTicks).scenes)
        look.begins.push_back(scene.begin / stepTicks);
    return look;
}

// A new scene in what only looks quiet.

/// Two sceneries in noise, which hides in the sizes of packets that the second begins at the
/// picture `cut`. Key frames come every forty pictures, and at the hundredth.
std::filesystem::path makeHiddenCut(const FootageFiles& files, int cut, const std::string& stored) {
    const std::string noise = ",noise=alls=60:allf=t:all_seed=7,format=yuv420p,setsar=1";
    return files.make("a.mkv", "-f lavfi -i rgbtestsrc" + format + " -f lavfi -i smptebars" +
                                   format +
                                   " -filter_complex \"[0]trim=end_frame=" + std::to_string(cut) +
                                   noise + "[a];[1]trim=end_frame=" + std::to_string(200 - cut) +
                                   noise + "[b];[a][b]concat\" " + stored +
                                   " -g 40 -sc_threshold 0 -force_key_frames 'expr:eq(n,100)'");
}

TEST(SegmentDecoder, FindsACutJustBeforeAKeyFrameOutOfTurn) {
    const FootageFiles files;
    const auto lookAtGroup = [&](int cut, const std::string& stored) {
        const Look look =
            lookAt(*readerForScenes(makeHiddenCut(files, cut, stored), {.gap = gap}), 200);
        EXPECT_EQ(look.begins, (std::vector<std::int64_t>{0, cut})) << stored;
        return std::count_if(look.pictures.begin(), look.pictures.end(),
                             [](std::int64_t at) { return at >= 80 && at < 100; });
    };
    const std::string x264 = "-c:v libx264 -preset veryfast -qp 14 -bf 0";
    for (const int cut : {94, 95, 96, 97, 98, 99})
        EXPECT_EQ(lookAtGroup(cut, x264), 20) << "all pictures of the group, " << cut;
    for (const int cut : {94, 95, 96, 97, 98, 99})
        EXPECT_EQ(lookAtGroup(cut, "-c:v mpeg4 -q:v 2"), 20) << cut;
    EXPECT_EQ(lookAtGroup(100, x264), 10) << "what it takes to see that nothing moves";
}

// Pictures whose beginning is missing.

/// Cuts beginnings off a video, so that pictures stored behind its first key frame are shown before
/// it, and expects what all pictures give.
void expectPicturesWithoutBeginning(const FootageFiles& files, const std::string& stored) {
    const auto whole =
        files.make("whole.ts", "-f lavfi -i testsrc" + format + " -frames:v 300 " + stored);
    constexpr std::size_t blockBytes = 188;
    const std::string bytes = contentOf(whole);
    // Where key frames begin, in blocks.
    std::vector<std::int64_t> keys;
    Container container(whole, {});
    const AvPointer<AVPacket> packet = adopt(av_packet_alloc());
    while (container.read(*packet)) {
        if ((packet->flags & AV_PKT_FLAG_KEY) != 0)
            keys.push_back(packet->pos / static_cast<std::int64_t>(blockBytes));
    }
    ASSERT_GT(keys.size(), 5U);
    std::size_t leading = 0;
    for (const std::int64_t key : {keys[1], keys[2], keys[3]}) {
        // At the tables in front of a key frame, and anywhere before and behind.
        for (const int blocks : {-40, -4, -3, -2, -1, 0, 5}) {
            const auto from = static_cast<std::size_t>(key + blocks);
            const auto file = files.write("cut.ts", bytes.substr(from * blockBytes));
            Container cut(file, {});
            SegmentReader segments(cut);
            const auto first = segments.next();
            ASSERT_TRUE(first);
            const PacketGroup& group = first->groups.front();
            if (group.size() > 1 && group[1]->pts < group[0]->pts) ++leading;

            const auto all = positionsOf(file);
            const auto pictures = picturesOf(*readerForScenes(file, {.gap = gap, .threads = 2}));
            ASSERT_FALSE(pictures.empty());
            std::int64_t before = -1;
            for (const PictureFeatures& picture : pictures) {
                EXPECT_LT(std::exchange(before, picture.positionTicks), picture.positionTicks);
                EXPECT_TRUE(std::ranges::count(all, picture.positionTicks))
                    << blocks << ' ' << picture.positionTicks;
            }
            EXPECT_EQ(pictures.front().positionTicks, all.front()) << blocks;

            std::vector<std::int64_t> everything;
            for (const PictureFeatures& picture :
                 picturesOf(*readerForScenes(file, {.threshold = 1e-6, .threads = 2})))
                everything.push_back(picture.positionTicks);
            EXPECT_EQ(everything, all) << blocks;
        }
    }
    EXPECT_GT(leading, 0U) << "some begin with pictures that need what is missing";
}

TEST(SegmentDecoder, TakesAVideoThatHasLostItsBeginning) {
    const FootageFiles files;
    // Pictures that need what is missing, and some that only come before their key frame.
    expectPicturesWithoutBeginning(files,
                                   "-c:v libx264 -preset veryfast -g 25 -x264-params "
                                   "open-gop=1:bframes=3:b-adapt=0:scenecut=0");
    expectPicturesWithoutBeginning(files,
                                   "-c:v libx265 -preset ultrafast -x265-params log-level=none:"
                                   "keyint=25:min-keyint=25:open-gop=0:radl=2:bframes=3:b-adapt=0");
}

// Brief groups.

/// A still in groups of twenty-five pictures, with `filter` applied to it.
std::filesystem::path makeStill(const FootageFiles& files, const std::string& filter) {
    return files.make("still.mp4",
                      "-f lavfi -i mandelbrot=size=320x180:rate=25 "
                      "-f lavfi -i smptebars=size=320x180:rate=25"
                      " -filter_complex \"[0]trim=end_frame=1,loop=loop=-1:size=1,"
                      "setpts=N/25/TB,format=yuv420p,setsar=1[still];[1]format=yuv420p,"
                      "setsar=1[other];" +
                          filter +
                          "\" -frames:v 200 -c:v libx264 -preset veryfast -bf 0 -g 25 "
                          "-sc_threshold 0");
}

TEST(SegmentDecoder, LeavesOutBriefGroupsOfSmallPackets) {
    const FootageFiles files;
    // Three pictures of each group are a little noisier, which is no even course.
    const auto file = makeStill(
        files, "[other]nullsink;[still]noise=alls=6:allf=t:enable='between(mod(n,25),9,11)'");
    const Look brief = lookAt(*readerForScenes(file, {.gap = gapWithBriefGroups}), 200);
    const Look other = lookAt(*readerForScenes(file, {.gap = gap}), 200);
    EXPECT_EQ(brief.begins, std::vector<std::int64_t>{0});
    EXPECT_EQ(other.begins, std::vector<std::int64_t>{0});
    for (const std::int64_t at : brief.pictures) {
        EXPECT_TRUE(at % 25 == 0 || at > 175) << at << " is no key frame, nor of the last group";
    }
    EXPECT_EQ(brief.pictures.size(), 7U + 25U);
    EXPECT_GT(other.pictures.size(), 2 * brief.pictures.size());
}

TEST(SegmentDecoder, LooksIntoBriefGroupsThatMayHoldAnotherScene) {
    const FootageFiles files;
    const auto file =
        makeStill(files, "[still][other]overlay=enable='between(n,58,67)':shortest=1");
    const Look look = lookAt(*readerForScenes(file, {.gap = gapWithBriefGroups}), 200);
    EXPECT_EQ(look.begins, (std::vector<std::int64_t>{0, 58, 68}));
    EXPECT_LT(look.pictures.size(), 100U) << "but not into the others";
}

TEST(SegmentDecoder, LooksIntoGroupsOfWhichLittleCouldBeLeftOut) {
    const FootageFiles files;
    for (const int size : {3, 4}) {
        const auto file =
            files.make("a.mkv", "-f lavfi -i testsrc2" + format +
                                    " -vf trim=end_frame=1,loop=loop=-1:size=1,setpts=N/25/TB "
                                    "-frames:v 60 -c:v mpeg4 -q:v 3 -sc_threshold 0 -g " +
                                    std::to_string(size));
        const Look look = lookAt(*readerForScenes(file, {.gap = gapWithBriefGroups}), 60);
        EXPECT_EQ(std::ranges::count(look.pictures, 31), size == 3 ? 1 : 0) << size;
    }
}

// Movement in noise, in which packets are as large as a new scene's.

/// A camera that moves over a still in deep noise, in groups of twenty-five pictures; `then` is
/// what happens to it, beside another scenery.
std::filesystem::path makeNoisyPan(const FootageFiles& files, const std::string& then) {
    return files.make("pan.mp4",
                      "-f lavfi -i mandelbrot=size=960x480:rate=25 "
                      "-f lavfi -i smptebars=size=640x360:rate=25 -filter_complex "
                      "\"[0]trim=end_frame=1,loop=loop=-1:size=1,setpts=N/25/TB,fps=25,"
                      "crop=640:360:x=n*1.5:y=60,noise=alls=30:allf=t:all_seed=7,"
                      "format=yuv420p,setsar=1[pan];"
                      "[1]trim=end_frame=60,format=yuv420p,setsar=1[other];" +
                          then +
                          ",format=yuv420p\" -frames:v 150 "
                          "-c:v libx264 -preset ultrafast -qp 14 -bf 0 -g 25 -sc_threshold 0");
}

TEST(SegmentDecoder, LeavesOutBriefMovementInNoise) {
    const FootageFiles files;
    const auto file = makeNoisyPan(files, "[other]nullsink;[pan]null");
    const Look brief = lookAt(*readerForScenes(file, {.gap = gapWithBriefGroups}), 150);
    const Look other = lookAt(*readerForScenes(file, {.gap = gap}), 150);
    EXPECT_EQ(brief.begins, std::vector<std::int64_t>{0});
    EXPECT_EQ(other.begins, std::vector<std::int64_t>{0});
    EXPECT_LT(3 * brief.pictures.size(), 2 * other.pictures.size());
}

TEST(SegmentDecoder, LooksIntoBriefMovementBeforeADissolve) {
    const FootageFiles files;
    // It begins two pictures before a key frame, and lasts twelve.
    const auto file =
        makeNoisyPan(files, "[pan]trim=end_frame=100[a];[a][other]xfade=duration=0.48:offset=2.92");
    const Look brief = lookAt(*readerForScenes(file, {.gap = gapWithBriefGroups}), 150);
    EXPECT_EQ(brief.begins, (std::vector<std::int64_t>{0, 79}));
    for (std::int64_t at = 50; at < 75; ++at)
        EXPECT_TRUE(std::ranges::count(brief.pictures, at)) << at;
    EXPECT_FALSE(std::ranges::count(brief.pictures, 30)) << "movement before it is left out";
}

// Pictures of which none needs another.

TEST(SegmentDecoder, LooksAtEverySecondOfPicturesThatStandAlone) {
    const FootageFiles files;
    for (const int cut : {99, 100}) {
        for (const std::string stored : {"a.mov -c:v prores_ks", "a.avi -c:v mjpeg -q:v 3"}) {
            const auto file = files.make(
                stored.substr(0, 5),
                "-f lavfi -i testsrc2" + format + " -f lavfi -i smptebars" + format +
                    " -filter_complex \"[0]trim=end_frame=1,loop=loop=-1:size=1,setpts=N/25/TB,"
                    "fps=25,trim=end_frame=" +
                    std::to_string(cut) +
                    ",format=yuv420p,setsar=1[a];[1]trim=end_frame=" + std::to_string(201 - cut) +
                    ",format=yuv420p,setsar=1[b];[a][b]concat\" " + stored.substr(6));
            const Look look = lookAt(*readerForScenes(file, {.gap = gap}), 201);
            EXPECT_EQ(look.begins, (std::vector<std::int64_t>{0, cut})) << stored;
            EXPECT_TRUE(std::ranges::is_sorted(look.pictures));
            EXPECT_TRUE(std::ranges::count(look.pictures, cut)) << stored;
            EXPECT_LT(look.pictures.size(), 110U) << stored;
            EXPECT_EQ(look.pictures.front(), 0);
            EXPECT_EQ(look.pictures.back(), 200);
        }
    }
}

TEST(SegmentDecoder, SeesDissolvesOfPicturesThatStandAloneWhole) {
    const FootageFiles files;
    const auto file = files.make(
        "a.mov", "-f lavfi -i testsrc2" + format + " -f lavfi -i smptebars" + format +
                     " -filter_complex \"[0]trim=end_frame=1,loop=loop=-1:size=1,setpts=N/25/TB,"
                     "fps=25,trim=end_frame=120,format=yuv420p,setsar=1[a];"
                     "[1]trim=end_frame=100,format=yuv420p,setsar=1[b];"
                     "[a][b]xfade=duration=0.8:offset=4\" -frames:v 200 -c:v prores_ks");
    const Look look = lookAt(*readerForScenes(file, {.gap = gap}), 200);
    EXPECT_EQ(look.begins.size(), 2U);
    for (std::int64_t at = 100; at < 120; ++at)
        EXPECT_TRUE(std::ranges::count(look.pictures, at)) << at;
    EXPECT_LT(look.pictures.size(), 125U);
}

// Open groups, in whose beginning decoders expect to lack something.

TEST(SegmentDecoder, TakesOpenGroupsOfAFewPictures) {
    const FootageFiles files;
    // A pan, in groups of six pictures: after some of them, little has been decoded from the key
    // frame on when decoding begins anew with the next.
    const auto file = files.make(
        "open.mkv",
        "-f lavfi -i mandelbrot=size=960x480:rate=25 -vf trim=end_frame=1,loop=loop=-1:size=1,"
        "setpts=N/25/TB,fps=25,crop=320:180:x=n*4:y=60,format=yuv420p -frames:v 150 "
        "-c:v libx264 -preset veryfast -x264-params "
        "open-gop=1:keyint=6:min-keyint=6:scenecut=0:bframes=3:b-adapt=0");
    const auto reader = readerForScenes(file, {.gap = gapWithBriefGroups});
    const Look look = lookAt(*reader, 150);
    EXPECT_EQ(look.begins, std::vector<std::int64_t>{0});
    EXPECT_LT(look.pictures.size(), 75U) << "half of them are left out";
    EXPECT_EQ(reader->damage().damaged, 0);
    EXPECT_EQ(reader->damage().all, 150);
}

// Pictures that others need.

/// A still that moves a little in its middle, and from the picture `cut` on another. Key frames
/// come every 120 pictures; the others come in fours, of which two need one of the others.
std::filesystem::path makeCutInPyramid(const FootageFiles& files, int cut) {
    return files.make(
        "pyramid.mp4",
        "-f lavfi -i testsrc2=size=320x180:rate=25 -f lavfi -i mandelbrot=size=320x180:rate=25 "
        "-f lavfi -i smptebars=size=320x180:rate=25 -filter_complex "
        "\"[1]trim=end_frame=1,loop=loop=-1:size=1,setpts=N/25/TB,fps=25,format=yuv420p[still];"
        "[0]crop=16:16:140:70[spot];[still][spot]overlay=140:70,trim=end_frame=" +
            std::to_string(cut) +
            ",format=yuv420p,setsar=1[a];[2]trim=end_frame=" + std::to_string(240 - cut) +
            ",format=yuv420p,setsar=1[b];[a][b]concat\" -c:v libx264 -preset veryfast -x264-params "
            "keyint=120:min-keyint=120:scenecut=0:bframes=3:b-adapt=0:b-pyramid=normal:ref=4");
}

/// Returns those of the numbers that are in the last group, in front of the cut's neighbours.
std::vector<std::int64_t> quietOnesOf(const Look& look) {
    std::vector<std::int64_t> quiet;
    std::ranges::copy_if(look.pictures, std::back_inserter(quiet),
                         [](std::int64_t at) { return at > 120 && at <= 176; });
    return quiet;
}

TEST(SegmentDecoder, LeavesOutPicturesOfAStillSceneThatOthersNeed) {
    const FootageFiles files;
    for (const int cut : {181, 182, 183, 184}) {
        const auto file = makeCutInPyramid(files, cut);
        for (const std::int64_t still : {std::int64_t{0}, KOR::ticksPerSecond / 5}) {
            const auto reader =
                readerForScenes(file, {.gap = {tenSeconds, tenSeconds, 0, 0, still}});
            const Look look = lookAt(*reader, 240);
            EXPECT_EQ(look.begins, (std::vector<std::int64_t>{0, cut})) << still;
            std::vector<std::int64_t> expected;
            for (std::int64_t at = still == 0 ? 122 : 124; at <= 176; at += still == 0 ? 2 : 4)
                expected.push_back(at);
            EXPECT_EQ(quietOnesOf(look), expected) << still;
            EXPECT_EQ(reader->damage().damaged, 0) << "what was not asked for is no damage";
            EXPECT_EQ(reader->damage().all, 240);
        }
    }
}

TEST(SegmentDecoder, DecodesWhatOthersNeedOfLongerStretches) {
    const FootageFiles files;
    const auto file = makeCutInPyramid(files, 181);
    // Four pictures take 0.16 seconds.
    const std::int64_t still = KOR::ticksPerSecond * 15 / 100;
    const Look look =
        lookAt(*readerForScenes(file, {.gap = {tenSeconds, tenSeconds, 0, 0, still}}), 240);
    EXPECT_EQ(quietOnesOf(look).size(), 28U);
}

// What is behind a dissolve tells where it ends.

TEST(SegmentDecoder, SeesWhatIsCloselyBehindADissolve) {
    const FootageFiles files;
    // From the 100th picture to the 139th one still becomes another.
    const std::string filter =
        "-f lavfi -i testsrc2" + format + " -f lavfi -i smptebars" + format +
        " -filter_complex \"[0]trim=end_frame=1,loop=loop=-1:size=1,setpts=N/25/TB,"
        "fps=25,trim=end_frame=140,format=yuv420p,setsar=1[a];"
        "[1]trim=end_frame=150,format=yuv420p,setsar=1[b];"
        "[a][b]xfade=duration=1.6:offset=4\" -frames:v 250 -sc_threshold 0 ";
    // Groups that are left out whole, and such as of which the rest is.
    for (const std::string stored : {"-g 12", "-g 48"}) {
        for (const std::string codec : {"mpeg4 -q:v 3 -bf 2", "mpeg2video -q:v 3 -bf 2"}) {
            const auto file = files.make("a.mkv", filter + "-c:v " + codec + ' ' + stored);
            const Look look = lookAt(*readerForScenes(file, {.gap = gapWithBriefGroups}), 250);
            EXPECT_EQ(look.begins.size(), 2U) << codec << stored;
            for (std::int64_t at = 100; at < 158; ++at)
                EXPECT_TRUE(std::ranges::count(look.pictures, at)) << codec << stored << ' ' << at;
            for (std::int64_t at = 172; at < 190; ++at) {
                EXPECT_EQ(std::ranges::count(look.pictures, at),
                          at % std::stoi(stored.substr(3)) == 0)
                    << codec << stored << ' ' << at;
            }
        }
    }
}

}  // namespace
}  // namespace reference_host_tests
