#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace fuzz {

/// Takes values out of bytes, one behind the other; zeros behind the last.
class ByteReader {
public:
    ByteReader(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    /// Takes a value of any bit pattern.
    template <typename Value>
    Value take() {
        Value value{};
        const std::size_t count = std::min(sizeof value, size_);
        if (count > 0) std::memcpy(&value, data_, count);
        data_ += count;
        size_ -= count;
        return value;
    }

    /// Takes a number below `end`, which is above 0.
    std::size_t takeBelow(std::size_t end) { return take<std::uint32_t>() % end; }

    std::size_t size() const { return size_; }

private:
    const std::uint8_t* data_;
    std::size_t size_;
};

}  // namespace fuzz
