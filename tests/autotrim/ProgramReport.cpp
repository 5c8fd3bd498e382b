#include "tests/autotrim/ProgramReport.h"

#include <fstream>
#include <iterator>

#include <gtest/gtest.h>

#include "autotrim/ExitCode.h"

namespace autotrim {

using std::filesystem::path;

std::string contentOf(const path& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

Json materialsOf(const Ended& ended) {
    return Json::parse(ended.output)["materials"];
}

Json analysed(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {"--json", "-"});
    const Ended ended = run(arguments);
    EXPECT_EQ(ended.exitCode, exitAllDone) << ended.errors;
    return materialsOf(ended);
}

Json restored(Json materials) {
    for (Json& entry : materials) {
        if (entry["type"] == "video" && entry["outcome"] == "analysed") {
            entry["outcome"] = "restored";
        }
    }
    return materials;
}

std::vector<path> resultFilesIn(const path& cacheRoot) {
    std::vector<path> found;
    if (!std::filesystem::exists(cacheRoot)) return found;
    for (const auto& entry : std::filesystem::directory_iterator(cacheRoot)) {
        const path file = entry.path() / "analysis" / "result.json";
        if (std::filesystem::is_regular_file(file)) found.push_back(file);
    }
    return found;
}

Json onlyCachedResult(const path& cacheRoot) {
    const std::vector<path> found = resultFilesIn(cacheRoot);
    return found.size() == 1 ? Json::parse(contentOf(found[0])) : Json();
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
