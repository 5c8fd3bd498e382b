#include "autotrim/Heap.h"

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace autotrim {

void useOneHeap() {
#ifdef __GLIBC__
    constexpr int largeBytes = 1 << 20;
    mallopt(M_ARENA_MAX, 1);
    mallopt(M_MMAP_THRESHOLD, largeBytes);
#endif
}

}  // namespace autotrim
