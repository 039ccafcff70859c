#ifndef IPLUGINBASICQUERYCALLBACKS_H
#define IPLUGINBASICQUERYCALLBACKS_H

#include <vector>

#include "kyr/kyrExport.h"

class TCIMClass;
class TContainer;

/// The query side of a plugin. The query manager finds it by a dynamic cast from IPluginCallbacks; a plugin of a host's
/// own making that lacks it is passed over with kyrStatusInvalidPlugin in the log.
class KYR_API IPluginBasicQueryCallbacks {
public:
    virtual ~IPluginBasicQueryCallbacks();

    /// Asks the plugin, on the calling thread, to fill the container with the instances of the classes, of which it is
    /// given the names. Raises the status that the plugin returns, unless that is kyrStatusOK, and what storing its
    /// last instance raises. Instances that were stored before the failure stay in the container.
    virtual void GetData(TContainer* container, std::vector<TCIMClass*>& classes) = 0;
};

#endif
