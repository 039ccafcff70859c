#ifndef KYR_HOST_STATES_STATEINSTANCES_H
#define KYR_HOST_STATES_STATEINSTANCES_H

#include <string>
#include <vector>

#include "model/ClassSelection.h"
#include "model/CollectionState.h"

class TCIMInstance;
class TContainer;

// The instances that tell how complete a collection is. They may come from a file, which anybody may have written.

/// What such an instance tells. The code decides; the text is for people.
struct TStoredOutcome {
    EState state = eComplete;
    EReason code = EReason::eNone;  ///< also where a file of kyr 1.0 has a text alone
    std::string text;
};

/// The instances of exactly that class, which need not be there.
std::vector<TCIMInstance*> StatesOf(const TContainer& container, const char* className);
/// Complete, if the instance does not tell.
TStoredOutcome OutcomeOf(const TCIMInstance& state);
/// The text of a property; empty if there is none.
std::string TextOf(const TCIMInstance& state, const char* name);
/// Sets state, code and text. A property that the instance's class lacks is left out.
void StoreOutcome(TCIMInstance& state, const TOutcome& outcome);

/// The word that the class of the states has for a code; empty if there is no code, or the class does not know it.
std::string WordFor(EReason code, const TContainer& container);

/// Has the states of a collection tell what they would if only these classes had been asked for. What a plugin as a
/// whole was at fault for stays told.
void NarrowStates(const TContainer& container, const TClassSelection& wanted);

#endif
