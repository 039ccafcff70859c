#include <CLI/App.hpp>

#include "command/Command.h"
#include "inventory/Inventory.h"
#include "json/Json.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "model/InstanceChoice.h"
#include "render/Summary.h"

namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kyr\n"
    "  kyr summary machine.xml.gz\n\n";

class TSummaryCommand : public TCommand {
public:
    explicit TSummaryCommand(CLI::App& app)
        : TCommand(app, "summary", "Print the machine on one screen; kyr alone does the same") {
        SetExamples(kExamples);
        AddFile();
        AddCollecting();
    }

    EExit Run(TOutput& output) override {
        TInventory inventory(fSession);
        inventory.Collect(SummaryClasses());
        if (fJson) {
            WriteCollectionJson(inventory.Container(), ChoiceIn(inventory.Container()), false, output);
            return inventory.Conclude();
        }
        PrintSummary(inventory.Container(), output);
        return inventory.ConcludeSilently();
    }

private:
    static TInstanceChoice ChoiceIn(const TContainer& container) {
        std::vector<std::string> names;
        for (const std::string& name : SummaryClasses())
            if (container.FindClass(name) != nullptr) names.push_back(name);
        return {container, names, {}};
    }
};

}  // namespace

std::unique_ptr<TCommand> MakeSummaryCommand(CLI::App& app) { return std::make_unique<TSummaryCommand>(app); }
