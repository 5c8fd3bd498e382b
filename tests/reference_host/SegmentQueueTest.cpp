#include <algorithm>
#include <cstdint>
#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/media/Container.h"
#include "reference_host/media/SegmentQueue.h"
#include "tests/reference_host/FootageFiles.h"

namespace reference_host_tests {
namespace {

using namespace reference_host::media;
using Order = SegmentQueue::Order;
using Numbers = std::vector<std::int64_t>;

/// Pictures that stand alone make segments of so many packets.
constexpr int intraSegment = 96;

/// How many segments are read ahead. The end is met when the next one is looked for, so that one
/// fewer is left then.
constexpr std::int64_t mostAhead = 12;

std::int64_t bytesOf(const Segment& segment) {
    std::int64_t bytes = 0;
    for (const PacketGroup& group : segment.groups) {
        for (const auto& packet : group)
            bytes += packet->size;
    }
    return bytes;
}

/// Makes so many segments of the very same size.
std::filesystem::path makeEven(const FootageFiles& files, int segments) {
    return files.make("even.nut", movingPictures(segments * intraSegment, "32x32") +
                                      " -pix_fmt yuv420p -c:v rawvideo");
}

/// Makes segments of different sizes that neither rise nor fall all the way: those of 2, 7, 12 and
/// so on are larger, and those of 3, 10 and so on more so.
std::filesystem::path makeUneven(const FootageFiles& files, int segments) {
    const auto noiseIn = [](int rest, int divisor, int strength) {
        return "noise=all_seed=7:allf=t:alls=" + std::to_string(strength) +
               ":enable='eq(mod(floor(n/" + std::to_string(intraSegment) + ")," +
               std::to_string(divisor) + ")," + std::to_string(rest) + ")'";
    };
    return files.make("uneven.avi", movingPictures(segments * intraSegment, "32x32") + " -vf \"" +
                                        noiseIn(2, 5, 30) + "," + noiseIn(3, 7, 90) +
                                        "\" -pix_fmt yuvj420p -c:v mjpeg -q:v 3");
}

/// A file and the queue of its segments.
struct QueueOfFile {
    explicit QueueOfFile(const std::filesystem::path& file) : container(file, {}) {}

    /// Returns the numbers of so many segments at most, in the order in which they are handed out.
    Numbers take(Order order, std::size_t count = 1000,
                 std::int64_t limit = SegmentQueue::noLimit) {
        Numbers numbers;
        while (numbers.size() < count) {
            const std::optional<Segment> segment = queue.take(order, limit);
            if (!segment) break;
            numbers.push_back(segment->number);
            sizes.push_back(bytesOf(*segment));
        }
        return numbers;
    }

