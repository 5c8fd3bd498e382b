#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "modules/BusinessLayer/MaterialAnalysis/Records.h"

namespace KOR {

/// What a result file says about the run that wrote it.
struct ResultCacheHeader {
    const std::string& version;
    const std::vector<std::int32_t>& analysisKinds;
    std::int64_t minScenceDuration;  ///< seconds
    double scenceDetectionThreshold;
};

/// Returns the kinds in decimal, joined by "," without blanks: 4,3.
std::string joinedKinds(const std::vector<std::int32_t>& analysisKinds);

/// Returns the text of the result file: pretty-printed JSON, indented by four blanks. A score or
/// threshold that is not finite is left out behind its key, which leaves a text that no reader
/// accepts.
std::string resultCacheText(const ResultCacheHeader& header,
                            const std::vector<const MaterialAnalysisResult*>& results);

}  // namespace KOR
