#ifndef IPLUGIN_H
#define IPLUGIN_H

#include <string>
#include <vector>

#include "kyr/kyrExport.h"

class IPluginCallbacks;
class TCIMClass;

/// A plugin in the plugin manager's list. The manager owns it.
class KYR_API IPlugin {
public:
    virtual ~IPlugin();

    /// The plugin's own entries. Not owned; gone after a successful PrepareForUnload.
    virtual IPluginCallbacks* GetCallbacks() const = 0;
    /// Runs the plugin's init entry; raises the status that it returns, unless that is kyrStatusOK.
    virtual void Initialize() = 0;
    virtual bool IsInitialized() const = 0;
    /// The path of the library.
    virtual std::string GetPath() const = 0;
    /// The path of the CIM-XML document that belongs to the library: its path without the first "lib" in it, and
    /// with ".properties.xml" in place of ".pi.so". Raises kyrStatusFail where the path has no such document.
    virtual std::string GetSpecificationPath() const = 0;
    /// The classes that the plugin's document brought into the schema, in document order. They belong to the
    /// schema. Raises kyrStatusFail if there are none.
    virtual std::vector<TCIMClass*> GetClassesCollected() const = 0;
};

#endif
