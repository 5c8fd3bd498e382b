#pragma once

#include <filesystem>
#include <memory>
#include <string>

namespace dynamic_library {

/// Who finds the symbols of a library. Where a library names the file of each symbol that it needs,
/// as on Windows, both are the same.
enum class Symbols {
    local,   ///< who asks for them by name
    global,  ///< libraries that are loaded later, too
};

/// A library that is loaded at run time, for as long as this object lives. Neither may what it made
/// be used afterwards, nor what it handed out. Any thread may use it.
class DynamicLibrary {
public:
    /// Loads `file`, with everything that it needs resolved at once. A name without a directory is
    /// one of the current directory. Throws std::runtime_error, which names the file and the
    /// reason, when it cannot be loaded.
    explicit DynamicLibrary(const std::filesystem::path& file, Symbols symbols = Symbols::local);

    /// Returns the address of what the library exports as `name`, mangled where the language does
    /// that; null when there is no such thing.
    void* symbol(const std::string& name) const;

private:
    struct Close {
        void operator()(void* library) const;
    };

    std::unique_ptr<void, Close> library_;
};

}  // namespace dynamic_library
