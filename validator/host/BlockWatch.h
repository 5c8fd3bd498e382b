#pragma once

#include <cstddef>

namespace validator {

/// Watches the blocks that `::operator new` gives while it lives, to whoever asks for them, and
/// whether they are given to `::operator delete`. They are not freed in truth, so that a block
/// keeps its address. One at a time; for a few thousand blocks.
///
/// This program's operators are used by the candidate, too, as those of any program are, except
/// where a system binds them when a library is made: making a watch skips the check there.
class BlockWatch {
public:
    BlockWatch();
    BlockWatch(const BlockWatch&) = delete;
    BlockWatch& operator=(const BlockWatch&) = delete;
    ~BlockWatch();

    /// Returns the size with which the block was asked for; 0 for what is no block of this watch.
    std::size_t sizeOf(const void* block) const;

    /// Returns how often the block was given to `::operator delete`.
    int timesFreed(const void* block) const;

    /// Returns how many of the blocks of this size are not freed.
    std::size_t liveOfSize(std::size_t size) const;
};

}  // namespace validator
