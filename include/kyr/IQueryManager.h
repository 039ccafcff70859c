#ifndef IQUERYMANAGER_H
#define IQUERYMANAGER_H

#include <string>
#include <vector>

#include "kyr/kyrExport.h"

class IPlugin;
class TContainer;

/// Asks plugins for data. Plugins are called one after another, on the thread of the caller; nothing limits the time
/// that one of them takes.
class KYR_API IQueryManager {
public:
    virtual ~IQueryManager();

    /// Asks every plugin for its ordinary classes, then every plugin for its association classes, and leaves the
    /// instances in the container, which must have the classes. An empty list of names means all; otherwise the
    /// names are exact, in case too, and a superclass does not stand for its subclasses. Classes that are abstract,
    /// marked DONTCOLLECT or hold instances already are left out; that they hold some is looked up in the schema, also
    /// when another container is to be filled. A second query of the schema therefore asks only for what is missing.
    ///
    /// There is no status. The log has "Asking plugin ... for ..." at kyrLogDebug for each class, and "Plugin ... threw
    /// exception ..." with the status's name as an error for a plugin that fails, also for one that has no classes
    /// because its init entry or its document failed. What such a plugin has delivered before stays.
    virtual void RunQuery(TContainer* container, std::vector<std::string> classNames) = 0;
    /// The same for one plugin, of any type, and one of the two passes: with associations the association classes
    /// alone, without it all others. The plugin is not called if no class is left to ask for.
    virtual void EnumerateInstances(IPlugin* plugin, TContainer* container, std::vector<std::string> classNames,
                                    bool associations) = 0;
};

#endif
