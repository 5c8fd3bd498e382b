#pragma once

#include <filesystem>

namespace validator {

/// Makes something at `path` that is there, can be deleted as a file, and opens for nobody, the
/// administrator included. False where the system has nothing of the kind.
bool makeUnopenable(const std::filesystem::path& path);

}  // namespace validator
