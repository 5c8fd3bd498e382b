#pragma once

#include <cstddef>
#include <optional>

namespace validator {

/// Returns how many bytes of this process's heap are in use, the candidate's own included; nothing
/// where the system does not say, as where the heap is a sanitizer's.
std::optional<std::size_t> memoryInUse();

}  // namespace validator
