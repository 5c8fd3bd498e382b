#pragma once

#include <stop_token>

#include "autotrim/Options.h"
#include "autotrim/ProgressDisplay.h"
#include "autotrim/Report.h"

namespace autotrim {

/// Opens the files, has them all analysed in runs side by side, each of a component of its own, and
/// returns what has become of each. When `interruption` is requested, by any thread, what is done
/// until then is kept.
///
/// Tells the user at once which files cannot be used, and afterwards what else went wrong. Throws
/// std::runtime_error when the component cannot be loaded or does not do its part.
Report analyse(const Options& options, const std::stop_token& interruption,
               ProgressDisplay& display);

}  // namespace autotrim
