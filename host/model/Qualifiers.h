#ifndef KYR_HOST_MODEL_QUALIFIERS_H
#define KYR_HOST_MODEL_QUALIFIERS_H

#include <string>
#include <vector>

#include "kyr/TCIMValue.h"

class ICIMAllowQualifiers;
class TCIMClass;
class TCIMPropertyDecl;

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

bool IsKey(const TCIMPropertyDecl& declaration);
/// Its value changes on a machine that stays the same: a time, a counter, free space.
bool IsVolatile(const TCIMPropertyDecl& declaration);
/// It speaks of the instance's other properties: where they came from, and why they have no value.
bool IsCompanion(const TCIMPropertyDecl& declaration);
/// Plugins are never asked for its instances.
bool IsMarkedDontCollect(const TCIMClass& cls);

#endif
