#include <cstdio>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

/// What a command prints, line by line.
std::vector<std::string> linesOf(const char* command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command, "r"), pclose);
    std::vector<std::string> lines;
    std::string line(4096, '\0');
    while (pipe && std::fgets(line.data(), static_cast<int>(line.size()), pipe.get()) != nullptr)
        lines.emplace_back(line.data());
    return lines;
}

/// The names that the library defines for others, as the binary utilities list them.
std::set<std::string> exportedSymbols() {
    std::set<std::string> names;
    for (const auto& line :
         linesOf("nm -D --defined-only --format=posix " MATERIAL_ANALYSIS_LIBRARY))
        names.insert(line.substr(0, line.find(' ')));
    return names;
}

TEST(LibraryFile, ExportsTheFactoryAndTheKeysOnly) {
    EXPECT_EQ(exportedSymbols(),
              (std::set<std::string>{"createMaterialAnalysis",
                                     "_ZN3KOR16analysisParamKey17minScenceDurationE",
                                     "_ZN3KOR16analysisParamKey24scenceDetectionThresholdE",
                                     "_ZN3KOR16analysisParamKey23minNeedAnalysisDuartionE",
                                     "_ZN3KOR16analysisParamKey17photoNeedAnalysisE"}));
}

TEST(LibraryFile, HasTheNumberOfItsBinaryContract) {
    std::string name;
    for (const auto& line : linesOf("readelf --dynamic --wide " MATERIAL_ANALYSIS_LIBRARY)) {
        if (line.find("(SONAME)") != std::string::npos) name = line.substr(line.find('['));
    }
    EXPECT_EQ(name, "[libMaterialAnalysis.so.1]\n");
}

}  // namespace
