#include "command/Collect.h"

#include "command/LookUp.h"
#include "command/Show.h"
#include "inventory/Inventory.h"
#include "kyr/TContainer.h"
#include "lookup/ClassNames.h"
#include "saved/SavedCollection.h"
#include "states/State.h"

namespace {

// Those that were chosen, and those that tell how complete these are.
std::vector<TCIMClass*> ClassesToSave(const TContainer& container, std::vector<std::string> names) {
    if (container.FindClass(kStateClass) != nullptr) names.emplace_back(kStateClass);
    return SelectClasses(container, names);
}

}  // namespace

EExit RunCollect(const TOptions& options, TOutput& output) {
    if (options.output.empty()) return RunShow(options, output);
    RequireSavablePath(options.output);
    TInventory inventory(options.session);
    const std::vector<TCIMClass*> classes =
        LookUp(inventory, [&](const TContainer& schema) { return SelectClasses(schema, options.classes); });
    inventory.Collect(options.classes.empty() ? std::vector<std::string>() : NamesOf(classes));
    const std::vector<TCIMClass*> saved = ClassesToSave(inventory.Container(), options.classes);
    SaveCollection(inventory.Container(), options.output, options.stable, options.classes.empty() ? nullptr : &saved);
    return inventory.Conclude();
}
