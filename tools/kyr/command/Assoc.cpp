#include "command/Assoc.h"

#include "inventory/Inventory.h"
#include "json/Json.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "lookup/ObjectPath.h"
#include "lookup/Ties.h"
#include "text/InstanceName.h"
#include "text/VisibleText.h"
#include "text/WrapText.h"

namespace {

void PrintWrapped(const std::string& text, size_t indent, TOutput& output) {
    const size_t width = output.Width() > indent ? output.Width() - indent : 1;
    for (const std::string& line : WrapText(text, width)) output.Write(std::string(indent, ' ') + line + "\n");
}

std::string RolesOf(const TTie& tie) { return tie.role + " -> " + tie.other.role; }

void PrintHead(const TTie& tie, TOutput& output) {
    const std::string cls = tie.association->GetClass()->GetName();
    const bool fits = cls.size() + 2 + RolesOf(tie).size() <= output.Width();
    output.Write("\n" + output.Bold(cls) + (fits ? "  " + RolesOf(tie) + "\n" : "\n"));
    if (!fits) PrintWrapped(RolesOf(tie), 0, output);
}

void PrintEnd(const TEnd& end, TOutput& output) {
    PrintWrapped(end.instance == nullptr ? "(not collected)" : NameForPeople(*end.instance), 2, output);
    PrintWrapped(VisibleText(end.reference.GetPath()), 4, output);
}

// Ties of one kind stand together.
void PrintTies(const TCIMInstance& instance, const std::vector<TTie>& ties, TOutput& output) {
    PrintWrapped(NameForPeople(instance), 0, output);
    PrintWrapped(VisiblePath(instance), 2, output);
    std::string kind;
    for (const TTie& tie : ties) {
        const std::string own = tie.association->GetClass()->GetName() + " " + RolesOf(tie);
        if (own != kind) PrintHead(tie, output);
        kind = own;
        PrintEnd(tie.other, output);
    }
}

}  // namespace

EExit RunAssoc(const TOptions& options, TOutput& output) {
    TInventory inventory(options.session);
    inventory.Collect({});
    const EExit status = inventory.Conclude();
    TCIMInstance& instance = GetInstanceNamed(inventory.Container(), options.path);
    if (options.json) {
        WriteTiesJson(instance, options, output);
        return status;
    }
    const std::vector<TTie> ties = FindTies(instance, options);
    PrintTies(instance, ties, output);
    if (ties.empty()) Complain("no ties");
    return status;
}
