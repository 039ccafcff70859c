#include <CLI/App.hpp>
#include <algorithm>

#include "base/Pager.h"
#include "command/Command.h"
#include "difference/Difference.h"
#include "inventory/Inventory.h"
#include "json/Json.h"
#include "model/ClassNames.h"
#include "model/InstanceChoice.h"
#include "render/DifferenceText.h"
#include "saved/StreamedFile.h"

namespace {

constexpr const char* kDiffExitStatus =
    "Exit status: 0 nothing differs, 1 something differs, or can be compared no longer, 2 wrong use,\n"
    "3 nothing could be collected or read, 4 the output could not be written.";

constexpr const char* kExamples =
    "Marks: - removed, + added, > moved, ~ changed, ? cannot be read any longer. What a collection could not\n"
    "see counts as neither removed nor added.\n\n"
    "Examples:\n"
    "  kyr diff yesterday.xml.gz\n"
    "  kyr diff golden.xml.gz machine.xml.gz --class CIM_PhysicalElement\n"
    "  kyr diff --quiet yesterday.xml.gz || echo changed\n\n";

constexpr const char* kMachineClass = "CIM_ComputerSystem";  // its name is a key of most instances

// The chosen classes that the container knows, and the machine itself. Without chosen classes: all.
TInstanceChoice ChooseKnown(const TContainer& container, std::vector<std::string> chosen) {
    if (!chosen.empty()) chosen.emplace_back(kMachineClass);
    chosen.erase(
        std::remove_if(chosen.begin(), chosen.end(),
                       [&](const std::string& name) { return FindSpokenClass(container, name).classes.empty(); }),
        chosen.end());
    return {container, chosen, {}};
}

class TDiffCommand : public TCommand {
public:
    explicit TDiffCommand(CLI::App& app)
        : TCommand(app, "diff", "Print what has changed since a collection was saved") {
        fApp.footer(std::string(kExamples) + kDiffExitStatus);
        fApp.add_option("OLD", fOld, "The earlier saved collection; - for standard input")
            ->type_name("")
            ->required()
            ->check(CheckNotEmpty);
        fApp.add_option("NEW", fSession.from, "The later one, as --from; without it, this machine")
            ->type_name("")
            ->check(CheckNotEmpty);
        fApp.add_option("--class", fOptions.classes, "Only this class and its subclasses; may be repeated")
            ->type_name("NAME")
            ->allow_extra_args(false);
        fApp.add_flag("--references", fOptions.references, "Compare what instances are tied to, too");
        fApp.add_flag("--all", fOptions.all, "Compare what changes by itself, too, such as times and counters");
        fApp.add_flag("--quiet", fQuiet, "Print nothing; the exit status tells whether anything differs");
        AddPaging();
        AddCollecting();
    }

    void ResolvePaths() override {
        MakeAbsolute(fOld);
        TCommand::ResolvePaths();
    }

    EExit Run(TOutput& output) override {
        if (TStreamedFile::IsStandardInput(fOld) && TStreamedFile::IsStandardInput(fSession.from))
            throw TCommandError(eExitUsage, "OLD and NEW are both standard input, which can be read only once");
        TSessionOptions oldOptions = fSession;
        oldOptions.from = fOld;
        const TInventory before(oldOptions);
        TInventory after(fSession, before);
        if (fSession.from.empty()) Collect(after);
        const EExit collected = after.ConcludeSilently();
        if (collected > eExitPartial) return collected;
        const TDifference difference = FindDifference(before.Container(), after.Container(), fOptions);
        Print(difference, before.Container(), after.Container(), output);
        return difference.IsAny() ? eExitPartial : eExitComplete;
    }

private:
    void Collect(TInventory& inventory) const {
        const TInstanceChoice choice = ChooseKnown(inventory.Container(), fOptions.classes);
        inventory.Collect(choice.ClassesToCollect(), choice.ClassesNamed());
    }

    void Print(const TDifference& difference, const TContainer& before, const TContainer& after,
               TOutput& output) const {
        if (fQuiet) return;
        if (fJson) return WriteDifferenceJson(difference, before, after, output);
        const TPager pager(output, fPages);
        PrintDifference(difference, output);
    }

    std::string fOld;
    TDifferenceOptions fOptions;
    bool fQuiet = false;
};

}  // namespace

std::unique_ptr<TCommand> MakeDiffCommand(CLI::App& app) { return std::make_unique<TDiffCommand>(app); }
