#ifndef IPLUGINCALLBACKS_H
#define IPLUGINCALLBACKS_H

#include <cstdint>
#include <string>

#include "kyr/kyrExport.h"

/// What a plugin answers. The core implements it over the C record of kyrRegisterPlugin. An entry that returns a
/// nonzero status raises that status, unchecked: it may be a number outside kyrStatusCode.
class KYR_API IPluginCallbacks {
public:
    virtual ~IPluginCallbacks();

    /// The four getters each run the plugin's getInfo entry and copy one field of what it returns; nothing is cached.
    /// GetType gives a kyrPluginType, or any other number for a plugin that has neither document nor data.
    virtual int32_t GetType() = 0;
    /// The name that stands in log lines and in the class qualifier PLUGINNAME.
    virtual std::string GetName() = 0;
    /// The text of the class qualifier PLUGINVERSION.
    virtual std::string GetVersion() = 0;
    /// The version of the C interface that the plugin was built for; the core compares it with nothing.
    virtual std::string GetInterfaceVersion() = 0;
    /// Tells the plugin that its library is about to be closed. The object destroys itself when that succeeds, and
    /// IPlugin::GetCallbacks dangles from then on. Only a host calls it; the core closes no library.
    virtual void PrepareForUnload() = 0;
    /// Stores the library's path for kyrGetPluginPath, then runs the init entry. Call IPlugin::Initialize, which keeps
    /// the outcome.
    virtual void Init() = 0;
    /// Runs the deInit entry. Only a host calls it, before PrepareForUnload or at its own end.
    virtual void DeInit() = 0;
};

#endif
