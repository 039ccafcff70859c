#include "json/Json.h"
#include "json/JsonValues.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "model/Qualifiers.h"

namespace {

class TSchemaJsonWriter {
public:
    explicit TSchemaJsonWriter(TOutput& output) : fJson(output) {}

    void Write(const std::vector<TCIMClass*>& classes) {
        StartDocument(fJson, "schema");
        fJson.Key("classes");
        fJson.StartArray();
        for (const TCIMClass* cls : classes) WriteClass(*cls);
        fJson.EndArray();
        fJson.EndObject();
    }

private:
    void WriteClass(const TCIMClass& cls) {
        fJson.StartObject();
        WriteText(fJson, "name", cls.GetName());
        WriteText(fJson, "superclass", cls.IsRootClass() ? "" : cls.GetSuperClass()->GetName());
        WriteFlag("abstract", cls.IsAbstract());
        WriteFlag("association", cls.IsAssociation());
        WriteText(fJson, "plugin", QualifierString(cls, "PLUGINNAME"));
        WriteText(fJson, "pluginVersion", QualifierString(cls, "PLUGINVERSION"));
        WriteText(fJson, "description", QualifierString(cls, "Description"));
        WriteQualifiers(cls);
        WriteProperties(cls);
        fJson.EndObject();
    }

    void WriteProperties(const TCIMClass& cls) {
        fJson.Key("properties");
        fJson.StartArray();
        for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls()) WriteProperty(*declaration);
        fJson.EndArray();
    }

    void WriteProperty(const TCIMPropertyDecl& declaration) {
        const TCIMClass* const target = declaration.GetValue().GetReferencedClass();
        fJson.StartObject();
        WriteText(fJson, "name", declaration.GetName());
        WriteText(fJson, "type", TypeName(declaration.GetType()));
        WriteFlag("array", declaration.IsArray());
        WriteText(fJson, "referencedClass", target == nullptr ? "" : target->GetName());
        WriteFlag("key", IsKey(declaration));
        WriteText(fJson, "unit", QualifierString(declaration, "Units"));
        WriteStrings("values", declaration, "Values");
        WriteStrings("valueMap", declaration, "ValueMap");
        fJson.Key("default");
        WriteValue(fJson, declaration.GetValue());
        WriteText(fJson, "origin", declaration.GetClass()->GetName());
        WriteText(fJson, "description", QualifierString(declaration, "Description"));
        WriteQualifiers(declaration);
        fJson.EndObject();
    }

    template <typename TCarrier>
    void WriteQualifiers(const TCarrier& carrier) {
        fJson.Key("qualifiers");
        fJson.StartObject();
        for (const TCIMQualifier* qualifier : carrier.EnumerateQualifiers()) {
            fJson.Key(qualifier->GetName());
            fJson.StartObject();
            WriteText(fJson, "type", TypeName(qualifier->GetType()));
            fJson.Key("value");
            WriteValue(fJson, qualifier->GetValue());
            fJson.EndObject();
        }
        fJson.EndObject();
    }

    void WriteFlag(const char* key, bool flag) {
        fJson.Key(key);
        fJson.Boolean(flag);
    }

    void WriteStrings(const char* key, const TCIMPropertyDecl& declaration, const char* qualifier) {
        fJson.Key(key);
        WriteValue(fJson, QualifierValue(declaration, qualifier, kStringArray));
    }

    TJsonWriter fJson;
};

}  // namespace

void WriteSchemaJson(const TContainer& container, const TCIMClass* only, TOutput& output) {
    std::vector<TCIMClass*> classes = container.GetRootClass()->EnumerateSubClasses(true);
    SortByName(classes);
    if (only != nullptr) classes = {container.GetClass(only->GetName())};
    TSchemaJsonWriter(output).Write(classes);
}
