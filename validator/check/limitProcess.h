#pragma once

#include <filesystem>

namespace validator {

/// Keeps what a check may do to the machine within bounds: no picture of a crashed process is
/// written, temporary files go to `scratch`, and, save on Windows, no file grows beyond 64 MiB and
/// the process not beyond 4 GiB, unless it was built for a sanitizer. On Linux the process ends
/// with the one that started it, as it does on Windows: a candidate that hangs does not stay behind
/// when the validator is ended.
void limitProcess(const std::filesystem::path& scratch);

}  // namespace validator
