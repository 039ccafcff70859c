#ifndef KYR_HOST_INVENTORY_SESSIONOPTIONS_H
#define KYR_HOST_INVENTORY_SESSIONOPTIONS_H

#include <string>
#include <vector>

#include "base/CoreLog.h"
#include "base/PluginFolders.h"
#include "base/TimePoint.h"
#include "isolation/Sandbox.h"

/// Where a collection comes from, and how it is collected. Paths are absolute: the current folder changes while plugins
/// run.
struct TSessionOptions {
    std::string from;  ///< a saved collection; empty: this machine
    std::vector<TPluginFolder> plugins;
    std::string schema;  ///< the base document
    TLogOptions log;
    bool inProcess = false;  ///< run the plugins in this process, not each in its own
    ESandbox sandbox = ESandbox::eAuto;
    std::vector<std::string> grants;  ///< each "PLUGIN:NEED"
    std::vector<std::string> also;    ///< names of classes that are collected beside what a command collects
    TRunLimits limits;
};

#endif
