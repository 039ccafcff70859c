#include "render/ContainmentTree.h"

#include <algorithm>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "model/Associations.h"
#include "model/ClassNames.h"

namespace {

void SortUnique(std::vector<size_t>& numbers) {
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
}

}  // namespace

TContainmentTree::TContainmentTree(const TContainer& container, std::vector<const TCIMInstance*> instances)
    : fInstances(std::move(instances)),
      fParts(fInstances.size()),
      fParents(fInstances.size(), kNone),
      fDepths(fInstances.size(), 0),
      fPlaced(fInstances.size(), false) {
    for (size_t i = 0; i < fInstances.size(); ++i) fNumbers.emplace(fInstances[i], i);
    for (const TCIMClass* cls : AssociationsOf(*container.GetRootClass()))
        for (const TCIMInstance* association : cls->EnumerateInstances(false)) AddParts(*association);
    for (std::vector<size_t>& parts : fParts) SortUnique(parts);
    FindParents();
}

std::vector<TContainmentTree::TNode> TContainmentTree::Walk() const {
    const std::vector<size_t> order = OrderByParents();
    std::vector<size_t> first(order.size()), sizes(order.size(), 1);
    for (size_t i = 0; i < order.size(); ++i) first[order[i]] = i;
    for (auto number = order.rbegin(); number != order.rend(); ++number)
        if (fParents[*number] != kNone) sizes[fParents[*number]] += sizes[*number];
    std::vector<TNode> nodes;
    nodes.reserve(order.size());
    for (const size_t number : order)
        nodes.push_back({fInstances[number], fDepths[number], OtherPartsOf(number, first, sizes)});
    return nodes;
}

void TContainmentTree::AddParts(const TCIMInstance& association) {
    const std::vector<TAssociationEnd> ends = EndsOf(association);
    if (ends.size() < 2) return;
    const size_t ownerEnd = OwnerAmong(association, ends);
    const auto owner = fNumbers.find(ends[ownerEnd].instance);
    if (owner == fNumbers.end()) return;
    for (size_t i = 0; i < ends.size(); ++i) {
        const auto part = fNumbers.find(ends[i].instance);
        if (i != ownerEnd && part != fNumbers.end() && part != owner) fParts[owner->second].push_back(part->second);
    }
}

// Instances are placed in topological order: each after all of its owners, so that the deepest owner is known. If no
// such instance is left, the links form a cycle. It is cut at an instance that has a placed owner (reached), or at the
// first one that is not placed yet.
void TContainmentTree::FindParents() {
    std::vector<size_t> waiting(fInstances.size(), 0);  // for each instance, how many owners are not placed
    std::deque<size_t> ready, reached;
    for (const std::vector<size_t>& parts : fParts)
        for (const size_t part : parts) ++waiting[part];
    for (size_t i = 0; i < waiting.size(); ++i)
        if (waiting[i] == 0) ready.push_back(i);
    for (size_t next = 0; next < fInstances.size();) {
        std::deque<size_t>& source = ready.empty() ? reached : ready;
        const size_t number = source.empty() ? next++ : source.front();
        if (!source.empty()) source.pop_front();
        if (!fPlaced[number]) Place(number, ready, reached, waiting);
    }
}

void TContainmentTree::Place(size_t owner, std::deque<size_t>& ready, std::deque<size_t>& reached,
                             std::vector<size_t>& waiting) {
    fPlaced[owner] = true;
    for (const size_t part : fParts[owner]) {
        if (fPlaced[part]) continue;
        if (fParents[part] == kNone || fDepths[part] <= fDepths[owner]) {
            fParents[part] = owner;
            fDepths[part] = fDepths[owner] + 1;
        }
        (--waiting[part] == 0 ? ready : reached).push_back(part);
    }
}

std::vector<size_t> TContainmentTree::OrderByParents() const {
    std::vector<std::vector<size_t>> below(fInstances.size());
    std::vector<size_t> order, open;
    for (size_t i = fInstances.size(); i-- > 0;) (fParents[i] == kNone ? open : below[fParents[i]]).push_back(i);
    while (!open.empty()) {
        const size_t number = open.back();
        open.pop_back();
        order.push_back(number);
        open.insert(open.end(), below[number].begin(), below[number].end());
    }
    return order;
}

std::vector<const TCIMInstance*> TContainmentTree::OtherPartsOf(size_t owner, const std::vector<size_t>& first,
                                                                const std::vector<size_t>& sizes) const {
    std::vector<const TCIMInstance*> others;
    for (const size_t part : fParts[owner]) {
        const bool isBelow = first[part] > first[owner] && first[part] < first[owner] + sizes[owner];
        if (!isBelow) others.push_back(fInstances[part]);
    }
    return others;
}
