#include <CLI/App.hpp>

#include "command/Command.h"
#include "inventory/Inventory.h"
#include "json/Json.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
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
            WriteCollectionJson(inventory.Container(), KnownClasses(inventory.Container()), false, output);
            return inventory.Conclude();
        }
        PrintSummary(inventory.Container(), output);
        return inventory.ConcludeSilently();
    }

private:
    static std::vector<TCIMClass*> KnownClasses(const TContainer& container) {
        std::vector<TCIMClass*> classes;
        for (const std::string& name : SummaryClasses())
            if (TCIMClass* const cls = container.FindClass(name)) classes.push_back(cls);
        return classes;
    }
};

}  // namespace

std::unique_ptr<TCommand> MakeSummaryCommand(CLI::App& app) { return std::make_unique<TSummaryCommand>(app); }
