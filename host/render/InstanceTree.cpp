#include "render/InstanceText.h"

#include <algorithm>
#include <string>
#include <unordered_set>

#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "model/Values.h"
#include "render/ContainmentTree.h"

namespace {

constexpr size_t kDeepestIndent = 40;

std::vector<const TCIMInstance*> OrdinaryInstances(const std::vector<TCIMClass*>& classes) {
    std::vector<const TCIMInstance*> instances;
    for (const TCIMClass* cls : classes) {
        if (cls->IsAssociation()) continue;
        const std::vector<TCIMInstance*> own = cls->EnumerateInstances(false);
        instances.insert(instances.end(), own.begin(), own.end());
    }
    return instances;
}

/// Prints the nodes of the tree in the order in which it is walked.
class TTreePrinter {
public:
    explicit TTreePrinter(TOutput& output) : fOutput(output) {}

    void Print(const TContainmentTree::TNode& node) {
        fPrinted.insert(node.instance);
        PrintLine(*node.instance, node.depth, "");
        for (const TCIMInstance* part : node.alsoContains)
            PrintLine(*part, node.depth + 1, fPrinted.count(part) != 0 ? " (above)" : " (below)");
    }

private:
    // The class stands behind the name, or on a line of its own if it does not fit there.
    void PrintLine(const TCIMInstance& instance, size_t depth, const char* note) const {
        const size_t indent = std::min({2 * depth, kDeepestIndent, fOutput.Width() / 2});
        const std::string cls = instance.GetClass()->GetName();
        std::vector<std::string> lines = WrapText(DisplayName(instance) + note, fOutput.Width() - indent);
        if (indent + ColumnsOf(lines.back()) + 2 + cls.size() <= fOutput.Width())
            lines.back() += "  " + fOutput.Dim(cls);
        else
            lines.push_back(fOutput.Dim(cls));
        for (const std::string& line : lines) fOutput.Write(std::string(indent, ' ') + line + "\n");
    }

    TOutput& fOutput;
    std::unordered_set<const TCIMInstance*> fPrinted;
};

}  // namespace

bool PrintTree(const TContainer& container, const std::vector<TCIMClass*>& classes, TOutput& output) {
    const std::vector<TContainmentTree::TNode> nodes = TContainmentTree(container, OrdinaryInstances(classes)).Walk();
    TTreePrinter printer(output);
    for (const TContainmentTree::TNode& node : nodes) printer.Print(node);
    return !nodes.empty();
}
