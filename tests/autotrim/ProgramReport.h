#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "tests/autotrim/Process.h"

namespace autotrim {

using Json = nlohmann::ordered_json;

/// Returns the bytes of a file.
std::string contentOf(const std::filesystem::path& file);

/// Returns the entries of the files, of a run with --json -.
Json materialsOf(const Ended& ended);

/// Runs autotrim on files that are all good, and returns their entries.
Json analysed(std::vector<std::string> arguments);

/// Returns what a run that can take all it needs from the cache reports of the files of which an
/// earlier run has reported `materials`.
Json restored(Json materials);

/// Returns the result files below a cache directory.
std::vector<std::filesystem::path> resultFilesIn(const std::filesystem::path& cacheRoot);

/// Returns the only result file below a cache directory, parsed; null when there is none, or more.
Json onlyCachedResult(const std::filesystem::path& cacheRoot);

/// Returns `results` of a JSON report without what a result file tells in another form, or not.
Json withoutFaces(Json results);

/// Returns where each record begins, in ticks.
std::vector<std::int64_t> beginsOf(const Json& results);

}  // namespace autotrim
