#ifndef STATE_H
#define STATE_H

#include <string>

#include "kyr/kyrLog.h"

/// How far the collecting of something came: the numbers of the property State in schema/collection.xml.
enum EState : unsigned short { eComplete = 1, ePartial, eFailed, eTimedOut, eRefused, eNotAsked };

/// The classes of schema/collection.xml: of all states, and of those of the whole, of its plugins and of its classes.
constexpr const char* kStateClass = "MOLTA_CollectionState";
constexpr const char* kCollectionClass = "MOLTA_Collection";
constexpr const char* kCollectedPluginClass = "MOLTA_CollectedPlugin";
constexpr const char* kCollectedClassClass = "MOLTA_CollectedClass";

/// Why something was left out that is not missing.
constexpr const char* kReasonUnwanted = "left out by the choice of classes";
constexpr const char* kReasonDontCollect = "marked DONTCOLLECT";
constexpr const char* kReasonNoData = "its plugin has no data";
constexpr const char* kReasonSchemaOnly = "only the schema was wanted";

struct TVerdict {
    EState state = eComplete;
    std::string reason;
};

/// One line of the log.
struct TLogLine {
    bool core;  ///< else the plugin's that had its turn
    kyrLogSeverity severity;
    std::string text;
};

#endif
