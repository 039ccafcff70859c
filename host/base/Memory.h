#ifndef KYR_HOST_BASE_MEMORY_H
#define KYR_HOST_BASE_MEMORY_H

#include <cstddef>

#if defined(__SANITIZE_ADDRESS__)
/// AddressSanitizer maps terabytes, and has a heap of its own: nobody can tell its size, or limit it.
constexpr bool kIsMemoryLimitable = false;
#else
constexpr bool kIsMemoryLimitable = true;
#endif

/// The bytes that this process has got from the system for its heap.
size_t HeapSize();
/// The address space that this process may have (ulimit -v), in bytes; the greatest number if there is no limit.
size_t AddressSpaceLimit();

#endif
