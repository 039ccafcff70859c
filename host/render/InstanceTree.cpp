#include <algorithm>
#include <string>
#include <unordered_set>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "model/ObjectPath.h"
#include "render/ContainmentTree.h"
#include "render/InstanceText.h"
#include "render/TreeLine.h"

namespace {

using TNodes = std::vector<TContainmentTree::TNode>;

std::vector<const TCIMInstance*> OrdinaryInstances(const std::vector<TCIMClass*>& classes) {
    std::vector<const TCIMInstance*> instances;
    for (const TCIMClass* cls : classes) {
        if (cls->IsAssociation()) continue;
        const std::vector<TCIMInstance*> own = cls->EnumerateInstances(false);
        instances.insert(instances.end(), own.begin(), own.end());
    }
    return instances;
}

// The node of the instance with those above it and below it. There is one node for each instance.
TNodes BranchOf(const TNodes& nodes, const TCIMInstance& instance) {
    const auto target =
        std::find_if(nodes.begin(), nodes.end(), [&](const auto& node) { return node.instance == &instance; });
    const auto isBeside = [&](const auto& node) { return node.depth <= target->depth; };
    TNodes branch(target, std::find_if(target + 1, nodes.end(), isBeside));
    for (auto node = target; node != nodes.begin();)
        if ((--node)->depth < branch.front().depth) branch.insert(branch.begin(), *node);
    for (TContainmentTree::TNode& node : branch)
        if (node.depth < target->depth) node.alsoContains.clear();
    return branch;
}

/// Prints the nodes of the tree in the order in which it is walked, without those that were not chosen.
class TTreePrinter {
public:
    TTreePrinter(const std::vector<const TCIMInstance*>& chosen, TOutput& output)
        : fOutput(output), fChosen(chosen.begin(), chosen.end()) {}

    void Print(const TContainmentTree::TNode& node) {
        while (!fOpen.empty() && fOpen.back() >= node.depth) fOpen.pop_back();
        if (fChosen.count(node.instance) == 0) return;
        const size_t depth = fOpen.size();
        fOpen.push_back(node.depth);
        fPrinted.insert(node.instance);
        PrintTreeLine(*node.instance, depth, "", fOutput);
        for (const TCIMInstance* part : node.alsoContains)
            if (fChosen.count(part) != 0)
                PrintTreeLine(*part, depth + 1, fPrinted.count(part) != 0 ? " (above)" : " (below)", fOutput);
    }

    bool HasPrinted() const { return !fPrinted.empty(); }

private:
    TOutput& fOutput;
    const std::unordered_set<const TCIMInstance*> fChosen;
    std::vector<size_t> fOpen;  // the depths of the printed nodes that the next one is below
    std::unordered_set<const TCIMInstance*> fPrinted;
};

}  // namespace

bool PrintTree(const TContainer& container, const std::vector<TCIMClass*>& classes, const std::string& path,
               TOutput& output) {
    const std::vector<TCIMClass*> all = container.GetRootClass()->EnumerateSubClasses(true);
    TNodes nodes = TContainmentTree(container, OrdinaryInstances(all)).Walk();
    if (!path.empty()) nodes = BranchOf(nodes, GetInstanceNamed(container, path));
    TTreePrinter printer(OrdinaryInstances(classes), output);
    for (const TContainmentTree::TNode& node : nodes) printer.Print(node);
    return printer.HasPrinted();
}
