#ifndef IQUERYMANAGER_H
#define IQUERYMANAGER_H

#include <string>
#include <vector>

#include "kyr/kyrExport.h"

class IPlugin;
class TContainer;

/// Asks plugins for data.
class KYR_API IQueryManager {
public:
    virtual ~IQueryManager();

    /// Asks every plugin for its ordinary classes, then every plugin for its association classes, and leaves the
    /// instances in the container, which must have the classes. An empty list of names means all; otherwise the
    /// names are exact, and a superclass does not stand for its subclasses. Classes that are abstract, marked
    /// DONTCOLLECT or hold instances already are left out. There is no status: a plugin that fails is a line in
    /// the log.
    virtual void RunQuery(TContainer* container, std::vector<std::string> classNames) = 0;
    /// The same for one plugin and one of the two passes.
    virtual void EnumerateInstances(IPlugin* plugin, TContainer* container, std::vector<std::string> classNames,
                                    bool associations) = 0;
};

#endif
