#include "reference_host/media/SegmentQueue.h"

#include <algorithm>
#include <utility>

namespace reference_host::media {
namespace {

/// So much is read ahead: at two cores, what they do in some seconds.
constexpr std::size_t mostAhead = 12;
constexpr std::int64_t mostBytesAhead = std::int64_t{64} << 20;

std::int64_t bytesOf(const Segment& segment) {
    std::int64_t bytes = 0;
    for (const PacketGroup& group : segment.groups) {
        for (const AvPointer<AVPacket>& packet : group)
            bytes += packet->size;
    }
    return bytes;
}

}  // namespace

std::optional<Segment> SegmentQueue::take(Order order, std::int64_t limit) {
    readAhead();
    const auto end = std::find_if(ahead_.begin(), ahead_.end(), [limit](const Ahead& one) {
        return one.segment.number >= limit;
    });
    if (ahead_.empty() && failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
    if (end == ahead_.begin()) return std::nullopt;
    auto chosen = ahead_.begin();
    if (isAtEnd_ && order == Order::largestFirst) {
        chosen = std::max_element(ahead_.begin(), end,
                                  [](const Ahead& a, const Ahead& b) { return a.bytes < b.bytes; });
    }
    Segment segment = std::move(chosen->segment);
    bytesAhead_ -= chosen->bytes;
    ahead_.erase(chosen);
    readAhead();
    return segment;
}

void SegmentQueue::readAhead() {
    while (!isAtEnd_ && ahead_.size() < mostAhead && bytesAhead_ < mostBytesAhead) {
        try {
            std::optional<Segment> segment = reader_.next();
            if (segment) {
                const std::int64_t bytes = bytesOf(*segment);
                ahead_.push_back({std::move(*segment), bytes});
                bytesAhead_ += bytes;
                ++read_;
            }
            isAtEnd_ = !segment;
        } catch (...) {
            isAtEnd_ = true;
            failure_ = std::current_exception();
        }
    }
}

}  // namespace reference_host::media
