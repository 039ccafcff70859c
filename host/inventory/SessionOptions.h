#ifndef KYR_HOST_INVENTORY_SESSIONOPTIONS_H
#define KYR_HOST_INVENTORY_SESSIONOPTIONS_H

#include <string>

#include "base/CoreLog.h"
#include "isolation/RunLimits.h"

/// What a collection is read from or collected with. Paths are absolute.
struct TSessionOptions {
    std::string from;     ///< a saved collection; empty: this machine
    std::string plugins;  ///< the folder with a folder for each plugin
    std::string schema;   ///< the base document
    TLogOptions log;
    bool inProcess = false;
    TRunLimits limits;
};

#endif
