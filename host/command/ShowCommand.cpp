#include "command/ShowCommand.h"

#include <CLI/App.hpp>

#include "command/Command.h"
#include "inventory/Inventory.h"
#include "json/Json.h"
#include "model/ClassNames.h"
#include "render/InstanceText.h"

namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kyr show --tree\n"
    "  kyr show machine.xml.gz --class CIM_Processor --provenance\n\n";

}  // namespace

EExit TShowCommand::Run(TOutput& output) {
    TInventory inventory(fSession);
    const std::vector<TCIMClass*> classes =
        inventory.LookUp([this](const TContainer& schema) { return SelectClasses(schema, fClasses); });
    // The links of an instance lead to instances of any class, so all classes must be collected.
    const bool all = fClasses.empty() || fPrint.references || fPrint.tree;
    inventory.Collect(all ? std::vector<std::string>() : NamesOf(classes));
    bool any = true;
    if (fJson)
        WriteCollectionJson(inventory.Container(), classes, fPrint.stable, output);
    else
        any = PrintInstances(inventory.Container(), classes, fPrint, output);
    const EExit status = inventory.Conclude();
    if (!any && status != eExitNothing) PrintDiagnostic("there are no such instances");
    return status;
}

std::unique_ptr<TCommand> MakeShowCommand(CLI::App& app) {
    class TShow : public TShowCommand {
    public:
        explicit TShow(CLI::App& app) : TShowCommand(app, "show", "Print a saved collection, or this machine's") {
            SetExamples(kExamples);
            AddFile();
            AddPrinting(fClasses, fPrint);
            fApp.add_flag("--tree", fPrint.tree, "Each instance below the one that it belongs to");
            AddCollecting();
        }
    };
    return std::make_unique<TShow>(app);
}
