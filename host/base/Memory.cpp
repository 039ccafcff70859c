#include "base/Memory.h"

#include <malloc.h>
#include <sys/resource.h>

size_t HeapSize() {
    const struct mallinfo2 heap = mallinfo2();
    return heap.arena + heap.hblkhd;
}

size_t AddressSpaceLimit() {
    rlimit limit{};
    return getrlimit(RLIMIT_AS, &limit) == 0 ? limit.rlim_cur : RLIM_INFINITY;
}
