#include "reference_host/media/KeyFrames.h"

#include <utility>

#include "reference_host/media/Limits.h"

namespace reference_host::media {

void KeyFrames::add(const AVPacket& packet) {
    isUsable_ = isUsable_ && isInOrder(packet);
    if (!isUsable_ || (packet.flags & AV_PKT_FLAG_KEY) == 0) return;
    isUsable_ = !lastKey_ || packet.pts > *lastKey_;
    lastKey_ = packet.pts;
    keep(packet.pts);
}

bool KeyFrames::isInOrder(const AVPacket& packet) {
    if (packet.pts == AV_NOPTS_VALUE) return false;
    const bool isNew = packet.pts != std::exchange(lastShown_, packet.pts);
    if (packet.dts == AV_NOPTS_VALUE) return isNew;
    const std::optional<std::int64_t> before = std::exchange(lastDecoded_, packet.dts);
    return isNew && (!before || *before <= packet.dts);
}

void KeyFrames::keep(std::int64_t timestamp) {
    if (met_++ % stride_ != 0) return;
    if (timestamps_.size() == maxKeyTimestamps) {
        for (std::size_t i = 1; 2 * i < timestamps_.size(); ++i)
            timestamps_[i] = timestamps_[2 * i];
        timestamps_.resize(timestamps_.size() / 2);
        stride_ *= 2;
    }
    timestamps_.push_back(timestamp);
}

std::vector<std::int64_t> KeyFrames::take() {
    if (!isUsable_) timestamps_.clear();
    return std::move(timestamps_);
}

}  // namespace reference_host::media
