#include <stdexcept>
#include <system_error>

#include <windows.h>

#include "dynamic_library/DynamicLibrary.h"

namespace dynamic_library {
namespace {

/// The path as UTF-8, which, unlike the system's narrow text, holds every name.
std::string utf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

std::string lastError() {
    const DWORD number = GetLastError();
    return std::system_category().message(static_cast<int>(number)) + " (error " +
           std::to_string(number) + ")";
}

}  // namespace

void DynamicLibrary::Close::operator()(void* library) const {
    FreeLibrary(static_cast<HMODULE>(library));
}

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file, Symbols) {
    const std::filesystem::path name = std::filesystem::absolute(file).make_preferred();
    // Libraries that it needs may lie beside it.
    library_.reset(LoadLibraryExW(name.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH));
    if (!library_) throw std::runtime_error("cannot load " + utf8(name) + ": " + lastError());
}

void* DynamicLibrary::symbol(const std::string& name) const {
    return reinterpret_cast<void*>(
        GetProcAddress(static_cast<HMODULE>(library_.get()), name.c_str()));
}

}  // namespace dynamic_library
