#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "reference_host/ReferenceHost.h"

namespace autotrim {

/// Returns so many bytes for people to read: "812 B", "1.5 KiB".
std::string byteSize(std::uintmax_t bytes);

/// Returns what is kept of `materials` files, as part of a sentence: "3 files: 1.5 KiB".
std::string sumOfKept(std::size_t materials, std::uintmax_t bytes);

/// Returns what a cache keeps for people to read: a heading, a line per file, and the sum.
std::string cacheTable(const std::vector<reference_host::CachedMaterial>& materials);

}  // namespace autotrim
