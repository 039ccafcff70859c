#include <unistd.h>

#include <CLI/App.hpp>

#include "base/OutputFile.h"
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
    "  ssh db01 kyr collect -o - | kyr show -\n"
    "  kyr collect machine.xml.gz disks -o disks.xml\n\n";

// The chosen classes, and the classes of states, which say how complete the saved instances are.
std::vector<TCIMClass*> ClassesToSave(const TContainer& container, const TInstanceChoice& choice) {
    std::vector<TCIMClass*> classes = choice.Classes();
    if (TCIMClass* const states = container.FindClass(kStateClass))
        for (TCIMClass* cls : WithSubClasses(*states)) classes.push_back(cls);
    ArrangeClasses(classes);
    return classes;
}

class TCollectCommand : public TShowCommand {
public:
    explicit TCollectCommand(CLI::App& app)
        : TShowCommand(app, "collect", "Ask the plugins and print or save what they report") {
        SetExamples(kExamples);
        AddFileAndNames(fNames);
        fApp.add_option("-o,--output", fOutput, "Save the collection: FILE.xml or FILE.xml.gz; - for standard output")
            ->type_name("FILE")
            ->check(CheckNotEmpty);
        AddPrinting(fClasses, fPrint);
        AddTables();
        AddCollecting();
    }

    void ResolvePaths() override {
        MakeAbsolute(fOutput);
        TCommand::ResolvePaths();
    }

    EExit Run(TOutput& output) override {
        if (fOutput.empty()) return TShowCommand::Run(output);
        RequireSavablePath(fOutput);
        RequireNoTerminal();
        TInventory inventory(fSession);
        const TInstanceChoice choice = Choose(inventory);
        if (!choice.IsOfClasses())
            throw TCommandError(eExitUsage,
                                "only whole classes can be saved: --output takes no name of an instance, "
                                "and no word such as ssd for some instances of a class");
        inventory.Collect(choice.ClassesToCollect(), choice.ClassesNamed());
        const std::vector<TCIMClass*> saved = ClassesToSave(inventory.Container(), choice);
        // A file of an earlier collection is worth more than one without anything in it.
        const EExit status = inventory.Conclude();
        if (status != eExitNothing)
            SaveCollection(inventory.Container(), fOutput, fPrint.stable, choice.IsAll() ? nullptr : &saved);
        return status;
    }

private:
    void RequireNoTerminal() const {
        if (fOutput == TOutputFile::kStandardOutput && isatty(STDOUT_FILENO) != 0)
            throw TCommandError(eExitUsage, "-o - writes a compressed file, which a terminal cannot show; give a file");
    }

    std::string fOutput;  // the file to write; empty: standard output
};

}  // namespace

std::unique_ptr<TCommand> MakeCollectCommand(CLI::App& app) { return std::make_unique<TCollectCommand>(app); }
