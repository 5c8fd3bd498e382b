#include <stdexcept>

#include "validator/component/groups.h"

namespace validator {
namespace {

void loads(const Occasion& occasion) {
    try {
        const dynamic_library::DynamicLibrary library(occasion.library);
    } catch (const std::runtime_error& error) {
        fail("loading the library", "a library", error.what());
    }
}

void isLoadedAgain(const Occasion& occasion) {
    for (int i = 0; i < 3; ++i) {
        Stage stage(occasion);
        expectEqual("release()", stage.create().release()->release(), 0);
    }
}

template <typename Body>
RunnableCheck onStage(std::string_view id, std::string_view claim, Body body) {
    return {id, claim, [body](const Occasion& occasion) {
                Stage stage(occasion);
                body(stage);
            }};
}

/// The text of an exported key. Both worlds mangle names alike.
std::string keyNamed(const Stage& stage, const std::string& constant) {
    const std::string name =
        "_ZN3KOR16analysisParamKey" + std::to_string(constant.size()) + constant + "E";
    const auto* const key = static_cast<const char* const*>(stage.exported(name.c_str()));
    if (key == nullptr || *key == nullptr) fail(name, "an exported text", "none");
    return *key;
}

}  // namespace

const std::vector<RunnableCheck> libraryChecks = {
    {"library.loads", "The library loads with everything that it needs from a host.", loads},
    {"library.loads-again", "The library can be unloaded and loaded again, and works each time.",
     isLoadedAgain},
    onStage("library.exports-factory", "The library exports createMaterialAnalysis by that name.",
            [](Stage& stage) {
                expectObject("createMaterialAnalysis", stage.exported("createMaterialAnalysis"));
            }),
    onStage("library.key-min-scene-duration",
            "KOR::analysisParamKey::minScenceDuration is exported and has its own name as text.",
            [](Stage& stage) {
                expectEqual("the key", keyNamed(stage, "minScenceDuration"), "minScenceDuration");
            }),
    onStage("library.key-threshold",
            "KOR::analysisParamKey::scenceDetectionThreshold is exported and has its own name as "
            "text.",
            [](Stage& stage) {
                expectEqual("the key", keyNamed(stage, "scenceDetectionThreshold"),
                            "scenceDetectionThreshold");
            }),
    onStage("library.key-min-need-analysis",
            "KOR::analysisParamKey::minNeedAnalysisDuartion is exported and has its own name as "
            "text.",
            [](Stage& stage) {
                expectEqual("the key", keyNamed(stage, "minNeedAnalysisDuartion"),
                            "minNeedAnalysisDuartion");
            }),
    onStage("library.key-photo",
            "KOR::analysisParamKey::photoNeedAnalysis is exported and has its own name as text.",
            [](Stage& stage) {
                expectEqual("the key", keyNamed(stage, "photoNeedAnalysis"), "photoNeedAnalysis");
            }),
};

}  // namespace validator
