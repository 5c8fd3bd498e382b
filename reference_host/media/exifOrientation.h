#pragma once

#include <cstdint>
#include <span>

#include "reference_host/media/Orientation.h"

namespace reference_host::media {

/// Returns how the picture in a PNG, WebP or TIFF file is to be turned by its EXIF tag
/// "Orientation"; upright for every other file, and where there is no such tag. `file` holds all
/// bytes of the file; any bytes will do.
Orientation exifOrientation(std::span<const std::uint8_t> file);

}  // namespace reference_host::media
