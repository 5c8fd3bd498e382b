#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <filesystem>

#include "reference_host/media/ByteSource.h"

namespace reference_host::media {

/// A regular file that is open for reading. Devices, pipes and the like are never opened: opening
/// alone can block or change something there.
class RegularFile : public ByteSource {
public:
    /// Opens `path`, taken literally. Throws MediaError.
    explicit RegularFile(const std::filesystem::path& path);
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;
    ~RegularFile() override;

    std::int64_t sizeBytes() const override { return sizeBytes_; }

    /// Returns when the file had last been modified as it was opened.
    std::timespec modified() const { return modified_; }

    std::ptrdiff_t readAt(std::int64_t offset, std::uint8_t* buffer,
                          std::size_t size) const override;

private:
    int descriptor_;
    std::int64_t sizeBytes_ = 0;
    std::timespec modified_{};
};

}  // namespace reference_host::media
