#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "reference_host/media/AvPointers.h"

namespace reference_host::media {

/// Collects from all packets of a video where decoding can begin.
class KeyFrames {
public:
    /// Takes the next packet in the order of the file.
    void add(const AVPacket& packet);

    /// Returns the timestamps of the key frames, ascending and not too many: of very many, only
    /// every second, fourth and so on is kept. None where frames cannot be found by timestamps:
    /// where packets lack them or step back in time, or two frames claim the same one.
    std::vector<std::int64_t> take();

private:
    bool isInOrder(const AVPacket& packet);
    void keep(std::int64_t timestamp);

    std::vector<std::int64_t> timestamps_;
    std::optional<std::int64_t> lastShown_;
    std::optional<std::int64_t> lastDecoded_;
    std::optional<std::int64_t> lastKey_;
    std::int64_t met_ = 0;
    std::int64_t stride_ = 1;
    bool isUsable_ = true;
};

}  // namespace reference_host::media
