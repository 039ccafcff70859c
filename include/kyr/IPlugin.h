#ifndef IPLUGIN_H
#define IPLUGIN_H

#include <string>
#include <vector>

#include "kyr/kyrExport.h"

class IPluginCallbacks;
class TCIMClass;

/// A plugin in the plugin manager's list. The manager owns it, and keeps it until the manager itself is deleted.
class KYR_API IPlugin {
public:
    virtual ~IPlugin();

    /// The plugin's own entries. Not owned; gone after a successful IPluginCallbacks::PrepareForUnload, after which the
    /// manager must not be asked to query the plugin or to search for it by name.
    virtual IPluginCallbacks* GetCallbacks() const = 0;
    /// Runs the plugin's init entry; raises the status that it returns, unless that is kyrStatusOK. The manager calls
    /// it once, right after loading the library.
    virtual void Initialize() = 0;
    /// True once the init entry has returned kyrStatusOK. The one trace that a failed init entry leaves: nothing is
    /// logged, and the plugin stays in the list.
    virtual bool IsInitialized() const = 0;
    /// The path of the library, as it was given to IPluginManager::LoadPlugin; empty while it is being loaded.
    virtual std::string GetPath() const = 0;
    /// The path of the CIM-XML document that belongs to the library: its path without the first "lib" in it, and
    /// with ".properties.xml" in place of ".pi.so" and of all that follows. A directory whose name holds "lib" loses
    /// the three letters in place of the file: see docs/oddities.md. Raises kyrStatusFail for a path without ".pi.so",
    /// or without "lib" in front of it. Whether such a file exists is not looked at.
    virtual std::string GetSpecificationPath() const = 0;
    /// The classes that the plugin's document brought into the schema, in document order. They belong to the
    /// schema. A class that an earlier document has brought is not among them. Raises kyrStatusFail if there are none,
    /// as for a plugin whose type has no document or whose init entry failed.
    virtual std::vector<TCIMClass*> GetClassesCollected() const = 0;
};

#endif
