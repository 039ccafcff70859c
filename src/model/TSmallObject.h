#ifndef KYR_MODEL_TSMALLOBJECT_H
#define KYR_MODEL_TSMALLOBJECT_H

#include <cstddef>
#include <new>

// GCC and clang tell it in two ways.
#if defined(__SANITIZE_ADDRESS__)
#define KYR_ORDINARY_ALLOCATION
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KYR_ORDINARY_ALLOCATION
#endif
#endif

/// Base of the small objects that come in millions, one for each property and value. They are cut from larger slabs,
/// which saves the allocator's word for each and most of its time. A slab goes back to the allocator when the last
/// object in it is gone, whatever container or value that belonged to.
///
/// Under AddressSanitizer the objects come from the ordinary allocator, so that it can watch each of them.
class TSmallObject {
#ifndef KYR_ORDINARY_ALLOCATION
public:
    static void* operator new(std::size_t size);
    static void operator delete(void* object, std::size_t size) noexcept;
#endif
};

#endif
