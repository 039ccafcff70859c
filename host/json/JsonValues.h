#ifndef KYR_HOST_JSON_JSONVALUES_H
#define KYR_HOST_JSON_JSONVALUES_H

#include <string>

#include "json/JsonWriter.h"
#include "kyr/TCIMValue.h"

class TCIMInstance;
class TCIMReference;

/// What the names of all schemas begin with, such as "kyrcore/collection".
constexpr char kSchemaPrefix[] = "kyrcore/";

/// Opens the object of a document and writes the name and version of its schema, which is given without the prefix. The
/// caller closes the object.
void StartDocument(TJsonWriter& json, const std::string& schema);

/// The name of a CIM type: "uint16", or "uint16[]" for an array.
std::string TypeName(TCIMValue::TCIMType type);

/// Writes a value as JSON: numbers and booleans as such, an array as an array, a reference as an object, all others as
/// a string.
void WriteValue(TJsonWriter& json, const TCIMValue& value);

/// Writes a member of the open object: a string, or null if the text is empty.
void WriteText(TJsonWriter& json, const char* key, const std::string& text);

/// Writes an object with the class and the object path of the reference.
void WriteReference(TJsonWriter& json, const TCIMReference& reference);

/// Writes all properties of the instance with type, value, unit and display text. With stable, the values of volatile
/// properties are null.
void WriteProperties(TJsonWriter& json, const TCIMInstance& instance, bool stable);

#endif
