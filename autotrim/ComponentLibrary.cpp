#include "autotrim/ComponentLibrary.h"

#include <stdexcept>
#include <string>

#include <dlfcn.h>

namespace autotrim {
namespace {

/// The component of the binary contract that this program is built for.
constexpr const char* libraryName = "libMaterialAnalysis.so.1";

std::string lastLoaderError() {
    const char* const text = dlerror();
    return text == nullptr ? "unknown error" : text;
}

}  // namespace

std::filesystem::path findComponentLibrary() {
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    // In a build both directories stand side by side; an installation may name them differently.
    for (const char* const directory : {"../lib", AUTOTRIM_INSTALLED_LIBRARIES}) {
        const auto file = program.parent_path() / directory / libraryName;
        if (std::filesystem::exists(file)) return file.lexically_normal();
    }
    throw std::runtime_error(std::string(libraryName) + " is not in " +
                             (program.parent_path() / "../lib").lexically_normal().string());
}

void ComponentLibrary::Close::operator()(void* library) const {
    dlclose(library);
}

ComponentLibrary::ComponentLibrary(const std::filesystem::path& file)
    : file_(file.string()), library_(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (!library_) throw std::runtime_error("cannot load the component: " + lastLoaderError());
    factory_ = reinterpret_cast<decltype(factory_)>(symbol("createMaterialAnalysis"));
}

Owned<KOR::IKorMaterialAnalysis> ComponentLibrary::create() const {
    return Owned<KOR::IKorMaterialAnalysis>(factory_());
}

const char* ComponentLibrary::parameterKey(const std::string& constant) const {
    // KOR::analysisParamKey::<constant>, a `const char* const`, as compilers name it.
    const std::string name =
        "_ZN3KOR16analysisParamKey" + std::to_string(constant.size()) + constant + "E";
    return *static_cast<const char* const*>(symbol(name));
}

void* ComponentLibrary::symbol(const std::string& name) const {
    void* const address = dlsym(library_.get(), name.c_str());
    if (address == nullptr) {
        throw std::runtime_error("cannot use the component: " + file_ + " does not export " + name);
    }
    return address;
}

}  // namespace autotrim
