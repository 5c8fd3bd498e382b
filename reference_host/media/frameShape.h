#pragma once

#include <optional>

#include "reference_host/media/AvPointers.h"
#include "reference_host/media/Orientation.h"

namespace reference_host::media {

/// Returns how wide a pixel of `frame`, of `stream`, is in proportion to its height: as the
/// container has it, otherwise as the frame itself says; 0/1 where nobody does.
AVRational shapeOfPixels(const AVStream& stream, const AVFrame& frame);

/// Returns how `frame`, of `stream`, is to be turned: as it says itself, otherwise as its container
/// says; none where nobody does.
std::optional<Orientation> orientationOf(const AVStream& stream, const AVFrame& frame);

}  // namespace reference_host::media
