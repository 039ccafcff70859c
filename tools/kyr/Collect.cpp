#include "Collect.h"

#include "ClassNames.h"
#include "Inventory.h"
#include "SavedCollection.h"
#include "Show.h"

EExit RunCollect(const TOptions& options, TOutput& output) {
    if (options.output.empty()) return RunShow(options, output);
    RequireSavablePath(options.output);
    TInventory inventory(options.session);
    const std::vector<TCIMClass*> classes = SelectClasses(inventory.Container(), options.classes);
    inventory.Collect(options.classes.empty() ? std::vector<std::string>() : NamesOf(classes));
    SaveCollection(inventory.Container(), options.output, options.stable);
    return inventory.Conclude();
}
