#pragma once

#include <filesystem>
#include <string>

namespace reference_host::vision {

/// Returns where the cascade `name`, a path below OpenCV's own data directory, is installed: where
/// it was when this was built, or below one of the system's directories for shared files. Throws
/// std::runtime_error, which names the file and the package that holds it.
std::filesystem::path installedCascade(const std::string& name);

}  // namespace reference_host::vision
