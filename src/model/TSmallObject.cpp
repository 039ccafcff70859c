#include "model/TSmallObject.h"

#include <limits.h>
#include <pthread.h>

#include <atomic>
#include <cstdint>
#include <cstdlib>

#include "platform/Sanitizers.h"

#ifdef KYR_ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(memory, size)
#define ASAN_UNPOISON_MEMORY_REGION(memory, size)
#endif

// A slab that has room is owned by the thread that allocates from it, and no other thread changes its counts and free
// blocks. Blocks that other threads free in it go on the list `returned`, which the owner takes over when the slab
// looks full, or when it ends. A full slab has no owner: the next thread that frees an object in it becomes the owner.
// So a container that was handed to another thread is destroyed there as fast as one that was made there, and its
// memory goes back to the allocator at once.

namespace {

constexpr std::size_t kSlabSize = 32 * 1024;  // and its alignment, so that an object's slab follows from its address
constexpr std::size_t kGrain = 8;             // of sizes; also the alignment of the objects
constexpr std::size_t kLargest = 128;
constexpr std::uint64_t kNoThread = ~std::uint64_t{0};

/// A block without an object. Under AddressSanitizer it is poisoned, and its link is read and written unchecked.
class TFreeBlock {
public:
    [[gnu::no_sanitize_address]] TFreeBlock* Next() const { return fNext; }
    [[gnu::no_sanitize_address]] void SetNext(TFreeBlock* next) { fNext = next; }

private:
    TFreeBlock* fNext;
};

TFreeBlock gUnowned;  // in place of the blocks that other threads returned: the slab has no owner

struct TSlab;

#ifdef KYR_ADDRESS_SANITIZER
/// No pointer that the leak checker knows: a slab is reached through its objects alone, and is reported as lost when
/// they are.
class TSlabLink {
public:
    TSlabLink& operator=(TSlab* slab) {
        fNegated = -reinterpret_cast<std::intptr_t>(slab);
        return *this;
    }
    operator TSlab*() const { return reinterpret_cast<TSlab*>(-fNegated); }
    TSlab* operator->() const { return *this; }

private:
    std::intptr_t fNegated = 0;
};
#else
using TSlabLink = TSlab*;
#endif

struct TSlab {
    TFreeBlock* free;    // blocks that were used and given back
    char* untouched;     // from here on no block was ever used
    std::size_t used;    // blocks that are objects now, or were returned and not taken over yet
    TSlabLink previous;  // among the owner's slabs of one size
    TSlabLink next;
    std::atomic<std::uint64_t> owner;  // the thread's number, or kNoThread
    std::atomic<TFreeBlock*> returned;

    void* Take(std::size_t block) {
        void* object = free;
        if (object != nullptr) {
            free = free->Next();
        } else {
            object = untouched;
            untouched += block;
        }
        ++used;
        return object;
    }

    void Put(TFreeBlock* object) {
        object->SetNext(free);
        free = object;
        --used;
    }

    bool IsFull(std::size_t block) const {
        return free == nullptr && untouched + block > reinterpret_cast<const char*>(this) + kSlabSize;
    }

    void TakeReturned() {
        TFreeBlock* object = returned.exchange(nullptr, std::memory_order_acquire);
        while (object != nullptr) {
            TFreeBlock* const following = object->Next();
            Put(object);
            object = following;
        }
    }

    /// Gives up the slab, which another thread may own or free from then on. False if there are returned blocks, which
    /// nobody would take over.
    bool Disown() {
        const std::uint64_t thread = owner.load(std::memory_order_relaxed);
        owner.store(kNoThread, std::memory_order_relaxed);
        TFreeBlock* none = nullptr;
        if (returned.compare_exchange_strong(none, &gUnowned, std::memory_order_release, std::memory_order_relaxed))
            return true;
        owner.store(thread, std::memory_order_relaxed);
        return false;
    }

    /// What a thread that does not own the slab does to free an object. True makes it the owner, and the object is
    /// still to be put. After false the slab may be gone.
    bool OwnOrReturn(TFreeBlock* object) {
        TFreeBlock* head = returned.load(std::memory_order_relaxed);
        for (;;) {
            TFreeBlock* const wanted = head == &gUnowned ? nullptr : object;
            if (wanted == object) object->SetNext(head);
            if (returned.compare_exchange_weak(head, wanted, std::memory_order_acq_rel, std::memory_order_relaxed))
                return wanted == nullptr;
        }
    }
};

constexpr std::size_t kHeader = (sizeof(TSlab) + kGrain - 1) / kGrain * kGrain;

TSlab* NewSlab() {
    void* memory = std::aligned_alloc(kSlabSize, kSlabSize);
    if (memory == nullptr) throw std::bad_alloc();
    char* const blocks = static_cast<char*>(memory) + kHeader;
    ASAN_POISON_MEMORY_REGION(blocks, kSlabSize - kHeader);
    return new (memory) TSlab{nullptr, blocks, 0, {}, {}, {kNoThread}, {nullptr}};
}

TSlab* SlabOf(void* object) {
    const std::uintptr_t offset = reinterpret_cast<std::uintptr_t>(object) & (kSlabSize - 1);
    return reinterpret_cast<TSlab*>(static_cast<char*>(object) - offset);
}

/// A thread's slabs with room for blocks of one size.
class TSlabList {
public:
    void* Allocate(std::size_t block) {
        if (fFirst == nullptr) Open();
        TSlab* const slab = fFirst;
        void* const object = slab->Take(block);
        if (slab->IsFull(block)) Retire(*slab);
        return object;
    }

