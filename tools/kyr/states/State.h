#ifndef STATE_H
#define STATE_H

#include <string>

#include "kyr/kyrLog.h"

/// How far the collecting of something came: the numbers of the property State in schema/collection.xml.
enum EState : unsigned short { eComplete = 1, ePartial, eFailed, eTimedOut, eRefused, eNotAsked };

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
