#ifndef KYR_HOST_STATES_OUTCOMES_H
#define KYR_HOST_STATES_OUTCOMES_H

#include <vector>

#include "model/ClassSelection.h"
#include "states/PluginLibrary.h"

/// What became of a class that the library's document brought.
TOutcome FindClassOutcome(const TPluginLibrary& library, const TCIMClass& cls, const TClassSelection& wanted);

/// What became of the library, or of one of its plugins if that is not null. There is no reason where its classes
/// have theirs.
TOutcome FindPluginOutcome(const TPluginLibrary& library, const TPluginInfo* plugin, const TClassSelection& wanted);

/// The messages that are about the class, or with null all that are about none of the library's classes.
std::vector<const TMessage*> MessagesOf(const TPluginLibrary& library, const TCIMClass* cls);

/// Why the collection is not complete if so many of its plugins are not; none if all are.
TReason PluginsIncomplete(size_t incomplete, size_t all);

#endif
