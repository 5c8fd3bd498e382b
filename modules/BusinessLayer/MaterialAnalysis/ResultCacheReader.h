#pragma once

#include <string>
#include <vector>

#include "modules/BusinessLayer/MaterialAnalysis/Records.h"
#include "modules/BusinessLayer/MaterialAnalysis/ResultCacheText.h"

namespace KOR {

/// What the text of a result file is worth.
struct ResultCacheReading {
    /// Why the text is no result of the run at hand, as the log says it; null when it is one.
    const char* rejection = nullptr;
    /// The records in the order of the text, each without its media; none where it is rejected.
    std::vector<MaterialAnalysisResult> results;
};

/// Reads the text of a result file. It counts only if its header agrees with `expected`; thresholds
/// agree up to 0.001. The checks run in the order of the members in a file of ours, and the first
/// that fails decides.
///
/// Any text may be given, of any nesting. Scores are the very doubles that were written; of the
/// face rectangles only the whole numbers come back.
ResultCacheReading readResultCache(const std::string& text, const ResultCacheHeader& expected);

}  // namespace KOR