    Container container;
    SegmentQueue queue{container};
    /// Of what has been handed out.
    std::vector<std::int64_t> sizes;
};

Numbers upTo(std::int64_t end) {
    Numbers numbers(static_cast<std::size_t>(end));
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
}

TEST(SegmentQueue, HandsOutInOrderWhileMoreIsToBeReadAndThenTheLargestFirst) {
    const FootageFiles files;
    constexpr std::int64_t count = 20;
    const auto file = makeUneven(files, count);
    QueueOfFile inOrder(file);
    ASSERT_EQ(inOrder.take(Order::ofVideo), upTo(count));
    const std::vector<std::int64_t> sizes = inOrder.sizes;
    ASSERT_FALSE(std::is_sorted(sizes.begin(), sizes.end()));
    ASSERT_FALSE(std::is_sorted(sizes.rbegin(), sizes.rend()));

    Numbers expected = upTo(count);
    std::stable_sort(expected.begin() + count - (mostAhead - 1), expected.end(),
                     [&](std::int64_t a, std::int64_t b) {
                         return sizes[static_cast<std::size_t>(a)] >
                                sizes[static_cast<std::size_t>(b)];
                     });
    EXPECT_EQ(QueueOfFile(file).take(Order::largestFirst), expected);
    EXPECT_EQ((Numbers{expected[9], expected[10], expected[11]}), (Numbers{17, 10, 12}))
        << "the loudest one first, then a less loud one";
}

TEST(SegmentQueue, HandsOutTheFirstOfEqualOnes) {
    const FootageFiles files;
    EXPECT_EQ(QueueOfFile(makeEven(files, 5)).take(Order::largestFirst), upTo(5));
    EXPECT_EQ(QueueOfFile(makeEven(files, 15)).take(Order::largestFirst), upTo(15));
}

TEST(SegmentQueue, TakesTheLargestOfThoseBelowALimitOnly) {
    const FootageFiles files;
    QueueOfFile file(makeUneven(files, 8));
    EXPECT_EQ(file.take(Order::largestFirst, 1, 3), (Numbers{2}));
    EXPECT_EQ(file.take(Order::largestFirst, 1000, 3), (Numbers{0, 1}));
    EXPECT_EQ(file.queue.first(), 3);
    EXPECT_EQ(file.take(Order::largestFirst, 1, 3), Numbers{}) << "none is left below";
    EXPECT_EQ(file.take(Order::ofVideo, 1, 3), Numbers{});
    EXPECT_EQ(file.take(Order::largestFirst, 2, 8), (Numbers{3, 7}));
    EXPECT_EQ(file.take(Order::ofVideo, 1, 7), (Numbers{4}));
}

TEST(SegmentQueue, TellsTheFirstThatIsLeft) {
    const FootageFiles files;
    QueueOfFile file(makeUneven(files, 8));
    EXPECT_EQ(file.queue.first(), 0);
    EXPECT_EQ(file.take(Order::largestFirst, 2), (Numbers{3, 2}));
    EXPECT_EQ(file.queue.first(), 0) << "later ones are gone, the first is not";
    EXPECT_EQ(file.take(Order::ofVideo, 2), (Numbers{0, 1}));
    EXPECT_EQ(file.queue.first(), 4) << "those behind it are gone, too";
    file.take(Order::ofVideo);
    EXPECT_EQ(file.queue.first(), 8) << "as many as there were";
}

TEST(SegmentQueue, TellsHowFewAreLeftOnceAllHasBeenRead) {
    const FootageFiles files;
    QueueOfFile file(makeEven(files, 14));
    EXPECT_FALSE(file.queue.isDownTo(1000)) << "nothing has been read";
    file.take(Order::ofVideo, 2);
    EXPECT_FALSE(file.queue.isDownTo(1000)) << "twelve are left, and may be more";
    file.take(Order::ofVideo, 1);
    EXPECT_TRUE(file.queue.isDownTo(11));
    EXPECT_FALSE(file.queue.isDownTo(10));
    file.take(Order::ofVideo, 10);
    EXPECT_TRUE(file.queue.isDownTo(1));
    EXPECT_FALSE(file.queue.isDownTo(0));
    file.take(Order::ofVideo, 1);
    EXPECT_TRUE(file.queue.isDownTo(0));
}

TEST(SegmentQueue, ReadsAheadNoMoreThanSomeMegabytes) {
    const FootageFiles files;
    // Segments of 54, 54 and 18 million bytes: two are more than what is read ahead.
    QueueOfFile file(
        files.makeVideo("large.nut", 56, "-s 1280x1184 -pix_fmt yuv420p -c:v rawvideo"));
    EXPECT_EQ(file.take(Order::largestFirst, 1), (Numbers{0}));
    EXPECT_FALSE(file.queue.isDownTo(1000));
    EXPECT_EQ(file.take(Order::largestFirst, 1), (Numbers{1}));
    EXPECT_TRUE(file.queue.isDownTo(1)) << "what has been handed out makes room";
}

/// Makes three segments in groups of ten and then a group that no segment can hold.
std::filesystem::path makeTooLong(const FootageFiles& files) {
    return files.makeVideo("long.mp4", 300 + 1501,
                           "-c:v libx264 -preset ultrafast -g 9999 -bf 0 -sc_threshold 0 "
                           "-force_key_frames 'expr:lte(n,300)*not(mod(n,10))'");
}

TEST(SegmentQueue, FailsOnceAndBehindAllThatCameBefore) {
    const FootageFiles files;
    const auto file = makeTooLong(files);
    for (const Order order : {Order::ofVideo, Order::largestFirst}) {
        QueueOfFile failing(file);
        Numbers taken = failing.take(order, 3);
        std::sort(taken.begin(), taken.end());
        EXPECT_EQ(taken, upTo(3));
        EXPECT_TRUE(failing.queue.isDownTo(0));
        EXPECT_THROW(failing.queue.take(order), SegmentTooLong);
        EXPECT_FALSE(failing.queue.take(order)) << "it has been told";
        EXPECT_EQ(failing.queue.first(), 3);
    }
}

TEST(SegmentQueue, SaysNothingOfAFailureBehindTheLimit) {
    const FootageFiles files;
    QueueOfFile failing(makeTooLong(files));
    EXPECT_EQ(failing.take(Order::largestFirst, 1000, 2).size(), 2U);
    EXPECT_EQ(failing.take(Order::largestFirst, 1000, 2), Numbers{});
    EXPECT_EQ(failing.take(Order::largestFirst, 1), (Numbers{2}));
    EXPECT_THROW(failing.queue.take(Order::largestFirst), SegmentTooLong);
}

}  // namespace
}  // namespace reference_host_tests
