#pragma once

#include <optional>

#include "reference_host/media/AvPointers.h"
#include "reference_host/vision/Picture.h"

namespace reference_host::media {

/// Counts the brightness of all pixels of `frame`, whatever its pixel format, in full range. None
/// for a format that cannot be read.
///
/// Different levels of 8 bits are never counted as one. The brightness of coloured samples is their
/// weighted sum, so that grey ones keep their value.
std::optional<vision::LumaHistogram> countLuma(const AVFrame& frame);

}  // namespace reference_host::media
