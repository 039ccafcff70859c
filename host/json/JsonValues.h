#ifndef KYR_HOST_JSON_JSONVALUES_H
#define KYR_HOST_JSON_JSONVALUES_H

#include <string>

#include "json/JsonWriter.h"
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

#endif
