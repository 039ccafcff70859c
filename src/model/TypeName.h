#ifndef KYR_MODEL_TYPENAME_H
#define KYR_MODEL_TYPENAME_H

#include <string>

#include "kyr/TCIMValue.h"

/// The name of a type for the log. Empty where TCIMType::ToString raises.
std::string TypeNameForLog(TCIMValue::TCIMType type);
/// What TCIMType(name) is, without a copy of the name.
TCIMValue::TCIMType::ECIMType TypeOfName(const std::string& name);

#endif
