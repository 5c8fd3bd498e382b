#pragma once

#include "autotrim/Options.h"

namespace autotrim {

/// Shows or deletes what is kept, and tells the user on the standard output. Returns the exit code.
/// Throws std::runtime_error, which names the directory, when it cannot be read.
int runCacheCommand(const CacheCommand& command);

}  // namespace autotrim
