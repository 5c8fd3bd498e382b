#pragma once

#include <filesystem>
#include <memory>

#include "reference_host/media/ByteSource.h"

namespace reference_host::media {

/// Opens what FFmpeg is to read of the file at `path`: its own bytes; for a photo that only another
/// library can decode (HEIF, AVIF), the decoded picture in an uncompressed format. Throws
/// MediaError.
std::unique_ptr<ByteSource> openSource(const std::filesystem::path& path);

}  // namespace reference_host::media
