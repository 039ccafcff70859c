#include "json/JsonValues.h"

#include "json/JsonShapes.h"

#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TKYRException.h"
#include "model/Qualifiers.h"
#include "model/ValueVisitor.h"
#include "model/Values.h"

namespace {

using CIM = TCIMValue::TCIMType;

// A date-time may have no value although the value that holds it is not NULL: its text could not be read.
void WriteDateTime(TJsonWriter& json, const TCIMDateTime& moment) {
    moment.IsNull() ? json.Null() : json.String(moment.ToString());
}

void WriteArray(TJsonWriter& json, const std::vector<TCIMValue>& elements) {
    json.StartArray();
    for (const TCIMValue& element : elements) WriteValue(json, element);
    json.EndArray();
}

void WriteDisplay(TJsonWriter& json, const TCIMProperty& property) {
    if (!property.IsArray()) return json.String(DisplayText(property));
    json.StartArray();
    for (const std::string& element : DisplayElements(property)) json.String(element);
    json.EndArray();
}

void WriteProperty(TJsonWriter& json, const TCIMProperty& property, bool withValue) {
    const TCIMPropertyDecl& declaration = property.GetDeclaration();
    const TCIMValue value = property.GetValue();
    const bool isNull = value.IsNull() || !withValue;
    json.Key(property.GetName());
    json.StartObject();
    WriteText(json, "type", TypeName(declaration.GetType()));
    json.Key("value");
    isNull ? json.Null() : WriteValue(json, value);
    WriteText(json, "unit", QualifierString(declaration, "Units"));
    json.Key("text");
    isNull ? json.Null() : WriteDisplay(json, property);
    json.EndObject();
}

}  // namespace

void StartDocument(TJsonWriter& json, const std::string& schema) {
    json.StartObject();
    WriteText(json, "schema", kSchemaPrefix + schema);
    json.Key("version");
    for (const TJsonDocument& document : kJsonDocuments)
        if (document.name == schema) json.Json(document.version);
}

std::string TypeName(CIM type) {
    try {
        return type.ToString() + ((type & CIM::eCIMArrayFlag) != 0 ? "[]" : "");
    } catch (const TKYRException&) {
        return "none";
    }
}

void WriteValue(TJsonWriter& json, const TCIMValue& value) {
    if (value.IsNull()) return json.Null();
    VisitContent(value, TOverloads{[&](bool isTrue) { json.Boolean(isTrue); }, [&](float number) { json.Real(number); },
                                   [&](double number) { json.Real(number); },
                                   [&](const std::string& text) { json.String(text); },
                                   [&](const TCIMDateTime& moment) { WriteDateTime(json, moment); },
                                   [&](const TCIMReference& reference) { WriteReference(json, reference); },
                                   [&](const std::vector<TCIMValue>& elements) { WriteArray(json, elements); },
                                   [&](auto integer) { json.Integer(std::to_string(integer)); }});
}

void WriteText(TJsonWriter& json, const char* key, const std::string& text) {
    json.Key(key);
    text.empty() ? json.Null() : json.String(text);
}

void WriteReference(TJsonWriter& json, const TCIMReference& reference) {
    json.StartObject();
    WriteText(json, "class", reference.GetClassName());
    WriteText(json, "path", reference.GetPath());
    json.EndObject();
}

void WriteProperties(TJsonWriter& json, const TCIMInstance& instance, bool stable) {
    json.Key("properties");
    json.StartObject();
    for (const TCIMProperty* property : instance.EnumerateProperties())
        WriteProperty(json, *property, !stable || !IsVolatile(property->GetDeclaration()));
    json.EndObject();
}
