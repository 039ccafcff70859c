#include "command/Show.h"

#include "command/LookUp.h"
#include "inventory/Inventory.h"
#include "json/Json.h"
#include "lookup/ClassNames.h"
#include "text/InstanceText.h"

namespace {

// Ties lead to instances of other classes, so that these must be there too.
std::vector<std::string> ClassesToCollect(const TOptions& options, const std::vector<TCIMClass*>& selected) {
    const bool all = options.classes.empty() || options.references || options.tree;
    return all ? std::vector<std::string>() : NamesOf(selected);
}

}  // namespace

EExit RunShow(const TOptions& options, TOutput& output) {
    TInventory inventory(options.session);
    const std::vector<TCIMClass*> classes =
        LookUp(inventory, [&](const TContainer& schema) { return SelectClasses(schema, options.classes); });
    inventory.Collect(ClassesToCollect(options, classes));
    bool any = true;
    if (options.json)
        WriteCollectionJson(inventory.Container(), classes, options, output);
    else
        any = PrintInstances(inventory.Container(), classes, options, output);
    const EExit status = inventory.Conclude();
    if (!any && status != eExitNothing) Complain("there are no such instances");
    return status;
}
