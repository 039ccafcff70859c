#include "Assoc.h"

#include "InstanceName.h"
#include "Inventory.h"
#include "Json.h"
#include "ObjectPath.h"
#include "Ties.h"
#include "VisibleText.h"
#include "WrapText.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"

namespace {

std::string HeadOf(const TTie& tie, const TOutput& output) {
    const std::string cls = tie.association->GetClass()->GetName();
    return output.Bold(cls) + "  " + tie.role + " -> " + tie.other.role;
}

void PrintWrapped(const std::string& text, size_t indent, TOutput& output) {
    const size_t width = output.Width() > indent ? output.Width() - indent : 1;
    for (const std::string& line : WrapText(text, width)) output.Write(std::string(indent, ' ') + line + "\n");
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
        const std::string head = HeadOf(tie, output);
        if (head != kind) output.Write("\n" + head + "\n");
        kind = head;
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
