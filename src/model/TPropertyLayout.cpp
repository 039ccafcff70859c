#include "model/TPropertyLayout.h"

#include <algorithm>

#include "kyr/TCIMPropertyDecl.h"
#include "model/TNormalizedName.h"

TPropertyLayout::TPropertyLayout(const std::vector<const TCIMPropertyDecl*>& declarations) {
    fEntries.reserve(declarations.size());
    for (const TCIMPropertyDecl* declaration : declarations)
        fEntries.emplace_back(TNormalizedName(declaration->GetName()).View(), declaration);
    const auto byName = [](const auto& a, const auto& b) { return a.first < b.first; };
    std::stable_sort(fEntries.begin(), fEntries.end(), byName);
    const auto sameName = [](const auto& a, const auto& b) { return a.first == b.first; };
    fEntries.erase(std::unique(fEntries.begin(), fEntries.end(), sameName), fEntries.end());
}

size_t TPropertyLayout::Find(std::string_view name) const {
    const auto byName = [](const auto& entry, std::string_view wanted) { return entry.first < wanted; };
    const auto found = std::lower_bound(fEntries.begin(), fEntries.end(), name, byName);
    if (found == fEntries.end() || found->first != name) return kNone;
    return static_cast<size_t>(found - fEntries.begin());
}

bool TPropertyLayout::HasSameNames(const TPropertyLayout& other) const {
    const auto sameName = [](const auto& a, const auto& b) { return a.first == b.first; };
    return this == &other ||
           std::equal(fEntries.begin(), fEntries.end(), other.fEntries.begin(), other.fEntries.end(), sameName);
}
