#include "model/TPropertyLayout.h"

#include <algorithm>
#include <cstring>

#include "kyr/TCIMPropertyDecl.h"
#include "model/TNormalizedName.h"

namespace {

constexpr size_t kProbes = 8;
constexpr uint32_t kEmpty = ~uint32_t{0};

template <typename T>
uint64_t Load(const char* from) {
    T bytes;
    std::memcpy(&bytes, from, sizeof bytes);
    return bytes;
}

/// The first and the last bytes, eight of each in a name that has as many.
template <typename T>
uint64_t Mix(std::string_view name) {
    return Load<T>(name.data()) + 31 * Load<T>(name.data() + name.size() - sizeof(T));
}

size_t Hash(std::string_view name) {
    uint64_t mixed = name.size();
    if (name.size() >= sizeof(uint64_t))
        mixed += Mix<uint64_t>(name);
    else if (name.size() >= sizeof(uint16_t))
        mixed += Mix<uint16_t>(name);
    return mixed * 0x9e3779b97f4a7c15u >> 32;
}

}  // namespace

TPropertyLayout::TPropertyLayout(const std::vector<const TCIMPropertyDecl*>& declarations) {
    fEntries.reserve(declarations.size());
    for (const TCIMPropertyDecl* declaration : declarations)
        fEntries.emplace_back(TNormalizedName(declaration->GetName()).View(), declaration);
    const auto byName = [](const auto& a, const auto& b) { return a.first < b.first; };
    std::stable_sort(fEntries.begin(), fEntries.end(), byName);
    const auto sameName = [](const auto& a, const auto& b) { return a.first == b.first; };
    fEntries.erase(std::unique(fEntries.begin(), fEntries.end(), sameName), fEntries.end());
    FillSlots();
}

void TPropertyLayout::FillSlots() {
    size_t size = 4;
    while (size < 2 * fEntries.size()) size *= 2;
    fSlots.assign(size, kEmpty);
    for (size_t index = 0; index < fEntries.size(); ++index) {
        size_t slot = Hash(fEntries[index].first);
        for (size_t probe = 0; probe < kProbes; ++probe, ++slot) {
            if (SlotAt(slot) != kEmpty) continue;
            fSlots[slot & (size - 1)] = static_cast<uint32_t>(index);
            break;
        }
    }
}

size_t TPropertyLayout::Find(std::string_view name) const {
    size_t slot = Hash(name);
    for (size_t probe = 0; probe < kProbes; ++probe, ++slot) {
        const uint32_t index = SlotAt(slot);
        if (index == kEmpty) return kNone;
        if (fEntries[index].first == name) return index;
    }
    return Search(name);
}

size_t TPropertyLayout::Search(std::string_view name) const {
    const auto byName = [](const auto& entry, std::string_view wanted) { return entry.first < wanted; };
    const auto found = std::lower_bound(fEntries.begin(), fEntries.end(), name, byName);
    if (found == fEntries.end() || found->first != name) return kNone;
    return static_cast<size_t>(found - fEntries.begin());
}
