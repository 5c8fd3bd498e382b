#include <stdexcept>

#include <dlfcn.h>

#include "dynamic_library/DynamicLibrary.h"

namespace dynamic_library {
namespace {

std::string lastError() {
    const char* const text = dlerror();
    return text == nullptr ? "unknown error" : text;
}

}  // namespace

void DynamicLibrary::Close::operator()(void* library) const {
    dlclose(library);
}

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file, Symbols symbols) {
    const std::string name = std::filesystem::absolute(file).string();
    library_.reset(
        dlopen(name.c_str(), RTLD_NOW | (symbols == Symbols::global ? RTLD_GLOBAL : RTLD_LOCAL)));
    if (!library_) throw std::runtime_error("cannot load " + name + ": " + lastError());
}

void* DynamicLibrary::symbol(const std::string& name) const {
    return dlsym(library_.get(), name.c_str());
}

}  // namespace dynamic_library
