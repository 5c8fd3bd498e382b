#pragma once

#include <filesystem>
#include <string>

namespace fake_host {

/// Returns the path as hosts and the component exchange it: UTF-8, with "/" on every system.
std::string utf8Of(const std::filesystem::path& path);

/// Returns the path that `utf8` names; the empty one, which leads nowhere, where the text is no
/// UTF-8 and the system's names cannot be without.
std::filesystem::path pathOf(const std::string& utf8);

/// Makes an empty directory for temporary files, which the caller deletes. Throws
/// std::filesystem::filesystem_error when that fails.
std::filesystem::path makeTemporaryDirectory();

/// Returns the bytes of a file; empty when it cannot be read.
std::string contentOf(const std::filesystem::path& file);

}  // namespace fake_host
