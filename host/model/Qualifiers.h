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

/// The value of a qualifier of a class or property; NULL if it has none of that name and type.
TCIMValue QualifierValue(const ICIMAllowQualifiers& carrier, const char* name, TCIMValue::TCIMType::ECIMType type);
/// The text of a string qualifier; empty if there is none.
std::string QualifierString(const ICIMAllowQualifiers& carrier, const char* name);
/// The same as one line that is safe for a terminal.
std::string QualifierText(const ICIMAllowQualifiers& carrier, const char* name);
/// The elements of a qualifier that is an array of strings, safe for a terminal; empty if there is none.
std::vector<std::string> QualifierTexts(const ICIMAllowQualifiers& carrier, const char* name);

/// The qualifier Description as one line that is safe for a terminal; empty if there is none. Documents break and
/// indent descriptions to suit their own layout.
std::string DescriptionOf(const ICIMAllowQualifiers& carrier);
/// The first sentence of the description; empty if the description is inherited, since that describes the superclass.
std::string OwnShortDescriptionOf(const ICIMAllowQualifiers& carrier);

/// Whether it is one of the properties that identify an instance.
bool IsKey(const TCIMPropertyDecl& declaration);
/// Whether its value changes although the machine stays the same: a time, a counter, free space.
bool IsVolatile(const TCIMPropertyDecl& declaration);
/// Whether it describes other properties of the instance: where they were read, or why they have no value.
bool IsCompanion(const TCIMPropertyDecl& declaration);
/// The unit of what its value counts, safe for a terminal. Empty if it has none, also for "Identifier", which marks a
/// number that counts nothing.
std::string UnitOf(const TCIMPropertyDecl& declaration);
/// Whether its value is a number that counts something, and no word.
bool IsCounted(const TCIMPropertyDecl& declaration);

/// Whether it tells a thing from all others of its class, wherever it is.
bool IsIdentity(const TCIMPropertyDecl& declaration);
/// Whether plugins must not be asked for instances of the class.
bool IsDontCollect(const TCIMClass& cls);
/// Whether plugins are asked for it only if it is named, or if it needs something and that is granted.
bool IsOptional(const TCIMClass& cls);

#endif
