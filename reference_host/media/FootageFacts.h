#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace reference_host::media {

/// What a look at a media file tells about it.
struct FootageFacts {
    /// It holds more than one picture.
    bool isVideo = false;
    /// Where the last frame of a video ends, counted from the first; 1 for a photo. Above 0.
    std::int64_t durationTicks = 1;
    /// The first frame's timestamp in the unit of its stream: where positions are counted from.
    std::int64_t originTimestamp = 0;
    /// The last frame's timestamp, of a video.
    std::int64_t lastTimestamp = 0;
    /// The timestamps of a video's key frames, where decoding can begin, in ascending order. Empty
    /// where frames cannot be found by their timestamps.
    std::vector<std::int64_t> keyTimestamps;
    /// What is wrong with the file although it can be used, one line each.
    std::vector<std::string> warnings;

    bool operator==(const FootageFacts&) const = default;
};

}  // namespace reference_host::media
