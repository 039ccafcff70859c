#ifndef KYR_HOST_MODEL_COLLECTIONSTATE_H
#define KYR_HOST_MODEL_COLLECTIONSTATE_H

#include "model/Reason.h"

/// The state of a collection, a plugin or a class: the numbers of the property State in schema/collection.xml.
enum EState : unsigned short { eComplete = 1, ePartial, eFailed, eTimedOut, eRefused, eNotAsked, eNoSource };

/// The classes of schema/collection.xml, whose instances hold the states: the superclass, and the classes for the
/// collection as a whole, for each plugin and for each class.
constexpr const char* kStateClass = "MOLTA_CollectionState";
constexpr const char* kCollectionClass = "MOLTA_Collection";
constexpr const char* kCollectedPluginClass = "MOLTA_CollectedPlugin";
constexpr const char* kCollectedClassClass = "MOLTA_CollectedClass";

/// The state of a collection, a plugin or a class, with the reason if it is not complete.
struct TOutcome {
    EState state = eComplete;
    TReason reason = {};
};

/// Whether data is missing. What was left out on purpose is not missing. Files of kyr 1.0 have no codes of reasons, so
/// "not asked" without a code is not missing either.
bool IsMissing(EState state, EReason reason);
inline bool IsMissing(const TOutcome& outcome) { return IsMissing(outcome.state, outcome.reason.code); }

#endif
