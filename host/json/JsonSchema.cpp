#include "json/Json.h"
#include "json/JsonShapes.h"
#include "json/JsonValues.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "model/CollectionState.h"
#include "model/Qualifiers.h"

namespace {

using TNames = std::vector<std::string>;

// The name of the definition for the values of a type: "uint16Array" for "uint16[]".
std::string DefinitionOf(std::string type) {
    const size_t brackets = type.find("[]");
    return brackets == std::string::npos ? type : type.replace(brackets, 2, "Array");
}

TNames AllTypes() {
    TNames types;
    for (const TJsonDefinition& type : kJsonTypes)
        for (const char* const suffix : {"", "[]"}) types.push_back(std::string(type.name) + suffix);
    return types;
}

/// Writes the JSON Schema. Every function but Write() adds members to the object that is open, which is a schema or a
/// part of one.
class TJsonSchema {
public:
    TJsonSchema(const TContainer& container, TOutput& output)
        : fContainer(container), fClasses(container.GetRootClass()->EnumerateSubClasses(true)), fJson(output) {
        SortByName(fClasses);
    }

    void Write() {
        fJson.StartObject();
        WriteText(fJson, "$schema", "http://json-schema.org/draft-07/schema#");
        WriteText(fJson, "title", "What kyr prints with --json");
        WriteDocument();
        WriteObject("definitions", [this] { WriteDefinitions(); });
        fJson.EndObject();
    }

private:
    template <typename TWrite>
    void WriteObject(const std::string& key, TWrite writeMembers) {
        fJson.Key(key);
        fJson.StartObject();
        writeMembers();
        fJson.EndObject();
    }

    void WriteNames(const char* key, const TNames& names) {
        fJson.Key(key);
        fJson.StartArray();
        for (const std::string& name : names) fJson.String(name);
        fJson.EndArray();
    }

    // A schema for what the definition describes; with "[]" behind its name, for an array of that.
    void WriteReferenceTo(const std::string& definition) {
        const size_t brackets = definition.find("[]");
        if (brackets == std::string::npos) return WriteText(fJson, "$ref", "#/definitions/" + definition);
        WriteText(fJson, "type", "array");
        WriteObject("items", [&] { WriteReferenceTo(definition.substr(0, brackets)); });
    }

    // A schema for an object that has all of these members and no others.
    template <typename TWrite>
    void WriteClosedObject(const TNames& keys, TWrite writeMember) {
        WriteText(fJson, "type", "object");
        WriteNames("required", keys);
        fJson.Key("additionalProperties");
        fJson.Boolean(false);
        WriteObject("properties", [&] {
            for (const std::string& key : keys) WriteObject(key, [&] { writeMember(key); });
        });
    }

    // A schema that depends on the value of a member: for each value, writeThen adds what else must hold.
    template <typename TWrite>
    void WriteCases(const char* member, const TNames& values, TWrite writeThen) {
        fJson.Key("allOf");
        fJson.StartArray();
        for (const std::string& value : values) {
            fJson.StartObject();
            WriteObject("if", [&] { WriteConstant(member, value); });
            WriteObject("then", [&] { writeThen(value); });
            fJson.EndObject();
        }
        fJson.EndArray();
    }

    void WriteConstant(const char* member, const std::string& value) {
        WriteObject("properties", [&] { WriteObject(member, [&] { WriteText(fJson, "const", value); }); });
    }

    void WriteDocument() {
        TNames names;
        for (const TJsonDocument& document : kJsonDocuments)
            names.push_back(std::string(kSchemaPrefix) + document.name);
        WriteText(fJson, "type", "object");
        WriteNames("required", {"schema"});
        WriteObject("properties", [&] { WriteObject("schema", [&] { WriteNames("enum", names); }); });
        WriteCases("schema", names,
                   [this](const std::string& name) { WriteReferenceTo(name.substr(sizeof kSchemaPrefix - 1)); });
    }

