#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

namespace KOR {

/// Where the JSON library takes its memory from: it never asks whether it got any, so that what
/// runs out has to leave as std::bad_alloc.
struct JsonMemory {
    // Names and signatures are the library's (its concept Allocator).
    static constexpr bool kNeedFree = true;

    static void* Malloc(std::size_t size) { return size == 0 ? nullptr : ::operator new(size); }

    static void* Realloc(void* block, std::size_t size, std::size_t newSize) {
        void* const moved = Malloc(newSize);
        if (block != nullptr && moved != nullptr) {
            std::memcpy(moved, block, std::min(size, newSize));
        }
        Free(block);
        return moved;
    }

    static void Free(void* block) { ::operator delete(block); }
};

}  // namespace KOR
