#pragma once

#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

namespace reference_host::cache {

/// What is kept of one material: files of known names in a directory whose name is a content key.
struct KeptMaterial {
    std::filesystem::path directory;
    std::vector<std::filesystem::path> files;
    /// The component's results are among them.
    bool hasResult = false;
    /// What could not be looked at, with the reason: one line each.
    std::vector<std::string> failures;
};

/// Returns what is kept below `root`, symbolic links and all things of others left aside; nothing
/// where there is no such directory. Throws std::runtime_error, which names it, where it cannot be
/// read.
std::vector<KeptMaterial> keptMaterials(const std::filesystem::path& root);

/// Returns a line on what failed with `path`.
std::string failureLine(const std::filesystem::path& path, const std::error_code& error);

}  // namespace reference_host::cache
