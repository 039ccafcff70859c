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

// All that a graph leads to from a node, with the node itself.
std::vector<size_t> ReachedFrom(size_t start, const std::vector<std::vector<size_t>>& graph) {
    std::vector<bool> isReached(graph.size(), false);
    std::vector<size_t> reached{start};
    isReached[start] = true;
    for (size_t i = 0; i < reached.size(); ++i)
        for (const size_t next : graph[reached[i]])
            if (!isReached[next]) {
                isReached[next] = true;
                reached.push_back(next);
            }
    return reached;
}

}  // namespace

TContainmentTree::TContainmentTree(const TContainer& container, std::vector<const TCIMInstance*> instances) {
    std::vector<TNumbers> noParts(instances.size());
    SetInstances(std::move(instances), std::move(noParts));
    for (const TCIMClass* cls : AssociationsOf(*container.GetRootClass()))
        for (const TCIMInstance* association : cls->EnumerateInstances(false)) AddParts(*association);
    for (TNumbers& parts : fParts) SortUnique(parts);
}

std::unordered_set<const TCIMInstance*> TContainmentTree::BranchOf(const TCIMInstance& instance) const {
    std::unordered_set<const TCIMInstance*> branch;
    const auto found = fNumbers.find(&instance);
    if (found == fNumbers.end()) return branch;
    for (const std::vector<TNumbers>& graph : {Owners(), fParts})
        for (const size_t number : ReachedFrom(found->second, graph)) branch.insert(fInstances[number]);
    return branch;
}

void TContainmentTree::KeepOnly(const std::unordered_set<const TCIMInstance*>& kept) {
    TNumbers newNumbers(fInstances.size(), kNone);
    std::vector<const TCIMInstance*> instances;
    for (size_t i = 0; i < fInstances.size(); ++i) {
        if (kept.count(fInstances[i]) == 0) continue;
        newNumbers[i] = instances.size();
        instances.push_back(fInstances[i]);
    }
    std::vector<TNumbers> parts;
    parts.reserve(instances.size());
    for (const TCIMInstance* instance : instances) parts.push_back(NearestParts(fNumbers[instance], newNumbers));
    SetInstances(std::move(instances), std::move(parts));
}

std::vector<TContainmentTree::TNode> TContainmentTree::Walk() {
    FindParents();
    const TNumbers order = OrderByParents();
    TNumbers first(order.size()), sizes(order.size(), 1);
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

void TContainmentTree::SetInstances(std::vector<const TCIMInstance*> instances, std::vector<TNumbers> parts) {
    fInstances = std::move(instances);
    fParts = std::move(parts);
    fNumbers.clear();
    for (size_t i = 0; i < fInstances.size(); ++i) fNumbers.emplace(fInstances[i], i);
}

// The parts that are kept, also by way of others that are not.
TContainmentTree::TNumbers TContainmentTree::NearestParts(size_t owner, const TNumbers& newNumbers) const {
    TNumbers nearest, open = fParts[owner];
    std::unordered_set<size_t> passed;
    while (!open.empty()) {
        const size_t part = open.back();
        open.pop_back();
        if (newNumbers[part] != kNone) {
            if (part != owner) nearest.push_back(newNumbers[part]);
        } else if (passed.insert(part).second) {
            open.insert(open.end(), fParts[part].begin(), fParts[part].end());
        }
    }
    SortUnique(nearest);
    return nearest;
}

std::vector<TContainmentTree::TNumbers> TContainmentTree::Owners() const {
    std::vector<TNumbers> owners(fParts.size());
    for (size_t owner = 0; owner < fParts.size(); ++owner)
        for (const size_t part : fParts[owner]) owners[part].push_back(owner);
    return owners;
}

// Instances are placed in topological order: each after all of its owners, so that the deepest owner is known. If no
// such instance is left, the links form a cycle. It is cut at an instance that has a placed owner (reached), or at the
// first one that is not placed yet.
void TContainmentTree::FindParents() {
    fParents.assign(fInstances.size(), kNone);
    fDepths.assign(fInstances.size(), 0);
    fPlaced.assign(fInstances.size(), false);
    TNumbers waiting(fInstances.size(), 0);  // for each instance, how many owners are not placed
    std::deque<size_t> ready, reached;
    for (const TNumbers& parts : fParts)
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
