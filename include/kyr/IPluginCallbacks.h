#ifndef IPLUGINCALLBACKS_H
#define IPLUGINCALLBACKS_H

#include <cstdint>
#include <string>

#include "kyr/kyrExport.h"

/// What a plugin answers. The core implements it over the C record of kyrRegisterPlugin. An entry that returns a
/// nonzero status raises that status.
class KYR_API IPluginCallbacks {
public:
    virtual ~IPluginCallbacks();

    /// A kyrPluginType, or any other number for a plugin that has neither document nor data.
    virtual int32_t GetType() = 0;
    virtual std::string GetName() = 0;
    virtual std::string GetVersion() = 0;
    virtual std::string GetInterfaceVersion() = 0;
    /// Tells the plugin that its library is about to be closed. The object destroys itself when that succeeds.
    virtual void PrepareForUnload() = 0;
    virtual void Init() = 0;
    virtual void DeInit() = 0;
};

#endif
