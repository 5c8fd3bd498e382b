#pragma once

#include "reference_host/media/AvPointers.h"
#include "reference_host/media/Orientation.h"

namespace reference_host::media {

/// Returns how wide a pixel of `frame` is in proportion to its height: as the container has it,
/// otherwise as the frame itself says; 0/1 where nobody does.
AVRational shapeOfPixels(const AVFrame& frame, const AVStream& stream);

/// Returns how `frame` is to be turned: as it says itself, otherwise as its container says.
Orientation orientationOf(const AVFrame& frame, const AVStream& stream);

}  // namespace reference_host::media
