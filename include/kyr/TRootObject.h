#ifndef TROOTOBJECT_H
#define TROOTOBJECT_H

#include "kyr/kyrExport.h"

class ILogger;
class IPluginManager;
class IQueryManager;

/// The way to the three singletons. Each is null until the Initialize operation of its class has run, and the
/// core uses them without a test: initialise the logger first, then the plugin manager, then the query manager.
/// The library never destroys them; a host that wants them gone deletes them through these pointers, the logger last.
///
/// One thread, the host's, runs queries and thereby plugins; the library starts no thread of its own.
class KYR_API TRootObject {
public:
    /// TQueryManager's.
    static IQueryManager* GetQueryManager();
    /// TPluginManager's.
    static IPluginManager* GetPluginManager();
    /// TLogger's. The core reaches the logger through this at each line, and faults while it is null.
    static ILogger* GetCoreLogger();
};

#endif
