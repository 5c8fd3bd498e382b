#include "tests/autotrim/ProgramReport.h"

#include <fstream>

namespace autotrim {

Json onlyCachedResult(const std::filesystem::path& cacheRoot) {
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(cacheRoot)) {
        if (entry.path().string().ends_with("/analysis/result.json")) found.push_back(entry.path());
    }
    if (found.size() != 1) return nullptr;
    std::ifstream file(found[0]);
    return Json::parse(file);
}

Json withoutFaces(Json results) {
    for (Json& record : results) {
        record.erase("faceRectOfPhoto");
        record.erase("faces");
    }
    return results;
}

std::vector<std::int64_t> beginsOf(const Json& results) {
    std::vector<std::int64_t> begins;
    for (const Json& record : results)
        begins.push_back(record["begin"].get<std::int64_t>());
    return begins;
}

}  // namespace autotrim
