#pragma once

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixfmt.h>
}

namespace reference_host::media {

/// Returns the format of the same layout whose name does not say that it is full range.
AVPixelFormat withoutRange(AVPixelFormat format);

/// Says whether black and white are the ends of the sample values, rather than 16 and 235 (of 8
/// bits). Means nothing for RGB, which is full range always.
bool isFullRange(const AVFrame& frame);

}  // namespace reference_host::media
