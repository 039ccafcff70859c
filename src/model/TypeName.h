#ifndef KYR_MODEL_TYPENAME_H
#define KYR_MODEL_TYPENAME_H

#include <string>

#include "kyr/TCIMValue.h"

/// The type's name for a line of the log: empty where TCIMType::ToString raises.
std::string TypeNameForLog(TCIMValue::TCIMType type);

#endif
