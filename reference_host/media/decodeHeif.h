#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "reference_host/media/ByteSource.h"

namespace reference_host::media {

/// Decodes the photo of a HEIF or AVIF file. Returns it upright, in the uncompressed format PPM;
/// none where the file is no such photo, or this host is built without libheif. Throws MediaError
/// for a photo that is damaged or beyond the limits.
std::optional<std::vector<std::uint8_t>> decodeHeif(const ByteSource& file);

}  // namespace reference_host::media
