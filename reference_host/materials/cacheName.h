#pragma once

#include <filesystem>
#include <string>

namespace reference_host {

/// Returns the name of the directory that keeps what is computed for `file`: the file's own name,
/// made plain, and a key that changes with its place, its size and its time of modification.
std::string cacheName(const std::filesystem::path& file);

}  // namespace reference_host
