#include "model/TReferenceIndex.h"

#include <algorithm>
#include <tuple>

#include "kyr/TCIMInstance.h"
#include "model/TCIMInstanceImpl.h"

namespace {

constexpr std::uint32_t kEmpty = ~std::uint32_t{0};

struct TFound {
    const ICIMElement* target;
    std::size_t position;  // of the instance among all
    TCIMInstance* instance;

    auto Order() const { return std::tie(target, position); }
    bool operator<(const TFound& other) const { return Order() < other.Order(); }
    bool operator==(const TFound& other) const { return Order() == other.Order(); }
};

}  // namespace

std::atomic<unsigned long> TReferenceIndex::fgChangeCount = 0;
std::atomic<unsigned long> TReferenceIndex::fgLookUpCount = 0;

bool TReferenceIndex::Prepare(const TInstances& instances) {
    if (fChangeCount != fgChangeCount) *this = TReferenceIndex();
    fChangeCount = fgChangeCount;
    switch (fState) {
        case EState::eUnknown:
            fState = EState::eAskedFor;
            return false;
        case EState::eImpossible:
            if (fLookUpCount == fgLookUpCount) return false;
            [[fallthrough]];
        case EState::eAskedFor:
            fLookUpCount = fgLookUpCount;
            fState = Make(instances) ? EState::eReady : EState::eImpossible;
            [[fallthrough]];
        default:
            return fState == EState::eReady;
    }
}

bool TReferenceIndex::Make(const TInstances& instances) {
    std::vector<TFound> all;
    std::vector<const ICIMElement*> targets;
    std::size_t position = 0;
    for (const auto& entry : instances) {
        targets.clear();
        if (!TCIMInstanceImpl::Of(*entry.second).CollectTargets(targets)) return false;
        for (const ICIMElement* target : targets) all.push_back({target, position, entry.second.get()});
        ++position;
    }
    std::sort(all.begin(), all.end());
    // An instance that refers to a target twice is found once.
    all.erase(std::unique(all.begin(), all.end()), all.end());
    fReferring.clear();
    fReferring.reserve(all.size());
    for (const TFound& found : all) fReferring.emplace_back(found.target, found.instance);
    FillSlots();
    return true;
}

void TReferenceIndex::FillSlots() {
    std::size_t size = 4;
    while (size < 2 * fReferring.size()) size *= 2;
    fSlots.assign(size, kEmpty);
    const ICIMElement* previous = nullptr;
    for (std::size_t i = 0; i < fReferring.size(); ++i) {
        const ICIMElement* const target = fReferring[i].first;
        if (target != previous) fSlots[FindSlot(*target)] = static_cast<std::uint32_t>(i);
        previous = target;
    }
}

/// The slot of the target, or the empty one where it would be.
std::size_t TReferenceIndex::FindSlot(const ICIMElement& target) const {
    std::size_t slot = reinterpret_cast<std::uintptr_t>(&target) * 0x9e3779b97f4a7c15u >> 32;
    for (;; ++slot) {
        slot &= fSlots.size() - 1;
        if (fSlots[slot] == kEmpty || fReferring[fSlots[slot]].first == &target) return slot;
    }
}

void TReferenceIndex::Find(const ICIMElement& target, std::vector<TCIMInstance*>& instances) const {
    const std::uint32_t first = fSlots[FindSlot(target)];
    if (first == kEmpty) return;
    for (std::size_t i = first; i < fReferring.size() && fReferring[i].first == &target; ++i)
        instances.push_back(fReferring[i].second);
}
