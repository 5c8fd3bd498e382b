#include <algorithm>
#include <chrono>
#include <future>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/media/MediaError.h"
#include "reference_host/media/SegmentedPictures.h"
#include "reference_host/media/inspect.h"
#include "reference_host/scenes/SceneAnalysis.h"
#include "tests/reference_host/FootageFiles.h"
#include "tests/reference_host/PictureReaders.h"

namespace reference_host_tests {
namespace {

using namespace reference_host::media;
using reference_host::scenes::PictureFeatures;
using Plan = PictureReader::Plan;

constexpr std::int64_t stepTicks = KOR::ticksPerSecond / 25;
constexpr std::int64_t tenSeconds = 10 * KOR::ticksPerSecond;
constexpr LongestGap gap{tenSeconds, tenSeconds, 0};

const std::string input = "-f lavfi -i ";
const std::string format = "=size=320x180:rate=25";
const std::string busy = "testsrc" + format;
const std::string plain = "smptebars" + format;

/// Two sceneries, the second of which begins at the picture `cut`, of 200.
std::filesystem::path makeCut(const FootageFiles& files, const std::string& name, int cut,
                              const std::string& before, const std::string& after,
                              const std::string& arguments) {
    return files.make(
        name, input + before + " " + input + after +
                  " -filter_complex \"[0]trim=end_frame=" + std::to_string(cut) +
                  ",format=yuv420p,setsar=1[a];[1]trim=end_frame=" + std::to_string(200 - cut) +
                  ",format=yuv420p,setsar=1[b];[a][b]concat\" " + arguments);
}

std::vector<std::int64_t> beginsOfScenes(PictureReader& reader, std::int64_t durationTicks) {
    reference_host::scenes::SceneAnalysis analysis(3.0);
    for (const PictureFeatures& seen : picturesOf(reader))
        analysis.add(seen);
    std::vector<std::int64_t> begins;
    for (const KOR::TickRange& scene : analysis.finish(durationTicks).scenes)
        begins.push_back(scene.begin);
    return begins;
}

TEST(Segments, BeginScenesAmongThePicturesThatAreShownBeforeAKeyFrame) {
    struct Storage {
        const char* name;
        const char* arguments;
    };
    const FootageFiles files;
    for (const Storage& storage :
         {Storage{"a.mkv", "-c:v mpeg4 -q:v 3 -g 60 -bf 2"},
          Storage{"b.mkv", "-c:v mpeg2video -q:v 3 -g 60 -bf 2"},
          Storage{"c.mkv", "-c:v libx264 -preset veryfast -g 60 -x264-params open-gop=1"},
          Storage{"d.mkv",
                  "-c:v libx265 -preset ultrafast -x265-params log-level=none:keyint=60"}}) {
        for (int cut = 95; cut < 99; ++cut) {
            const auto file = makeCut(files, storage.name, cut, busy, plain, storage.arguments);
            // The container counts in milliseconds, of which a picture lasts 40.
            EXPECT_EQ(beginsOfScenes(*readerForScenes(file, {.gap = gap}), 200 * stepTicks),
                      (std::vector<std::int64_t>{0, cut * stepTicks}))
                << storage.arguments << " cut at " << cut;
        }
    }
}

/// Joins what a recorder stored in two goes, of another size each. Key frames that are not the
/// first ones of their parts come without the decoder's parameters.
std::filesystem::path makeJoined(const FootageFiles& files) {
    std::string bytes;
    for (const std::string size : {"320x180", "480x270"}) {
        const auto part =
            files.make("part.mp4", input + "testsrc2=size=" + size +
                                       ":rate=25:duration=16 -c:v libx264 -preset veryfast -g 25 "
                                       "-x264-params open-gop=1:scenecut=0");
        const std::string offset = bytes.empty() ? "0" : "17";
        bytes += contentOf(files.make("part.ts", "-i '" + part.string() +
                                                     "' -c copy -bsf:v h264_mp4toannexb "
                                                     "-output_ts_offset " +
                                                     offset));
    }
    return files.write("joined.ts", bytes);
}

bool areTheSame(const PictureFeatures& a, const PictureFeatures& b) {
    return a.positionTicks == b.positionTicks && a.sharpness == b.sharpness &&
           a.goesOn == b.goesOn && a.thumbnail.luma == b.thumbnail.luma;
}

/// Overwrites stretches of the middle of `file`.
void damage(const std::filesystem::path& file) {
    std::mt19937 random(1);
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(file));
    for (int i = 0; i < 30; ++i) {
        std::string noise(200, ' ');
        std::generate(noise.begin(), noise.end(), [&] { return static_cast<char>(random()); });
        FootageFiles::patch(file, static_cast<std::int64_t>(random() % 60 + 20) * size / 100,
                            noise);
    }
}

TEST(Segments, ThatAreDamagedShowTheSameInWhateverMemory) {
    struct Storage {
        const char* name;
        const char* arguments;
    };
    const FootageFiles files;
    for (const Storage& storage :
         {Storage{"a.webm",
                  "-c:v libvpx -b:v 1M -cpu-used 8 -auto-alt-ref 1 -lag-in-frames 16 -g 25"},
          Storage{"a.mov", "-c:v prores_ks"}, Storage{"a.avi", "-c:v mjpeg"}}) {
        const auto file = files.make(
            storage.name, input + "mandelbrot" + format + " -frames:v 300 " + storage.arguments);
        damage(file);
        const auto picturesWith = [&](unsigned threads, std::int64_t shortestKeptTicks) {
            return picturesOf(*readerForScenes(
                file, {.gap = gap, .shortestKeptTicks = shortestKeptTicks, .threads = threads}));
        };
        const std::vector<PictureFeatures> expected = picturesWith(1, 0);
        ASSERT_GT(expected.size(), 100U) << storage.name;
        for (const unsigned threads : {1U, 2U, 3U}) {
            // Pictures that are kept hold on to memory that others would have got.
            const auto pictures = picturesWith(threads, KOR::ticksPerSecond / 2);
            EXPECT_TRUE(std::equal(expected.begin(), expected.end(), pictures.begin(),
                                   pictures.end(), areTheSame))
                << storage.name << ' ' << threads;
        }
    }
}

TEST(Segments, ThatLackParametersAreReadFromTheBeginning) {
    const FootageFiles files;
    const auto file = makeJoined(files);
    ASSERT_GT(inspect(file).keyTimestamps.size(), 30U);
    const auto all = picturesOf(*readerOfAll(file));
    std::vector<PictureFeatures> alone;
    for (const unsigned threads : {1U, 2U, 3U, 8U, 8U, 8U, 8U}) {
        const auto reader = readerForScenes(file, {.gap = gap, .threads = threads});
        const auto pictures = picturesOf(*reader);
        EXPECT_EQ(reader->damage().damaged, 0) << threads;
        if (alone.empty()) alone = pictures;
        // Where the other reading takes over does not depend on who is faster.
        EXPECT_TRUE(
            std::equal(alone.begin(), alone.end(), pictures.begin(), pictures.end(), areTheSame))
            << threads;
    }
    ASSERT_FALSE(alone.empty());
    EXPECT_TRUE(areTheSame(alone.back(), all.back()));
    EXPECT_LT(alone.size(), all.size());
}

/// Returns the pictures of a reader that `stop` ends; none where it takes so long that it can only
/// hang.
std::vector<PictureFeatures> picturesUnlessItHangs(PictureReader& reader, std::stop_source stop) {
    constexpr std::chrono::seconds patience{60};
    std::future<std::vector<PictureFeatures>> pictures =
        std::async(std::launch::async, [&] { return picturesOf(reader); });
    const bool isReady = pictures.wait_for(patience) == std::future_status::ready;
    stop.request_stop();
    EXPECT_TRUE(isReady) << "it hangs";
    return isReady ? pictures.get() : std::vector<PictureFeatures>{};
}

/// Makes ten segments of ninety packets each; those of `noisy` are larger, the first of them the
/// largest. Those of `lacking` begin in the middle of what is refreshed bit by bit, so that
/// decoding cannot begin with them.
std::filesystem::path makeOnesThatLackSomething(const FootageFiles& files,
                                                const std::vector<int>& lacking,
                                                const std::vector<int>& noisy) {
    std::string noise;
    int strength = 40;
    for (const int number : noisy) {
        noise += "noise=all_seed=7:allf=t:alls=" + std::to_string(strength) +
                 ":enable='eq(floor(n/90)," + std::to_string(number) + ")',";
        strength -= 8;
    }
    std::string bytes;
    const auto append = [&](int begin, int end, const std::string& refresh) {
        bytes += contentOf(
            files.make("part.h264", "-f lavfi -i smptebars=size=160x96:rate=25:duration=36 -vf \"" +
                                        noise + "trim=start_frame=" + std::to_string(begin) +
                                        ":end_frame=" + std::to_string(end) +
                                        "\" -c:v libx264 -preset ultrafast -crf 20 -g 45 -bf 0 "
                                        "-x264-params scenecut=0:intra-refresh=" +
                                        refresh));
    };
    int begin = 0;
    for (const int number : lacking) {
        // The group before it begins with a key frame of the usual kind.
        append(begin, number * 90 - 45, "0");
        append(number * 90 - 45, begin = number * 90 + 90, "1");
    }
    if (begin < 900) append(begin, 900, "0");
    const auto raw = files.write("whole.h264", bytes);
    return files.make("whole.ts", "-r 25 -i '" + raw.string() + "' -c copy");
}

/// Expects the pictures of `file` to be those that come of one after the other, but for what is
/// left out in front of the segment `failing`.
void expectAllPictures(const std::filesystem::path& file, int failing) {
    const auto all = picturesOf(*readerOfAll(file));
    std::vector<PictureFeatures> alone;
    for (const unsigned threads : {1U, 2U, 2U, 4U, 4U, 8U}) {
        SCOPED_TRACE(threads);
        std::stop_source stop;
        const auto reader =
            readerForScenes(file, {.gap = gap, .threads = threads}, stop.get_token());
        const auto pictures = picturesUnlessItHangs(*reader, stop);
        ASSERT_FALSE(pictures.empty());
        if (alone.empty()) alone = pictures;
        EXPECT_TRUE(
            std::equal(alone.begin(), alone.end(), pictures.begin(), pictures.end(), areTheSame));
    }
    // Up to the failing one, no segment is lost; from there on, no picture.
    ASSERT_EQ(all.size(), 900U);
    std::vector<std::int64_t> positions;
    for (const PictureFeatures& picture : alone)
        positions.push_back(picture.positionTicks / stepTicks);
    for (int segment = 0; segment < 10; ++segment) {
        const auto count = std::count_if(positions.begin(), positions.end(),
                                         [&](std::int64_t at) { return at / 90 == segment; });
        if (segment < failing) {
            EXPECT_GE(count, 2) << segment;
            EXPECT_TRUE(std::ranges::count(positions, 90 * segment)) << segment;
        } else {
            EXPECT_EQ(count, 90) << segment;
        }
    }
}

TEST(Segments, ThatFailAmongTheLastAreReadFromThereOn) {
    const FootageFiles files;
    expectAllPictures(makeOnesThatLackSomething(files, {6}, {8, 3, 6}), 6);
    expectAllPictures(makeOnesThatLackSomething(files, {6}, {6, 8, 3}), 6);
    expectAllPictures(makeOnesThatLackSomething(files, {9}, {9, 1}), 9);
}

TEST(Segments, ThatFailAllOverAreReadFromTheFirstOneOn) {
    const FootageFiles files;
    expectAllPictures(makeOnesThatLackSomething(files, {2, 5, 7, 9}, {9, 7, 5, 2}), 2);
    expectAllPictures(makeOnesThatLackSomething(files, {2, 5, 7, 9}, {2, 5, 7, 9}), 2);
}

void expectToBeToldOfOnce(const std::filesystem::path& file) {
    Container container(file, {});
    const FootageFacts facts = inspect(file);
    SegmentReader segments(container);
    SegmentDecoder::Plan plan;
    plan.gap = {tenSeconds, tenSeconds, 0};  // in units of the stream: longer than all of it
    plan.rhythm = KeyRhythm(facts.keyTimestamps);
    SegmentDecoder decoder(container.video(), plan, {});
    std::size_t count = 0;
    while (const std::optional<Segment> segment = segments.next()) {
        double told = 0;
        decoder.decode(*segment, [&](double part) {
            EXPECT_GE(part, 0);
            told += part;
        });
        EXPECT_NEAR(told, 1, 1e-9) << segment->number;
        ++count;
    }
    EXPECT_GT(count, 1U);
}

TEST(Segments, AreToldOfOnceThoughPartsAreDecodedTwice) {
    const FootageFiles files;
    // In noise, packets tell nothing about a plain scene that begins just before a key frame.
    expectToBeToldOfOnce(
        makeCut(files, "a.mp4", 99, "rgbtestsrc" + format + ",noise=alls=20:allf=t", plain,
                "-c:v libx264 -preset veryfast -crf 12 -bf 0 -g 40 -sc_threshold 0 "
                "-force_key_frames 'expr:eq(n,100)'"));
}

TEST(Segments, AreToldOfOnceThoughPicturesThatStandAloneAreLeftOut) {
    const FootageFiles files;
    for (const char* frames : {"199", "200", "201"})
        expectToBeToldOfOnce(
            files.make("a.avi", input + plain + " -frames:v " + frames + " -c:v mjpeg"));
}

/// Stores pictures of which each needs more bytes than the one before, in a format that is unknown.
std::filesystem::path makeGrowingUnknown(const FootageFiles& files) {
    std::string bytes = contentOf(files.make(
        "a.avi", input + "nullsrc=size=64x48:rate=25,geq='lum=random(1)*N/4:cb=128:cr=128' "
                         "-frames:v 400 -c:v mjpeg -q:v 2"));
    for (std::size_t at = bytes.find("MJPG"); at != std::string::npos; at = bytes.find("MJPG"))
        bytes.replace(at, 4, "ZZZZ");
    return files.write("b.avi", bytes);
}

TEST(Segments, AreDecodedInFrontOfOneThatFailedAheadOfItsTurn) {
    const FootageFiles files;
    const auto unknown = makeGrowingUnknown(files);
    const FootageFacts facts = inspect(files.path("a.avi"));
    for (const SegmentedPictures::Crew crew :
         {SegmentedPictures::Crew{1, 0}, SegmentedPictures::Crew{2, 1}}) {
        std::stop_source stop;
        const auto until = std::chrono::steady_clock::now() + std::chrono::seconds(30);
        SegmentedPictures pictures(std::make_unique<Container>(unknown, std::stop_token{}), facts,
                                   {}, crew, stop.get_token(), [&](double) {
                                       if (std::chrono::steady_clock::now() > until)
                                           stop.request_stop();
                                   });
        std::int64_t timestamp = 0;
        PictureFeatures seen;
        EXPECT_THROW(pictures.next(timestamp, seen), MediaError) << crew.workers;
        EXPECT_FALSE(stop.stop_requested()) << "nobody was left to decode the first one";
    }
}

TEST(Segments, BeginNoSceneWithAKeyFrameOfWhichAPartIsCutOff) {
    const FootageFiles files;
    // The last picture of 121 is a key frame by itself, and moves like those before it.
    const auto whole = files.make("a.ts", input + "mandelbrot" + format +
                                              " -frames:v 121 -c:v mpeg2video -q:v 3 -g 12 -bf 0 "
                                              "-sc_threshold 1000000000 -muxdelay 0");
    const std::string bytes = contentOf(whole);
    constexpr std::size_t packetBytes = 188;
    const std::size_t cutBytes = 40 * packetBytes;
    ASSERT_GT(bytes.size(), cutBytes);
    const auto file = files.write("b.ts", bytes.substr(0, bytes.size() - cutBytes));
    ASSERT_EQ(positionsOf(file).size(), positionsOf(whole).size());
    EXPECT_EQ(beginsOfScenes(*readerForScenes(file, {.gap = gap}), 121 * stepTicks),
              std::vector<std::int64_t>{0});
}

TEST(Segments, PassOnWhyTheirDecoderFails) {
    const FootageFiles files;
    std::string bytes = contentOf(files.makeVideo("a.avi", 200, "-c:v mjpeg"));
    const FootageFacts facts = inspect(files.path("a.avi"));
    for (std::size_t at = bytes.find("MJPG"); at != std::string::npos; at = bytes.find("MJPG"))
        bytes.replace(at, 4, "ZZZZ");
    const auto unknown = files.write("b.avi", bytes);
    for (const std::size_t workers : {1U, 4U}) {
        SegmentedPictures pictures(std::make_unique<Container>(unknown, std::stop_token{}), facts,
                                   {}, {workers, workers - 1}, {}, [](double) {});
        std::int64_t timestamp = 0;
        PictureFeatures seen;
        EXPECT_THROW(pictures.next(timestamp, seen), MediaError) << workers;
    }
}

TEST(Segments, EndWhenTheyAreStoppedWhileOneIsAwaited) {
    const FootageFiles files;
    const auto file = makeCut(files, "a.mp4", 100, busy, plain, "-c:v libx264 -g 25");
    std::stop_source stop;
    PictureReader reader(file, inspect(file), {.gap = gap, .threads = 2}, stop.get_token(),
                         [&](double) { stop.request_stop(); });
    EXPECT_LT(picturesOf(reader).size(), 100U);
    EXPECT_TRUE(stop.stop_requested());
}

}  // namespace
}  // namespace reference_host_tests