    void Free(TSlab& slab, TFreeBlock* object) {
        slab.Put(object);
        if (slab.used == 0) Drop(slab);
    }

    /// Frees an object in a slab of which another thread, or nobody, was the owner a moment ago.
    [[gnu::cold, gnu::noinline]] void FreeForeign(TSlab& slab, TFreeBlock* object) {
        if (!slab.OwnOrReturn(object)) return;
        Own(slab);
        Free(slab, object);
    }

    void HandOn() {
        std::free(fSpare);
        fSpare = nullptr;
        while (fFirst != nullptr) HandOn(*fFirst);
    }

private:
    void Own(TSlab& slab);

    [[gnu::cold, gnu::noinline]] void Open() {
        TSlab* const slab = fSpare != nullptr ? fSpare : NewSlab();
        fSpare = nullptr;
        Own(*slab);
    }

    [[gnu::cold, gnu::noinline]] void Retire(TSlab& slab) {
        Remove(slab);
        if (slab.Disown()) return;
        slab.TakeReturned();
        Push(slab);
    }

    [[gnu::cold, gnu::noinline]] void Drop(TSlab& slab) {
        Remove(slab);
        if (fFirst != nullptr || fSpare != nullptr) return std::free(&slab);
        fSpare = &slab;
    }

    void HandOn(TSlab& slab) {
        Remove(slab);
        do {
            slab.TakeReturned();
            if (slab.used == 0) return std::free(&slab);
        } while (!slab.Disown());
    }

    void Push(TSlab& slab) {
        slab.previous = nullptr;
        slab.next = fFirst;
        if (fFirst != nullptr) fFirst->previous = &slab;
        fFirst = &slab;
    }

    void Remove(TSlab& slab) {
        (slab.previous != nullptr ? slab.previous->next : fFirst) = slab.next;
        if (slab.next != nullptr) slab.next->previous = slab.previous;
    }

    TSlabLink fFirst{};
    TSlab* fSpare = nullptr;  // empty, for the next
};

/// What a thread owns. Constant-initialised and without a destructor: objects may be made before static initialisation
/// and destroyed after it.
class TThread {
public:
    std::uint64_t Number() const { return fNumber; }
    TSlabList& ListAt(std::size_t index) { return fLists[index]; }

    /// Is called before the thread owns a slab. A thread may enter again after it has handed on its slabs: other code
    /// that runs at its end destroys objects too.
    void Enter() {
        if (fIsEndWatched) return;
        static std::atomic<std::uint64_t> last = 0;
        static const pthread_key_t key = MakeKey();
        if (fNumber == 0) fNumber = ++last;
        pthread_setspecific(key, this);
        fIsEndWatched = true;
    }

private:
    // If there is no key to be had, the slabs of threads that have ended keep what is freed in them.
    static pthread_key_t MakeKey() {
        pthread_key_t key = PTHREAD_KEYS_MAX;
        pthread_key_create(&key, [](void* thread) { static_cast<TThread*>(thread)->HandOn(); });
        return key;
    }

    void HandOn() {
        fIsEndWatched = false;
        for (TSlabList& list : fLists) list.HandOn();
    }

    std::uint64_t fNumber = 0;  // never used again: the next thread may get this one's memory
    bool fIsEndWatched = false;
    TSlabList fLists[kLargest / kGrain];  // by size
};

// With an offset known at start-up, which saves a call at each use.
[[gnu::tls_model("initial-exec")]] thread_local TThread tThread;

void TSlabList::Own(TSlab& slab) {
    tThread.Enter();
    slab.owner.store(tThread.Number(), std::memory_order_relaxed);
    Push(slab);
}

std::size_t IndexOf(std::size_t size) { return (size - 1) / kGrain; }

}  // namespace

void* TSmallObject::operator new(std::size_t size) {
    if (size > kLargest) return ::operator new(size);
    const std::size_t index = IndexOf(size);
    void* const object = tThread.ListAt(index).Allocate((index + 1) * kGrain);
    ASAN_UNPOISON_MEMORY_REGION(object, size);
    return object;
}

void TSmallObject::operator delete(void* object, std::size_t size) noexcept {
    if (object == nullptr) return;
    if (size > kLargest) return ::operator delete(object);
    ASAN_POISON_MEMORY_REGION(object, size);
    TSlab& slab = *SlabOf(object);
    auto* const block = new (object) TFreeBlock;
    TSlabList& list = tThread.ListAt(IndexOf(size));
    if (slab.owner.load(std::memory_order_relaxed) != tThread.Number()) return list.FreeForeign(slab, block);
    list.Free(slab, block);
}
