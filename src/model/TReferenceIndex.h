#ifndef KYR_MODEL_TREFERENCEINDEX_H
#define KYR_MODEL_TREFERENCEINDEX_H

#include <atomic>
#include <boost/shared_ptr.hpp>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "model/TSmallObject.h"

class ICIMElement;
class TCIMInstance;

/// Which instances of an association refer to an element, so that a walk need not look at all of them. There is none
/// while a reference is NULL or has not been looked up yet: looking at it may raise, and where it leads may change. The
/// owner drops the index when an instance is added or removed.
class TReferenceIndex {
public:
    using TEntry = std::pair<const std::string, boost::shared_ptr<TCIMInstance>>;
    using TInstances =
        std::multimap<std::string, TEntry::second_type, std::less<std::string>, TSmallObjectAllocator<TEntry>>;

    /// To be called when the value of a property changes that is or was a reference.
    static void NoteChange() { ++fgChangeCount; }
    /// To be called when a reference has found its element.
    static void NoteLookUp() { ++fgLookUpCount; }

    /// True if Find may be called. The index is made by the second call since a change: making it takes longer than
    /// to look at all instances once.
    bool Prepare(const TInstances& instances);
    /// Adds the instances that refer to the element, in their order.
    void Find(const ICIMElement& target, std::vector<TCIMInstance*>& instances) const;

private:
    enum class EState { eUnknown, eAskedFor, eImpossible, eReady };

    bool Make(const TInstances& instances);
    void FillSlots();
    std::size_t FindSlot(const ICIMElement& target) const;

    // Of every container, and so of every thread.
    static std::atomic<unsigned long> fgChangeCount;
    static std::atomic<unsigned long> fgLookUpCount;

    EState fState = EState::eUnknown;
    unsigned long fChangeCount = 0;  // when the state was reached
    unsigned long fLookUpCount = 0;
    std::vector<std::pair<const ICIMElement*, TCIMInstance*>> fReferring;  // those of one element side by side
    std::vector<std::uint32_t> fSlots;  // a hash table by element: where its instances begin in fReferring
};

#endif
