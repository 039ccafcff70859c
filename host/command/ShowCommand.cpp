#include "command/ShowCommand.h"

#include <CLI/App.hpp>

#include "base/Pager.h"
#include "command/Command.h"
#include "inventory/Inventory.h"
#include "json/Json.h"
#include "render/InstanceText.h"

namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kyr show disks\n"
    "  kyr show machine.xml.gz cpu memory --provenance\n"
    "  kyr show /dev/sda\n"
    "  kyr show --tree\n\n";

}  // namespace

EExit TShowCommand::Run(TOutput& output) {
    TInventory inventory(fSession);
    TInstanceChoice choice = Choose(inventory);
    if (fPrint.tree && !choice.IsOfClasses())
        throw TCommandError(eExitUsage, "a tree is of classes: --tree takes no name of an instance");
    // The links of an instance lead to instances of any class, so all classes must be collected.
    const bool all = fPrint.references || fPrint.tree;
    inventory.Collect(all ? std::vector<std::string>() : choice.ClassesToCollect());
    choice.FindInstances(inventory.Container());
    const bool any = Print(inventory.Container(), choice, output);
    const EExit status = inventory.Conclude();
    if (!any && status != eExitNothing) PrintDiagnostic("there are no such instances");
    return status;
}

bool TShowCommand::Print(const TContainer& container, const TInstanceChoice& choice, TOutput& output) const {
    const TPager pager(output, fPages && !fJson);
    if (!fJson) return PrintInstances(container, choice, fPrint, output);
    WriteCollectionJson(container, choice, fPrint.stable, output);
    return true;
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
            fApp.add_flag("--tree", fPrint.tree, "Each instance below the one that it belongs to");
            AddCollecting();
        }
    };
    return std::make_unique<TShow>(app);
}
