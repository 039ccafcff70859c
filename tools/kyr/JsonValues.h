#ifndef JSONVALUES_H
#define JSONVALUES_H

#include <string>

#include "JsonWriter.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TCIMValue.h"

class TCIMInstance;
class TCIMReference;

/// In front of the names that documents give themselves.
constexpr char kSchemaPrefix[] = "kyrcore/";

/// What starts every document: the name of its schema, given without the prefix, and the version of that. The document
/// is left open.
void StartDocument(TJsonWriter& json, const std::string& schema);

/// "uint16", and "uint16[]" for an array of them.
std::string TypeName(TCIMValue::TCIMType type);

/// Numbers and booleans as such, an array as one, a reference as an object, all else as a string.
void WriteValue(TJsonWriter& json, const TCIMValue& value);

/// A member of the open object whose value is a string, or null for the empty one.
void WriteText(TJsonWriter& json, const char* key, const std::string& text);

/// An object with the class and the whole object path.
void WriteReference(TJsonWriter& json, const TCIMReference& reference);

/// All properties of the instance with type, value, unit and display text. With stable those values are null that
/// change by themselves.
void WriteProperties(TJsonWriter& json, const TCIMInstance& instance, bool stable);

constexpr TCIMValue::TCIMType::ECIMType kStringArray =
    static_cast<TCIMValue::TCIMType::ECIMType>(TCIMValue::TCIMType::eCIMString | TCIMValue::TCIMType::eCIMArrayFlag);

/// The value of the qualifier; a NULL if there is none of that name and type.
template <typename TCarrier>
TCIMValue QualifierValue(const TCarrier& carrier, const char* name, TCIMValue::TCIMType::ECIMType type) {
    const TCIMQualifier* const qualifier = carrier.FindQualifier(name);
    const bool suits = qualifier != nullptr && qualifier->GetType() == type;
    return suits ? qualifier->GetValue() : TCIMValue(type, 0);
}

/// The text of a string qualifier; empty if there is none.
template <typename TCarrier>
std::string QualifierString(const TCarrier& carrier, const char* name) {
    const TCIMValue value = QualifierValue(carrier, name, TCIMValue::TCIMType::eCIMString);
    return value.IsNull() ? "" : static_cast<std::string>(value);
}

#endif
