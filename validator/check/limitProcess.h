#pragma once

#include <filesystem>

namespace validator {

/// Keeps what a check may do to the machine within bounds: no picture of a crashed process is
/// written, no file grows beyond 64 MiB (save on Windows, which knows no such bound), and temporary
/// files go to `scratch`.
void limitProcess(const std::filesystem::path& scratch);

}  // namespace validator
