#ifndef KYR_HOST_STATES_STATEINSTANCES_H
#define KYR_HOST_STATES_STATEINSTANCES_H

#include <string>
#include <vector>

#include "model/ClassSelection.h"
#include "model/CollectionState.h"

class TCIMClass;
class TCIMInstance;
class TContainer;

// State instances: the instances of the classes in schema/collection.xml, which say how complete a collection is. They
// may come from a file that another program wrote, so any of their properties may be missing or have another type.

/// The outcome that a state instance holds. Only state and code are evaluated; the text is for people.
struct TStoredOutcome {
    EState state = eComplete;
    EReason code = EReason::eNone;  ///< also in files of kyr 1.0, which have only the text
    std::string text;               ///< the sentence; if there is a code alone, the word for it

    bool HasReason() const { return code != EReason::eNone || !text.empty(); }
};

/// The instances of exactly that class; none if the container lacks the class.
std::vector<TCIMInstance*> StatesOf(const TContainer& container, const char* className);
/// The outcome of the thing that the instance describes: complete if the instance has no state, partial if it has one
/// that a later version of kyr knows.
TStoredOutcome OutcomeOf(const TCIMInstance& state);
/// The value of a string property; empty if there is none.
std::string TextOf(const TCIMInstance& state, const char* name);
/// The elements of a property that is an array of strings; none if there is none.
std::vector<std::string> TextsOf(const TCIMInstance& state, const char* name);
/// The value of a uint16 property; 0 if there is none.
unsigned short NumberOf(const TCIMInstance& state, const char* name);
/// Removes all instances of exactly that class.
void RemoveInstances(TCIMClass& cls);
/// Sets state, code and text. Properties that the instance's class lacks are skipped.
void StoreOutcome(TCIMInstance& state, const TOutcome& outcome);

/// The word for a code of a reason, as the container's class of states declares it; empty for eNone, and if the
/// container lacks the class.
std::string WordFor(EReason code, const TContainer& container);

/// For a collection that was read from a file: a class of which the file holds fewer instances than were collected
/// becomes partial, and so do its plugin and the collection.
void CheckInstanceCounts(const TContainer& container);

/// For a collection that was read from a file that is not as it was saved: makes the collection partial, for that
/// reason. A container that lacks the instance for the collection gets one, of the class in the state document.
void StoreFileChange(TContainer& container, const TReason& change);

/// Changes the state instances to what they would be if only the wanted classes had been collected. A plugin with a
/// reason of its own, such as a crash, keeps its state.
void NarrowStates(const TContainer& container, const TClassSelection& wanted);

#endif
