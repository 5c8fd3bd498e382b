#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace reference_host::media {

/// Notices frames that packets have announced and that the decoder never gives.
class AwaitedFrames {
public:
    /// Takes when the frame of a packet will be shown.
    void announce(std::int64_t timestamp);

    /// Takes when the frame that was decoded next is shown. Frames are given in that order, so that
    /// earlier ones will not come any more.
    void meet(std::int64_t timestamp);

    /// Takes that no frame will come any more.
    void end();

    /// Returns when the first of the frames would have been shown that were missed at the last
    /// meeting, or at the end; none where all came.
    std::optional<std::int64_t> firstMissed() const { return missed_; }

private:
    /// Ascending.
    std::vector<std::int64_t> awaited_;
    std::optional<std::int64_t> missed_;
};

}  // namespace reference_host::media
