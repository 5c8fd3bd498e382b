#pragma once

#include <string>
#include <vector>

#include "validator/Judgement.h"
#include "validator/Options.h"

namespace validator {

/// Returns the list of checks, one line each.
std::string listText(const std::vector<ListedCheck>& checks);

/// Returns what came out as text: the checks with something to say, or all if `options.verbose`,
/// and a last line that counts.
std::string reportText(const std::vector<Judged>& judged, const Options& options);

/// Returns what came out, or the list, as a JSON text of schema "material-analysis-validator/1",
/// ending with a newline.
std::string reportJson(const std::vector<Judged>& judged, const Options& options);
std::string listJson(const std::vector<ListedCheck>& checks);

/// Says whether a check failed or crashed.
bool hasFaults(const std::vector<Judged>& judged);

}  // namespace validator
