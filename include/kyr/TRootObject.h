#ifndef TROOTOBJECT_H
#define TROOTOBJECT_H

#include "kyr/kyrExport.h"

class ILogger;
class IPluginManager;
class IQueryManager;

/// The way to the three singletons. Each is null until the Initialize operation of its class has run, and the
/// core uses them without a test: initialise the logger first, then the plugin manager, then the query manager.
/// The library never destroys them; a host that wants them gone deletes them through these pointers.
class KYR_API TRootObject {
public:
    static IQueryManager* GetQueryManager();
    static IPluginManager* GetPluginManager();
    static ILogger* GetCoreLogger();
};

#endif
