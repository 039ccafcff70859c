#ifndef STATEWRITER_H
#define STATEWRITER_H

#include <list>

#include "states/Judgement.h"

class TContainer;

/// Writes into the container how complete it is: an instance for the collection, one for each plugin and one for each
/// class that can have instances, of the classes of schema/collection.xml. The interruption is a signal's number, or 0.
void WriteStates(const std::list<TLibrary>& libraries, TWanted wanted, int interruption, const TContainer& container);

#endif
