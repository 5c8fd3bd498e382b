#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "reference_host/media/AvPointers.h"

namespace reference_host::media {

/// Packets in the order in which they are decoded, the first one a key frame's, whose pictures need
/// none but these.
using PacketGroup = std::vector<AvPointer<AVPacket>>;

/// A stretch of a video that can be decoded by itself.
struct Segment {
    /// 0 for the first one of a video.
    std::int64_t number = 0;
    /// Groups of pictures, each but the first beginning with a key frame.
    std::vector<PacketGroup> groups;
    /// What comes behind the last group and is needed to decode the whole of it: the next key
    /// frame, and those packets behind it whose pictures are shown before it. Empty at the end of
    /// the video.
    PacketGroup next;
    /// No picture needs another: the groups are as long as somebody chose.
    bool standsAlone = false;
};

/// The key frames of a video are not such that decoding can begin there.
struct NotDivisible {};

}  // namespace reference_host::media
