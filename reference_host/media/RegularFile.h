#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>

namespace reference_host::media {

/// A regular file that is open for reading. Devices, pipes and the like are never opened: opening
/// alone can block or change something there.
class RegularFile {
public:
    /// Opens `path`, taken literally. Throws MediaError.
    explicit RegularFile(const std::filesystem::path& path);
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;
    ~RegularFile();

    std::int64_t sizeBytes() const { return sizeBytes_; }

    /// Reads up to `size` bytes at `offset`. Returns how many were read, 0 at the end of the file,
    /// or the negative errno.
    std::ptrdiff_t readAt(std::int64_t offset, std::uint8_t* buffer, std::size_t size) const;

private:
    int descriptor_;
    std::int64_t sizeBytes_ = 0;
};

}  // namespace reference_host::media
