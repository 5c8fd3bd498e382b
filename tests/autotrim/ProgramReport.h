#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace autotrim {

using Json = nlohmann::ordered_json;

/// Returns the only result file below a cache directory, parsed; null when there is none, or more.
Json onlyCachedResult(const std::filesystem::path& cacheRoot);

/// Returns `results` of a JSON report without what a result file tells in another form, or not.
Json withoutFaces(Json results);

/// Returns where each record begins, in ticks.
std::vector<std::int64_t> beginsOf(const Json& results);

}  // namespace autotrim
