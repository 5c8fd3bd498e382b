#pragma once

#include <filesystem>
#include <string>

namespace validator {

/// A new and empty directory among the temporary files, which goes with this object, and all that
/// is in it.
class ScratchDirectory {
public:
    /// Throws std::runtime_error when it cannot be made.
    ScratchDirectory();
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    ~ScratchDirectory();

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace validator
