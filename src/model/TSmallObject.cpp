#include "model/TSmallObject.h"

#ifndef KYR_ORDINARY_ALLOCATION

#include <cstdint>
#include <cstdlib>

namespace {

constexpr std::size_t kSlabSize = 32 * 1024;  // and its alignment, so that an object's slab follows from its address
constexpr std::size_t kGrain = 16;
constexpr std::size_t kLargest = 128;

struct TFreeBlock {
    TFreeBlock* next;
};

struct TSlab {
    TFreeBlock* free;  // blocks that were used and given back
    char* untouched;   // from here on no block was ever used
    std::size_t used;  // blocks that are objects now
    TSlab* previous;   // among the slabs of one size that have room
    TSlab* next;
};

constexpr std::size_t kHeader = (sizeof(TSlab) + kGrain - 1) / kGrain * kGrain;

/// The slabs with room for blocks of one size.
class TSlabList {
public:
    void* Allocate(std::size_t block) {
        if (fFirst == nullptr) Push(NewSlab());
        TSlab* slab = fFirst;
        void* object = slab->free;
        if (object != nullptr) {
            slab->free = slab->free->next;
        } else {
            object = slab->untouched;
            slab->untouched += block;
        }
        ++slab->used;
        if (IsFull(*slab, block)) Remove(slab);
        return object;
    }

    void Free(void* object, std::size_t block) {
        TSlab* slab = SlabOf(object);
        if (IsFull(*slab, block)) Push(slab);
        slab->free = new (object) TFreeBlock{slab->free};
        if (--slab->used != 0 || (slab == fFirst && slab->next == nullptr)) return;  // one slab is kept for the next
        Remove(slab);
        std::free(slab);
    }

private:
    static TSlab* NewSlab() {
        void* memory = std::aligned_alloc(kSlabSize, kSlabSize);
        if (memory == nullptr) throw std::bad_alloc();
        return new (memory) TSlab{nullptr, static_cast<char*>(memory) + kHeader, 0, nullptr, nullptr};
    }

    static TSlab* SlabOf(void* object) {
        const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(object) & (kSlabSize - 1);
        return reinterpret_cast<TSlab*>(static_cast<char*>(object) - offset);
    }

    static bool IsFull(const TSlab& slab, std::size_t block) {
        return slab.free == nullptr && slab.untouched + block > reinterpret_cast<const char*>(&slab) + kSlabSize;
    }

    void Push(TSlab* slab) {
        slab->previous = nullptr;
        slab->next = fFirst;
        if (fFirst != nullptr) fFirst->previous = slab;
        fFirst = slab;
    }

    void Remove(TSlab* slab) {
        (slab->previous != nullptr ? slab->previous->next : fFirst) = slab->next;
        if (slab->next != nullptr) slab->next->previous = slab->previous;
    }

    TSlab* fFirst = nullptr;
};

TSlabList gSlabs[kLargest / kGrain];  // by size; constant-initialised and without a destructor: objects may come late

std::size_t IndexOf(std::size_t size) { return (size - 1) / kGrain; }

}  // namespace

void* TSmallObject::operator new(std::size_t size) {
    if (size > kLargest) return ::operator new(size);
    const std::size_t index = IndexOf(size);
    return gSlabs[index].Allocate((index + 1) * kGrain);
}

void TSmallObject::operator delete(void* object, std::size_t size) noexcept {
    if (object == nullptr) return;
    if (size > kLargest) return ::operator delete(object);
    const std::size_t index = IndexOf(size);
    gSlabs[index].Free(object, (index + 1) * kGrain);
}

#endif
