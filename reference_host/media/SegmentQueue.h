#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <exception>
#include <limits>
#include <optional>

#include "reference_host/media/Container.h"
#include "reference_host/media/Segment.h"
#include "reference_host/media/SegmentReader.h"

namespace reference_host::media {

/// Reads the segments of a video some way ahead, and has the large ones among the last worked on
/// first: begun at last, one of them would have others wait for it. Belongs to one thread at a
/// time.
class SegmentQueue {
public:
    /// Reads what `container`, which has to outlive this, gives from now on.
    explicit SegmentQueue(Container& container) : reader_(container) {}

    enum class Order {
        ofVideo,
        largestFirst  ///< of what is left, once all of it has been read
    };

    static constexpr std::int64_t noLimit = std::numeric_limits<std::int64_t>::max();

    /// Hands out a segment whose number is below `limit`; none if none is left. Throws what
    /// SegmentReader does once everything in front of that place has been handed out.
    std::optional<Segment> take(Order order, std::int64_t limit = noLimit);

    /// The number of the first segment that has not been handed out.
    std::int64_t first() const { return ahead_.empty() ? read_ : ahead_.front().segment.number; }

    /// Says whether that many segments are left at most.
    bool isDownTo(std::size_t count) const { return isAtEnd_ && ahead_.size() <= count; }

private:
    struct Ahead {
        Segment segment;
        std::int64_t bytes = 0;
    };

    void readAhead();

    SegmentReader reader_;
    std::deque<Ahead> ahead_;
    std::int64_t bytesAhead_ = 0;
    std::int64_t read_ = 0;
    bool isAtEnd_ = false;
    /// Why it is, if not for the end of the video.
    std::exception_ptr failure_;
};

}  // namespace reference_host::media
