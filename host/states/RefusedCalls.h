#ifndef KYR_HOST_STATES_REFUSEDCALLS_H
#define KYR_HOST_STATES_REFUSEDCALLS_H

#include <list>

#include "states/PluginLibrary.h"

class TContainer;

/// Gives each message about a refused call its class, reason and text, by what the classes of the container declare.
/// The list holds all libraries, to which classes belong.
void ExplainRefusedCalls(TPluginLibrary& library, const std::list<TPluginLibrary>& libraries,
                         const TContainer& container);

#endif
