#ifndef KYR_MODEL_TSMALLOBJECT_H
#define KYR_MODEL_TSMALLOBJECT_H

#include <cstddef>
#include <new>

/// Base of the small objects that come in millions, one for each property and value. They are cut from larger slabs,
/// which saves the allocator's word for each and most of its time. A slab goes back to the allocator when the last
/// object in it is gone, whatever container or value that belonged to.
///
/// Threads share no object, but one may destroy what another made, also when that thread has ended. No lock is taken.
///
/// Under AddressSanitizer the memory of objects that are gone is poisoned.
class TSmallObject {
public:
    static void* operator new(std::size_t size);
    static void operator delete(void* object, std::size_t size) noexcept;
};

/// Makes small objects of the nodes of a standard container, and of what a shared pointer needs.
template <typename T>
class TSmallObjectAllocator {
public:
    using value_type = T;

    TSmallObjectAllocator() = default;
    template <typename TOther>
    TSmallObjectAllocator(const TSmallObjectAllocator<TOther>&) {}

    T* allocate(std::size_t count) { return static_cast<T*>(TSmallObject::operator new(count * sizeof(T))); }
    void deallocate(T* objects, std::size_t count) { TSmallObject::operator delete(objects, count * sizeof(T)); }
    template <typename TOther>
    bool operator==(const TSmallObjectAllocator<TOther>&) const {
        return true;
    }
    template <typename TOther>
    bool operator!=(const TSmallObjectAllocator<TOther>&) const {
        return false;
    }
};

#endif
