#ifndef KYR_MODEL_TPROPERTYLAYOUT_H
#define KYR_MODEL_TPROPERTYLAYOUT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class TCIMPropertyDecl;

/// The properties of an instance and their order: the names and declarations that its class had when the instance was
/// made. Instances made between two changes of the class share one layout.
class TPropertyLayout {
public:
    static constexpr size_t kNone = static_cast<size_t>(-1);

    /// Uses the present names of the declarations; of two with the same name, the first.
    explicit TPropertyLayout(const std::vector<const TCIMPropertyDecl*>& declarations);

    size_t Size() const { return fEntries.size(); }
    const TCIMPropertyDecl& DeclarationAt(size_t index) const { return *fEntries[index].second; }
    const std::string& NameAt(size_t index) const { return fEntries[index].first; }
    /// The index of a normalised name, or kNone.
    size_t Find(std::string_view name) const;
    bool operator!=(const TPropertyLayout& other) const { return fEntries != other.fEntries; }

private:
    void FillSlots();
    uint32_t SlotAt(size_t slot) const { return fSlots[slot & (fSlots.size() - 1)]; }
    size_t Search(std::string_view name) const;

    std::vector<std::pair<std::string, const TCIMPropertyDecl*>> fEntries;  // sorted by name
    // A hash table of indices. A name is in one of kProbes slots, and is searched for by halves if all have others.
    std::vector<uint32_t> fSlots;
};

#endif
