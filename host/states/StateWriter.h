#ifndef KYR_HOST_STATES_STATEWRITER_H
#define KYR_HOST_STATES_STATEWRITER_H

#include <list>

#include "states/Outcomes.h"

class TContainer;

/// Adds the state instances to the container: one for the collection, one for each plugin and one for each class that
/// is not abstract. Their classes are those of schema/collection.xml. The sources are those that plugins reported as
/// missing. The interruption is the number of the signal that interrupted the collection, or 0.
void WriteStates(std::list<TPluginLibrary>& libraries, TMissingSources sources, const TClassSelection& wanted,
                 int interruption, const TContainer& container);

#endif
