#include <cstdlib>

#include "validator/component/memoryInUse.h"

#ifdef __GLIBC__
#if __GLIBC_PREREQ(2, 33)
#define VALIDATOR_KNOWS_MEMORY
#include <malloc.h>
#endif
#endif

namespace validator {

std::optional<std::size_t> memoryInUse() {
#ifdef VALIDATOR_KNOWS_MEMORY
    const struct mallinfo2 heap = mallinfo2();
    // What is large has a mapping of its own.
    if (heap.uordblks != 0) return heap.uordblks + heap.hblkhd;
#endif
    return std::nullopt;
}

}  // namespace validator
