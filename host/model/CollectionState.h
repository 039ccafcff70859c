#ifndef KYR_HOST_MODEL_COLLECTIONSTATE_H
#define KYR_HOST_MODEL_COLLECTIONSTATE_H

#include "model/Reason.h"

/// How far the collecting of something came: the numbers of the property State in schema/collection.xml.
enum EState : unsigned short { eComplete = 1, ePartial, eFailed, eTimedOut, eRefused, eNotAsked };

/// The classes of schema/collection.xml: of all states, and of those of the whole, of its plugins and of its classes.
constexpr const char* kStateClass = "MOLTA_CollectionState";
constexpr const char* kCollectionClass = "MOLTA_Collection";
constexpr const char* kCollectedPluginClass = "MOLTA_CollectedPlugin";
constexpr const char* kCollectedClassClass = "MOLTA_CollectedClass";

/// What became of a collection, a plugin or a class.
struct TOutcome {
    EState state = eComplete;
    TReason reason = {};
};

/// Whether something is missing. What was left out on purpose is not missing; nor is what was not asked for an unknown
/// reason, as files of kyr 1.0 have it, in which reasons had no codes.
bool IsMissing(EState state, EReason reason);
inline bool IsMissing(const TOutcome& outcome) { return IsMissing(outcome.state, outcome.reason.code); }

#endif
