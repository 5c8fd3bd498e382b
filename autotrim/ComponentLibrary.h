#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "autotrim/Owned.h"
#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"

namespace autotrim {

/// Returns where libMaterialAnalysis.so.1 belongs: beside the directory of the running program, in
/// a build as in an installation. Throws std::runtime_error when it is not there.
std::filesystem::path findComponentLibrary();

/// The component's library, loaded as an editor loads it: the host's services, which it needs, are
/// found in this process. Whatever it made has to be gone before it.
class ComponentLibrary {
public:
    /// Loads `file`. Throws std::runtime_error, which names the file and the reason, when it cannot
    /// be loaded or does not export what a component exports.
    explicit ComponentLibrary(const std::filesystem::path& file);

    /// Makes a component.
    Owned<KOR::IKorMaterialAnalysis> create() const;

    /// Returns the component's text of one parameter key, by the name of its constant in
    /// KOR::analysisParamKey. Throws std::runtime_error when there is none.
    const char* parameterKey(const std::string& constant) const;

private:
    struct Close {
        void operator()(void* library) const;
    };

    void* symbol(const std::string& name) const;

    std::string file_;
    std::unique_ptr<void, Close> library_;
    decltype(&createMaterialAnalysis) factory_;
};

}  // namespace autotrim
