#include <string>
#include <unordered_set>

#include "base/ExitStatus.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TContainer.h"
#include "model/ObjectPath.h"
#include "model/ReadingOrder.h"
#include "render/ContainmentTree.h"
#include "render/InstanceText.h"
#include "render/TreeLine.h"

namespace {

std::vector<const TCIMInstance*> OrdinaryInstances(const std::vector<TCIMClass*>& classes) {
    std::vector<const TCIMInstance*> instances;
    for (const TCIMClass* cls : classes) {
        if (cls->IsAssociation()) continue;
        const std::vector<TCIMInstance*> own = InNaturalOrder(cls->EnumerateInstances(false));
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

void PrintNodes(const std::vector<TContainmentTree::TNode>& nodes, TOutput& output) {
    std::unordered_set<const TCIMInstance*> printed;
    for (const TContainmentTree::TNode& node : nodes) {
        printed.insert(node.instance);
        PrintTreeLine(*node.instance, node.depth, "", output);
        for (const TCIMInstance* part : node.alsoContains)
            PrintTreeLine(*part, node.depth + 1, printed.count(part) != 0 ? " (above)" : " (below)", output);
    }
}

}  // namespace

bool PrintTree(const TContainer& container, const std::vector<TCIMClass*>& classes, const std::string& path,
               TOutput& output) {
    const std::vector<TCIMClass*> all = container.GetRootClass()->EnumerateSubClasses(true);
    TContainmentTree tree(container, OrdinaryInstances(all));
    if (!path.empty()) tree.KeepOnly(tree.BranchOf(GetTarget(container, path)));
    const std::vector<const TCIMInstance*> chosen = OrdinaryInstances(classes);
    tree.KeepOnly({chosen.begin(), chosen.end()});
    const std::vector<TContainmentTree::TNode> nodes = tree.Walk();
    PrintNodes(nodes, output);
    return !nodes.empty();
}
