#pragma once

#include "autotrim/Options.h"
#include "autotrim/ProgressDisplay.h"
#include "autotrim/Report.h"
#include "autotrim/RunMonitor.h"

namespace autotrim {

/// Opens the files, has them all analysed in one run of the component, and returns what has become
/// of each. When `monitor` is interrupted, what is done until then is kept.
///
/// Tells the user at once which files cannot be used, and afterwards what else went wrong. Throws
/// std::runtime_error when the component cannot be loaded or does not do its part.
Report analyse(const Options& options, RunMonitor& monitor, ProgressDisplay& display);

}  // namespace autotrim
