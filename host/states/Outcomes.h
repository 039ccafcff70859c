#ifndef KYR_HOST_STATES_OUTCOMES_H
#define KYR_HOST_STATES_OUTCOMES_H

#include <vector>

#include "model/ClassSelection.h"
#include "states/PluginLibrary.h"

/// The outcome of a class that the library's document declares.
TOutcome FindClassOutcome(const TPluginLibrary& library, const TCIMClass& cls, const TClassSelection& wanted);

/// The outcome of one plugin of the library, or with null of a library that registered none. It has no reason if the
/// reasons of the classes say everything.
TOutcome FindPluginOutcome(const TPluginLibrary& library, const TPluginInfo* plugin, const TClassSelection& wanted);

/// The messages about the class, or with null those that are about none of the library's classes.
std::vector<const TMessage*> MessagesOf(const TPluginLibrary& library, const TCIMClass* cls);

/// The reason of a collection in which that many plugins are not complete; no reason if all are complete.
TReason PluginsIncomplete(size_t incomplete, size_t all);

#endif
