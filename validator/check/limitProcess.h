#pragma once

#include <filesystem>

namespace validator {

/// Keeps what a check may do to the machine within bounds: no picture of a crashed process is
/// written, temporary files go to `scratch`, and, save on Windows, no file grows beyond 64 MiB and
/// the process not beyond 4 GiB, unless it was built for a sanitizer.
void limitProcess(const std::filesystem::path& scratch);

}  // namespace validator
