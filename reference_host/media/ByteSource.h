#pragma once

#include <cstddef>
#include <cstdint>

namespace reference_host::media {

/// Bytes that can be read at any place.
class ByteSource {
public:
    virtual ~ByteSource() = default;

    virtual std::int64_t sizeBytes() const = 0;

    /// Reads up to `size` bytes at `offset`. Returns how many were read, 0 at the end, or the
    /// negative errno.
    virtual std::ptrdiff_t readAt(std::int64_t offset, std::uint8_t* buffer,
                                  std::size_t size) const = 0;
};

}  // namespace reference_host::media
