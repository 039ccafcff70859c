#include <CLI/App.hpp>

#include "command/Command.h"
#include "command/ShowCommand.h"
#include "inventory/Inventory.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "model/CollectionState.h"
#include "saved/SavedCollection.h"

namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kyr collect -o machine.xml.gz\n"
    "  kyr collect machine.xml.gz --class CIM_DiskDrive -o disks.xml\n\n";

// The selected classes, and the classes of states, which say how complete the saved instances are.
std::vector<TCIMClass*> ClassesToSave(const TContainer& container, std::vector<std::string> names) {
    if (container.FindClass(kStateClass) != nullptr) names.emplace_back(kStateClass);
    return SelectClasses(container, names);
}

class TCollectCommand : public TShowCommand {
public:
    explicit TCollectCommand(CLI::App& app)
        : TShowCommand(app, "collect", "Ask the plugins and print or save what they report") {
        SetExamples(kExamples);
        AddFile();
        fApp.add_option("-o,--output", fOutput, "Save the collection: FILE.xml or FILE.xml.gz")
            ->type_name("FILE")
            ->check(CheckNotEmpty);
        AddPrinting(fClasses, fPrint);
        AddCollecting();
    }

    void ResolvePaths() override {
        MakeAbsolute(fOutput);
        TCommand::ResolvePaths();
    }

    EExit Run(TOutput& output) override {
        if (fOutput.empty()) return TShowCommand::Run(output);
        RequireSavablePath(fOutput);
        TInventory inventory(fSession);
        const std::vector<TCIMClass*> classes =
            inventory.LookUp([this](const TContainer& schema) { return SelectClasses(schema, fClasses); });
        inventory.Collect(fClasses.empty() ? std::vector<std::string>() : NamesOf(classes));
        const std::vector<TCIMClass*> saved = ClassesToSave(inventory.Container(), fClasses);
        // A file of an earlier collection is worth more than one without anything in it.
        const EExit status = inventory.Conclude();
        if (status != eExitNothing)
            SaveCollection(inventory.Container(), fOutput, fPrint.stable, fClasses.empty() ? nullptr : &saved);
        return status;
    }

private:
    std::string fOutput;  // the file to write; empty: standard output
};

}  // namespace

std::unique_ptr<TCommand> MakeCollectCommand(CLI::App& app) { return std::make_unique<TCollectCommand>(app); }
