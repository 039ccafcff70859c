#ifndef LOOKUP_H
#define LOOKUP_H

#include "Exit.h"
#include "inventory/Inventory.h"
#include "inventory/Log.h"

/// What the look-up finds in the inventory. Where it raises TCommandError, what could not be loaded is told first: it
/// may be what brings the class that is unknown.
template <typename TLookUp>
auto LookUp(TInventory& inventory, TLookUp lookUp) {
    try {
        return lookUp(inventory.Container());
    } catch (const TCommandError&) {
        TLog::Take();  // what the look-up itself logged
        inventory.LoadPlugins();
        inventory.Conclude();
        throw;
    }
}

#endif
