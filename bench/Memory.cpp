#include "Memory.h"

#include <malloc.h>

#include <algorithm>
#include <cerrno>

// The allocator of the C library, under the names that stay available when this file replaces malloc and the others.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace {

bool gCounting = false;
std::size_t gAllocations = 0;
std::ptrdiff_t gLive = 0;
std::ptrdiff_t gPeak = 0;

void* Enter(void* block) {
    if (!gCounting || !block) return block;
    ++gAllocations;
    gLive += static_cast<std::ptrdiff_t>(malloc_usable_size(block));
    gPeak = std::max(gPeak, gLive);
    return block;
}

void Leave(void* block) {
    if (gCounting && block) gLive -= static_cast<std::ptrdiff_t>(malloc_usable_size(block));
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) { return Enter(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) { return Enter(__libc_calloc(count, size)); }
void* memalign(std::size_t alignment, std::size_t size) { return Enter(__libc_memalign(alignment, size)); }
void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    *block = memalign(alignment, size);
    return *block ? 0 : ENOMEM;
}

void* realloc(void* block, std::size_t size) {
    Leave(block);
    return Enter(__libc_realloc(block, size));
}

void free(void* block) {
    Leave(block);
    __libc_free(block);
}

}  // extern "C"

TMemoryMeter::TMemoryMeter() {
    gAllocations = 0;
    gLive = gPeak = 0;
    gCounting = true;
}

void TMemoryMeter::Stop() { gCounting = false; }
std::size_t TMemoryMeter::Allocations() const { return gAllocations; }
std::size_t TMemoryMeter::Peak() const { return static_cast<std::size_t>(gPeak); }
