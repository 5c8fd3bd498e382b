#pragma once

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/version.h>
}

#include <cstdint>

namespace reference_host::media {

/// Returns how long `frame` claims to be shown, in the unit of its stream; 0 where it is unknown.
/// FFmpeg has renamed the field: the old one is deprecated from this version on, and gone later.
inline std::int64_t frameDuration(const AVFrame& frame) {
#if LIBAVUTIL_VERSION_INT >= AV_VERSION_INT(57, 30, 100)
    return frame.duration;
#else
    return frame.pkt_duration;
#endif
}

}  // namespace reference_host::media
