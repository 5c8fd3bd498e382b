#include <chrono>
#include <cstdint>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/media/FramesAhead.h"
#include "reference_host/media/MediaError.h"
#include "tests/reference_host/FootageFiles.h"

namespace reference_host_tests {
namespace {

using namespace reference_host::media;

constexpr auto quick = Decoder::Quality::quick;

/// When a frame is shown, and some of what it shows.
struct SeenFrame {
    std::int64_t timestamp;
    std::vector<std::uint8_t> row;

    bool operator==(const SeenFrame&) const = default;
};

SeenFrame seenOf(const AVFrame& frame, std::int64_t timestamp) {
    const std::uint8_t* middle = frame.data[0] + frame.linesize[0] * (frame.height / 2);
    return {timestamp, {middle, middle + frame.width}};
}

/// Takes frames up to the end, so slowly at first that as many are ahead as there may be.
std::vector<SeenFrame> framesOf(FramesAhead& frames) {
    std::vector<SeenFrame> seen;
    while (const TimedFrame timed = frames.next()) {
        if (seen.size() < 3) std::this_thread::sleep_for(std::chrono::milliseconds(20));
        seen.push_back(seenOf(*timed.frame, timed.timestamp));
    }
    return seen;
}

TEST(FramesAhead, GivesWhatIsReadInOrder) {
    const FootageFiles files;
    for (const std::string stored : {"-c:v libx264 -bf 3 -threads 1", "-c:v mjpeg", "-c:v mpeg4"}) {
        SCOPED_TRACE(stored);
        const auto file = files.makeVideo("a.mkv", 60, stored);
        FrameReader reader(file, Decoder::Threads::several, Decoder::Size::full, {}, quick);
        std::vector<SeenFrame> expected;
        while (const AVFrame* frame = reader.next())
            expected.push_back(seenOf(*frame, reader.timestamp()));
        ASSERT_EQ(expected.size(), 60U);

        FramesAhead frames(file, quick, {});
        EXPECT_EQ(framesOf(frames), expected);
        EXPECT_EQ(frames.damage().damaged, 0);
        EXPECT_EQ(frames.damage().all, 60);
        EXPECT_FALSE(frames.next()) << "the end remains";
    }
}

TEST(FramesAhead, KeepsAFrameWhileLaterOnesAreDecoded) {
    const FootageFiles files;
    FramesAhead frames(files.makeVideo("a.avi", 40, "-c:v mjpeg"), quick, {});
    const TimedFrame first = frames.next();
    const SeenFrame before = seenOf(*first.frame, first.timestamp);
    EXPECT_EQ(framesOf(frames).size(), 39U);
    EXPECT_EQ(seenOf(*first.frame, first.timestamp), before);
}

TEST(FramesAhead, EndsAfterAStopThoughMoreIsAhead) {
    const FootageFiles files;
    const auto file = files.makeVideo("a.avi", 100, "-c:v mjpeg");
    std::stop_source stop;
    FramesAhead frames(file, quick, stop.get_token());
    ASSERT_TRUE(frames.next());
    // Long enough for the others to be decoded that may be ahead; and for it to wait for room.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    stop.request_stop();
    EXPECT_FALSE(frames.next());
    EXPECT_FALSE(frames.next());
}

TEST(FramesAhead, EndsWhenItIsStoppedBeforeItsBeginning) {
    const FootageFiles files;
    const auto file = files.makeVideo("a.avi", 10, "-c:v mjpeg");
    std::stop_source stop;
    FramesAhead frames(file, quick, stop.get_token());
    stop.request_stop();
    EXPECT_FALSE(frames.next());
}

TEST(FramesAhead, CanBeGivenUpAnywhere) {
    const FootageFiles files;
    const auto file = files.makeVideo("a.mp4", 12, "-c:v libx264");
    for (int taken = 0; taken <= 13; ++taken) {
        for (const int milliseconds : {0, 5}) {
            FramesAhead frames(file, quick, {});
            for (int i = 0; i < taken; ++i)
                EXPECT_EQ(static_cast<bool>(frames.next()), i < 12);
            std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        }
    }
}

TEST(FramesAhead, TellsOfDamageOnceTheEndIsMet) {
    const FootageFiles files;
    const auto file = files.makeVideo("a.mkv", 50, "-s 320x240 -c:v libx264 -bf 0");
    const auto size = static_cast<std::int64_t>(std::filesystem::file_size(file));
    for (int part = 30; part < 70; part += 10)
        FootageFiles::patch(file, size * part / 100, std::string(24, '\xa5'));
    FrameReader reader(file, Decoder::Threads::several, Decoder::Size::full, {}, quick);
    std::size_t count = 0;
    while (reader.next() != nullptr)
        ++count;
    ASSERT_GT(reader.decoder().damaged(), 0);

    FramesAhead frames(file, quick, {});
    ASSERT_TRUE(frames.next());
    EXPECT_EQ(frames.damage().all, 0) << "it is known at the end";
    EXPECT_EQ(framesOf(frames).size(), count - 1);
    EXPECT_EQ(frames.damage().damaged, reader.decoder().damaged());
    EXPECT_EQ(frames.damage().all, reader.decoder().met());
}

TEST(FramesAhead, ThrowsWhereAFileCannotBeOpened) {
    const FootageFiles files;
    EXPECT_THROW(FramesAhead(files.path("none.mp4"), quick, {}), MediaError);
    EXPECT_THROW(FramesAhead(files.write("text.mp4", "no video"), quick, {}), MediaError);
}

}  // namespace
}  // namespace reference_host_tests
