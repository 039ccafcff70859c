#include <CLI/App.hpp>

#include "base/Pager.h"
#include "base/Text.h"
#include "command/Command.h"
#include "inventory/Inventory.h"
#include "json/Json.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "model/Associations.h"
#include "model/ObjectPath.h"
#include "model/Values.h"
#include "render/DependencyText.h"

namespace {

constexpr const char* kExamples =
    "Some of the keys are enough, if they name one instance. Quotes and blanks need quotes of the shell.\n\n"
    "Examples:\n"
    "  kyr assoc CIM_ComputerSystem --result-class CIM_OperatingSystem\n"
    "  kyr assoc 'MOLTA_Mount.Name=\"/\"' machine.xml.gz\n"
    "  kyr assoc 'MOLTA_Mount.Name=\"/\"' --deep\n\n";

std::string RolesOf(const TAssociationLink& link) { return link.role + " -> " + link.other.role; }

void PrintHead(const TAssociationLink& link, TOutput& output) {
    const std::string cls = link.association->GetClass()->GetName();
    const bool fits = cls.size() + 2 + RolesOf(link).size() <= output.Width();
    output.Write("\n" + output.Bold(cls) + (fits ? "  " + RolesOf(link) + "\n" : "\n"));
    if (!fits) output.WriteWrapped(RolesOf(link), "");
}

void PrintEnd(const TAssociationEnd& end, TOutput& output) {
    output.WriteWrapped(end.instance == nullptr ? "(not collected)" : DisplayName(*end.instance), "  ");
    output.WriteWrapped(VisibleText(end.reference.GetPath()), "    ");
}

// Links of the same association class and roles, which FindLinks groups, share a heading.
void PrintLinks(const TCIMInstance& instance, const std::vector<TAssociationLink>& links, TOutput& output) {
    output.WriteWrapped(DisplayName(instance), "");
    output.WriteWrapped(VisiblePath(instance), "  ");
    std::string heading;
    for (const TAssociationLink& link : links) {
        const std::string own = link.association->GetClass()->GetName() + " " + RolesOf(link);
        if (own != heading) PrintHead(link, output);
        heading = own;
        PrintEnd(link.other, output);
    }
}

class TAssocCommand : public TCommand {
public:
    explicit TAssocCommand(CLI::App& app) : TCommand(app, "assoc", "Print what an instance is tied to") {
        SetExamples(kExamples);
        AddFileAndName("PATH", fPath, "The instance: sda, or Class.Key=\"value\",Other=\"value\"");
        const auto addName = [this](const char* option, std::string& name, const char* words) {
            fApp.add_option(option, name, words)->type_name("NAME");
        };
        addName("--assoc-class", fFilter.assocClass, "Only ties of this class");
        addName("--result-class", fFilter.resultClass, "Only results of this class");
        addName("--role", fFilter.role, "Only ties in which the instance has this role");
        addName("--result-role", fFilter.resultRole, "Only results in this role");
        fApp.add_flag("--deep", fDeep, "All that it depends on, step by step, and that depends on it");
        AddPaging();
        AddCollecting();
    }

    EExit Run(TOutput& output) override {
        TInventory inventory(fSession);
        inventory.Collect({});
        const EExit status = inventory.Conclude();
        TCIMInstance& instance = GetInstanceNamed(inventory.Container(), fPath);
        Print(inventory.Container(), instance, output);
        return status;
    }

private:
    void Print(const TContainer& container, TCIMInstance& instance, TOutput& output) const {
        const TPager pager(output, fPages && !fJson);
        if (fDeep) return PrintDependencies(container, instance, output);
        const std::vector<TAssociationLink> links = FindLinks(instance, fFilter);
        if (fJson) return WriteAssociationsJson(instance, links, output);
        PrintLinks(instance, links, output);
        if (links.empty()) PrintDiagnostic("no ties");
    }

    std::string fPath;
    TAssociationFilter fFilter;
    bool fDeep = false;
};

}  // namespace

std::unique_ptr<TCommand> MakeAssocCommand(CLI::App& app) { return std::make_unique<TAssocCommand>(app); }
