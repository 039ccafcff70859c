#ifndef IPLUGINBASICQUERYCALLBACKS_H
#define IPLUGINBASICQUERYCALLBACKS_H

#include <vector>

#include "kyr/kyrExport.h"

class TCIMClass;
class TContainer;

/// The query side of a plugin. The query manager finds it by a dynamic cast from IPluginCallbacks.
class KYR_API IPluginBasicQueryCallbacks {
public:
    virtual ~IPluginBasicQueryCallbacks();

    /// Asks the plugin to fill the container with the instances of the classes. Raises the status that the plugin
    /// returns, unless that is kyrStatusOK, and what storing its last instance raises.
    virtual void GetData(TContainer* container, std::vector<TCIMClass*>& classes) = 0;
};

#endif
