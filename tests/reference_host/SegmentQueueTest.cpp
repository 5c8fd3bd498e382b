#include <algorithm>
#include <cstdint>
#include <filesystem>
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

/// Groups of ten pictures, so that nine of them, 90 pictures, make a segment.
const std::string groupsOfTen = "-c:v libx264 -preset ultrafast -g 10 -bf 0 -sc_threshold 0";

/// Makes a video of `plain` pictures with `busy` ones behind them and as many plain ones at the end,
/// 30 a second.
std::filesystem::path makeVideo(const FootageFiles& files, int plain, int busy) {
    const auto lasting = [](int pictures) {
        return "=size=64x48:rate=30:duration=" + std::to_string(pictures / 30.0);
    };
    return files.encode("a.mp4",
                        "-f lavfi -i color" + lasting(plain) + " -f lavfi -i testsrc2" +
                            lasting(busy) + " -f lavfi -i color" + lasting(plain) +
                            " -filter_complex concat=n=3 " + groupsOfTen);
}

std::vector<std::int64_t> numbersTaken(SegmentQueue& queue, Order order) {
    std::vector<std::int64_t> numbers;
    while (const std::optional<Segment> segment = queue.take(order))
        numbers.push_back(segment->number);
    return numbers;
}

}  // namespace
}  // namespace reference_host_tests
