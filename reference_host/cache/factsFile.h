#pragma once

#include <filesystem>
#include <optional>

#include "reference_host/cache/KeptFacts.h"

namespace reference_host::cache {

/// Returns the facts that are kept in `directory`; none where there is no such file, or it is not
/// one that keepFacts() has written. Whatever stands there: only a regular file is opened, and not
/// more of it is read than the facts of any file take.
std::optional<KeptFacts> keptFacts(const std::filesystem::path& directory) noexcept;

/// Keeps `facts` in `directory`, which is made if it is missing, in the place of what is kept
/// there. Readers see the old ones or the new ones, and writers at the same time all end well.
/// Where the facts cannot be written, all is as it was: they will be found out again.
void keepFacts(const std::filesystem::path& directory, const KeptFacts& facts) noexcept;

/// Deletes the facts that are kept in `directory`, if that can be done.
void forgetFacts(const std::filesystem::path& directory) noexcept;

}  // namespace reference_host::cache
