#include "command/ShowCommand.h"

#include <CLI/App.hpp>

#include "base/Pager.h"
#include "base/Text.h"
#include "command/Command.h"
#include "inventory/Inventory.h"
#include "json/Json.h"
#include "render/InstanceText.h"
#include "states/CollectionSummary.h"

namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kyr show disks\n"
    "  kyr show machine.xml.gz cpu memory --provenance\n"
    "  kyr show /dev/sda\n"
    "  kyr show adapters --columns Name,Driver\n"
    "  kyr show --tree\n"
    "  kyr show --tree --to /\n\n";

}  // namespace

EExit TShowCommand::Run(TOutput& output) {
    TInventory inventory(fSession);
    TInstanceChoice choice = Choose(inventory);
    if (fPrint.tree && !choice.IsOfClasses())
        throw TCommandError(eExitUsage, "a tree is of classes: --tree takes no name of an instance");
    // The links of an instance lead to instances of any class, so all classes must be collected.
    const bool all = fPrint.references || fPrint.tree;
    inventory.Collect(all ? std::vector<std::string>() : choice.ClassesToCollect(), choice.ClassesNamed());
    inventory.LookUp([&](const TContainer& container) { choice.FindInstances(container); });
    const bool any = Print(inventory.Container(), choice, output);
    const EExit status = inventory.Conclude();
    if (status == eExitNothing) return status;
    ReportLeftOut(inventory.Container(), choice.ClassesNamed());
    TellOfNone(choice, any);
    return status;
}

void TShowCommand::TellOfNone(const TInstanceChoice& choice, bool any) {
    const std::vector<std::string> names = choice.NamesOfNone();
    for (const std::string& name : names) PrintDiagnostic("there are no instances of " + VisibleText(name));
    if (!any && names.empty()) PrintDiagnostic("there are no such instances");
}

bool TShowCommand::Print(const TContainer& container, const TInstanceChoice& choice, TOutput& output) const {
    const TPager pager(output, fPages && !fJson);
    if (fTable || fTableOptions.csv || !fTableOptions.columns.empty()) return PrintAsTable(choice, output);
    if (!fJson) return PrintInstances(container, choice, fPrint, output);
    WriteCollectionJson(container, choice, fPrint.stable, output);
    return true;
}

bool TShowCommand::PrintAsTable(const TInstanceChoice& choice, TOutput& output) const {
    TTableOptions options = fTableOptions;
    options.raw = fPrint.raw;
    options.stable = fPrint.stable;
    return PrintTable(choice, options, output);
}

void TShowCommand::AddTables() {
    fApp.add_option("--columns", fTableOptions.columns, "Print a table of these properties")
        ->type_name("NAME,...")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CheckNotEmpty);
    fApp.add_flag("--table", fTable, "Print a table of the main properties of each class");
    fApp.add_flag("--csv", fTableOptions.csv, "Print the table as comma-separated values, for spreadsheets");
}

TInstanceChoice TShowCommand::Choose(TInventory& inventory) const {
    return inventory.LookUp([this](const TContainer& schema) { return TInstanceChoice(schema, fClasses, fNames); });
}

std::unique_ptr<TCommand> MakeShowCommand(CLI::App& app) {
    class TShow : public TShowCommand {
    public:
        explicit TShow(CLI::App& app) : TShowCommand(app, "show", "Print a saved collection, or this machine's") {
            SetExamples(kExamples);
            AddFileAndNames(fNames);
            AddPrinting(fClasses, fPrint);
            AddTables();
            CLI::Option* const tree =
                fApp.add_flag("--tree", fPrint.tree, "Each instance below the one that it belongs to");
            fApp.add_option("--to", fPrint.treeTo, "Of the tree, what leads to this instance and what is below it")
                ->type_name("PATH")
                ->check(CheckNotEmpty)
                ->needs(tree);
            AddCollecting();
        }
    };
    return std::make_unique<TShow>(app);
}
