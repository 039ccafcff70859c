#include <string>
#include <unordered_set>

#include "base/ExitStatus.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "model/ObjectPath.h"
#include "render/ContainmentTree.h"
#include "render/InstanceText.h"
#include "render/TreeLine.h"

namespace {

std::vector<const TCIMInstance*> OrdinaryInstances(const std::vector<TCIMClass*>& classes) {
    std::vector<const TCIMInstance*> instances;
    for (const TCIMClass* cls : classes) {
        if (cls->IsAssociation()) continue;
        const std::vector<TCIMInstance*> own = cls->EnumerateInstances(false);
        instances.insert(instances.end(), own.begin(), own.end());
    }
    return instances;
}

const TCIMInstance& GetTarget(const TContainer& container, const std::string& path) {
    const TCIMInstance& target = GetInstanceNamed(container, path);
    if (target.GetClass()->IsAssociation())
        throw TCommandError(eExitUsage, "'" + path + "' is an association, and no instance in the tree");
    return target;
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
    TContainmentTree tree(container, OrdinaryInstances(all));
    if (!path.empty()) tree.KeepOnly(tree.BranchOf(GetTarget(container, path)));
    TTreePrinter printer(OrdinaryInstances(classes), output);
    for (const TContainmentTree::TNode& node : tree.Walk()) printer.Print(node);
    return printer.HasPrinted();
}
