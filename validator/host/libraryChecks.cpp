#include <array>
#include <stdexcept>

#include "validator/host/exports.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

void loads(const Occasion& occasion) {
    try {
        const dynamic_library::DynamicLibrary library(occasion.library,
                                                      dynamic_library::Symbols::global);
    } catch (const std::runtime_error& error) {
        fail("loading the library", "a library", error.what());
    }
}

template <typename Names>
void expectExports(const Occasion& occasion, const Names& names) {
    const HostLibrary host(occasion);
    for (const char* const name : names)
        expectObject(name, host.exported(name));
}

}  // namespace

const std::vector<RunnableCheck> hostLibraryChecks = {
    {"library.loads", "The library loads with everything that it needs.", loads},
    {"library.exports-lists", "The library exports the four factories of host/lists.h.",
     [](const Occasion& occasion) { expectExports(occasion, exports::lists); }},
    {"library.exports-geometry", "The library exports the functions of host/geometry.h.",
     [](const Occasion& occasion) { expectExports(occasion, exports::geometry); }},
    {"library.exports-files",
     "The library exports kor_strlen, the class Path and the functions of host/files.h.",
     [](const Occasion& occasion) { expectExports(occasion, exports::files); }},
    {"library.exports-logger", "The library exports loggerWrapper.",
     [](const Occasion& occasion) { expectExports(occasion, std::array{exports::logger}); }},
    {"library.exports-tasks", "The library exports createMediaAnalysisTask.",
     [](const Occasion& occasion) { expectExports(occasion, std::array{exports::task}); }},
};

}  // namespace validator
