#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include "reference_host/media/RegularFile.h"

namespace reference_host::cache {

/// Returns 32 hex digits that name the content of `file` and what is found in it: they depend on
/// its size, its time of modification, samples of its bytes, analysisRevision, and `faceModel`,
/// which is the fingerprint of the model that faces are found by or empty.
///
/// The samples are all bytes of a file of up to a megabyte, and of a larger one its beginning, its
/// end and blocks between them, a megabyte together. A file that becomes shorter meanwhile has a
/// key, too. Throws media::MediaError where it cannot be read.
std::string contentKey(const media::RegularFile& file, std::string_view faceModel);

/// Says whether a file of this content key is at `path` now.
bool hasContentKey(const std::filesystem::path& path, std::string_view key,
                   std::string_view faceModel) noexcept;

/// Returns 32 hex digits that name all bytes of `file`, and these alone. Throws media::MediaError
/// where it cannot be read.
std::string fingerprint(const media::RegularFile& file);

/// Says whether `name` could be a content key.
bool isContentKey(std::string_view name);

}  // namespace reference_host::cache
