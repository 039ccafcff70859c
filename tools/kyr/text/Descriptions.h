#ifndef DESCRIPTIONS_H
#define DESCRIPTIONS_H

#include <string>
#include <vector>

#include "kyr/TCIMValue.h"

class ICIMAllowQualifiers;

constexpr TCIMValue::TCIMType::ECIMType kStringArray =
    static_cast<TCIMValue::TCIMType::ECIMType>(TCIMValue::TCIMType::eCIMString | TCIMValue::TCIMType::eCIMArrayFlag);

/// The value of the qualifier; a NULL if there is none of that name and type.
TCIMValue QualifierValue(const ICIMAllowQualifiers& carrier, const char* name, TCIMValue::TCIMType::ECIMType type);
/// The text of a string qualifier; empty if there is none.
std::string QualifierString(const ICIMAllowQualifiers& carrier, const char* name);
/// The same as one visible line.
std::string QualifierText(const ICIMAllowQualifiers& carrier, const char* name);
/// The texts of a qualifier that is an array of strings; empty if there is none.
std::vector<std::string> QualifierTexts(const ICIMAllowQualifiers& carrier, const char* name);

/// The description without the line ends and indents of its document, visible; empty if there is none.
std::string DescriptionOf(const ICIMAllowQualifiers& carrier);
/// Its first sentence; empty if it was inherited, and so speaks of something wider.
std::string OwnShortDescriptionOf(const ICIMAllowQualifiers& carrier);

#endif
