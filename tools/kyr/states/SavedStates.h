#ifndef SAVEDSTATES_H
#define SAVEDSTATES_H

#include <string>
#include <vector>

#include "states/State.h"

class TCIMInstance;
class TContainer;

// The instances that tell how complete a collection is. They may come from a file, which anybody may have written.

/// Those of exactly that class, which need not be there.
std::vector<TCIMInstance*> StatesOf(const TContainer& container, const char* className);
/// Complete, if it does not tell.
TVerdict VerdictOf(const TCIMInstance& state);
/// The text of a property; empty if there is none.
std::string TextOf(const TCIMInstance& state, const char* name);

/// Has the states of a collection tell what they would if only these classes had been asked for, or with null none;
/// an empty list means all. What a plugin as a whole was at fault for stays told.
void NarrowStates(const TContainer& container, const std::vector<std::string>* classNames);

#endif
