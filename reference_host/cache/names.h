#pragma once

#include <cstddef>
#include <string_view>

/// What stands in the directory of a material: its name is a content key.
namespace reference_host::cache {

/// The facts about the file.
constexpr const char* factsName = "facts.json";

/// Facts that are being written have this name and six more characters. A writer that is killed
/// leaves them.
constexpr std::string_view unfinishedFactsName = "facts.json.unfinished-";
constexpr std::size_t unfinishedNameBytes = unfinishedFactsName.size() + 6;

/// Where the component keeps its results: a directory, and the file in it.
constexpr const char* analysisName = "analysis";
constexpr const char* resultName = "result.json";

}  // namespace reference_host::cache
