#pragma once

#include <cstddef>
#include <stop_token>
#include <vector>

#include "autotrim/Materials.h"
#include "autotrim/Options.h"
#include "autotrim/ProgressDisplay.h"

namespace autotrim {

/// Opens the files, up to `jobs` of them (1 or more) at a time, and returns what has become of
/// each, in the order given. Tells the user, likewise in that order, which of them cannot be used.
/// Once `interruption` is requested, those that have not been opened are no materials.
std::vector<OpenedFile> openFiles(const Options& options, std::size_t jobs,
                                  const std::stop_token& interruption, ProgressDisplay& display);

}  // namespace autotrim