    void WriteDefinitions() {
        for (const TJsonDefinition& definition : kJsonDefinitions) WriteLiteral(definition);
        for (const TJsonDefinition& type : kJsonTypes) WriteLiteral(type);
        for (const TJsonDefinition& type : kJsonTypes) WriteArrayOf(type.name);
        for (const std::string& type : AllTypes())
            WriteObject(DefinitionOf(type) + "Property", [&] { WritePropertyOfType(type); });
        WriteObject("state", [this] { WriteWordsOf("State"); });
        WriteObject("reasonCode", [this] { WriteWordsOf("ReasonCode"); });
        WriteObject("typeName", [this] { WriteNames("enum", AllTypes()); });
        WriteObject("className", [this] { WriteNames("enum", NamesOf(fClasses)); });
        for (const TJsonShape& shape : kJsonShapes) WriteObject(shape.name, [&] { WriteShape(shape); });
    }

    void WriteLiteral(const TJsonDefinition& definition) {
        fJson.Key(definition.name);
        fJson.Json(definition.text);
    }

    void WriteArrayOf(const std::string& type) {
        WriteObject(type + "Array", [&] {
            WriteNames("type", {"array", "null"});
            WriteObject("items", [&] { WriteReferenceTo(type); });
        });
    }

    void WritePropertyOfType(const std::string& type) {
        const bool isArray = type.back() == ']';
        WriteClosedObject({"type", "value", "unit", "text"}, [&](const std::string& key) {
            if (key == "type") WriteText(fJson, "const", type);
            if (key == "value") WriteReferenceTo(DefinitionOf(type));
            if (key == "text") WriteReferenceTo(isArray ? "maybeTexts" : "maybeText");
        });
    }

    // The words that the class of states declares for the numbers of that property, and null.
    void WriteWordsOf(const char* property) {
        fJson.Key("enum");
        fJson.StartArray();
        fJson.Null();
        const TCIMClass* const cls = fContainer.FindClass(kStateClass);
        const TCIMPropertyDecl* const declaration = cls == nullptr ? nullptr : cls->FindPropertyDecl(property);
        const TCIMValue words =
            declaration == nullptr ? TCIMValue() : QualifierValue(*declaration, "Values", kStringArray);
        if (!words.IsNull())
            for (const TCIMValue& word : static_cast<std::vector<TCIMValue>&>(words)) WriteValue(fJson, word);
        fJson.EndArray();
    }

    void WriteShape(const TJsonShape& shape) {
        TNames keys;
        for (const TJsonShape::TMember& member : shape.members) keys.emplace_back(member.key);
        WriteClosedObject(keys, [&](const std::string& key) {
            for (const TJsonShape::TMember& member : shape.members)
                if (key == member.key) WriteReferenceTo(member.definition);
        });
        if (shape.cases == TJsonShape::eByClass) WriteCasesByClass();
        if (shape.cases == TJsonShape::eByType) WriteCasesByType(shape.typed);
    }

    void WriteCasesByClass() {
        WriteCases("name", NamesOf(fClasses), [this](const std::string& name) {
            const TCIMClass& cls = *fContainer.GetClass(name);
            WriteObject("properties",
                        [&] { WriteObject("instances", [&] { WriteObject("items", [&] { WriteInstance(cls); }); }); });
        });
    }

    void WriteCasesByType(const char* member) {
        WriteCases("type", AllTypes(), [&](const std::string& type) {
            WriteObject("properties", [&] { WriteObject(member, [&] { WriteReferenceTo(DefinitionOf(type)); }); });
        });
    }

    void WriteInstance(const TCIMClass& cls) {
        WriteClosedObject({"path", "properties"}, [&](const std::string& key) {
            if (key == "path") return WriteReferenceTo("text");
            WriteProperties(cls);
        });
    }

    void WriteProperties(const TCIMClass& cls) {
        TNames names;
        for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls())
            names.push_back(declaration->GetName());
        WriteClosedObject(names, [&](const std::string& name) { WriteProperty(*cls.GetPropertyDecl(name)); });
    }

    void WriteProperty(const TCIMPropertyDecl& declaration) {
        fJson.Key("allOf");
        fJson.StartArray();
        fJson.StartObject();
        WriteReferenceTo(DefinitionOf(TypeName(declaration.GetType())) + "Property");
        fJson.EndObject();
        fJson.StartObject();
        WriteConstant("unit", QualifierString(declaration, "Units"));
        fJson.EndObject();
        fJson.EndArray();
    }

    const TContainer& fContainer;
    std::vector<TCIMClass*> fClasses;
    TJsonWriter fJson;
};

}  // namespace

void WriteJsonSchema(const TContainer& container, TOutput& output) { TJsonSchema(container, output).Write(); }
