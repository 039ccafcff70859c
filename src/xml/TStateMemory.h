#ifndef KYR_XML_TSTATEMEMORY_H
#define KYR_XML_TSTATEMEMORY_H

#include <cstddef>
#include <new>

#include "platform/Sanitizers.h"

/// Memory of parser states that have ended, for the next ones of their size: a document has one state for each element.
/// Of each size only a few blocks are kept, so that a deeply nested document gives its memory back. Under
/// AddressSanitizer none are, so that it finds a state that is used after its end.
class TStateMemory {
public:
    TStateMemory() = default;
    TStateMemory(const TStateMemory&) = delete;
    TStateMemory& operator=(const TStateMemory&) = delete;
    ~TStateMemory() {
        for (TBlocks& blocks : fBlocks)
            while (blocks.count != 0) ::operator delete(blocks.kept[--blocks.count]);
    }

    template <std::size_t kSize>
    void* Take() {
        static_assert(kSize <= kLargest, "no state is larger");
        TBlocks& blocks = fBlocks[IndexOf(kSize)];
        return blocks.count != 0 ? blocks.kept[--blocks.count] : ::operator new((IndexOf(kSize) + 1) * kGrain);
    }
    template <std::size_t kSize>
    void Put(void* block) {
        TBlocks& blocks = fBlocks[IndexOf(kSize)];
        if (blocks.count == kKept) return ::operator delete(block);
        blocks.kept[blocks.count++] = block;
    }

private:
#ifdef KYR_ADDRESS_SANITIZER
    static constexpr unsigned int kKept = 0;
#else
    static constexpr unsigned int kKept = 8;
#endif
    static constexpr std::size_t kGrain = 32;
    static constexpr std::size_t kLargest = 384;

    struct TBlocks {
        unsigned int count = 0;
        void* kept[kKept + 1];
    };

    static constexpr std::size_t IndexOf(std::size_t size) { return (size - 1) / kGrain; }

    TBlocks fBlocks[kLargest / kGrain];  // by size
};

/// Gives shared pointers to states, and their counts, memory from a TStateMemory, which must outlive them.
template <typename T>
class TStateAllocator {
public:
    using value_type = T;

    explicit TStateAllocator(TStateMemory& memory) : fMemory(&memory) {}
    template <typename TOther>
    TStateAllocator(const TStateAllocator<TOther>& other) : fMemory(other.fMemory) {}

    T* allocate(std::size_t) { return static_cast<T*>(fMemory->Take<sizeof(T)>()); }
    void deallocate(T* block, std::size_t) { fMemory->Put<sizeof(T)>(block); }
    template <typename TOther>
    bool operator==(const TStateAllocator<TOther>& other) const {
        return fMemory == other.fMemory;
    }

private:
    template <typename>
    friend class TStateAllocator;

    TStateMemory* fMemory;
};

#endif
