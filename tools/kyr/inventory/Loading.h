#ifndef LOADING_H
#define LOADING_H

#include <vector>

#include "inventory/StandIn.h"

struct TPluginReport;

/// Has the plugin manager load a library, and writes in the report what it registers and what went wrong. Gives the
/// plugin to be asked for the classes, or null.
boost::shared_ptr<TStandIn> LoadLibrary(const std::string& path, const std::vector<TCIMClass*>& classes,
                                        TPluginReport& report);

#endif
