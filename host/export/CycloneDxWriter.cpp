#include <boost/uuid/name_generator_sha1.hpp>
#include <boost/uuid/string_generator.hpp>
#include <boost/uuid/uuid_io.hpp>

#include "base/Text.h"
#include "export/CycloneDxModel.h"
#include "json/JsonWriter.h"

namespace {

constexpr size_t kLongestVersion = 1024;  // that the format allows

/// The texts of a document one behind the other, each with its length, so that no two documents give the same.
class TDigest {
public:
    TDigest& operator<<(const std::string& text) {
        fText += std::to_string(text.size()) + ':' + text;
        return *this;
    }
    TDigest& operator<<(const std::vector<TBomProperty>& properties) {
        for (const TBomProperty& property : properties) *this << property.name << property.value;
        return *this << "";
    }
    TDigest& operator<<(const TBomComponent& each) {
        return *this << each.ref << each.name << each.version << each.description << each.supplier << each.email
                     << each.purl << each.properties;
    }
    const std::string& Text() const { return fText; }

private:
    std::string fText;
};

// A UUID of version 5 within a name space of its own.
std::string SerialNumberOf(const TBom& bom) {
    TDigest digest;
    digest << bom.fMachineKey << bom.fTimestamp << bom.fProperties << bom.fMachine;
    for (const TBomComponent& component : bom.fComponents) digest << component;
    for (const auto& [ref, others] : bom.fDependencies) {
        digest << ref;
        for (const std::string& other : others) digest << other;
    }
    for (const TBomComposition& composition : bom.fCompositions) digest << composition.aggregate << composition.ref;
    const boost::uuids::uuid space = boost::uuids::string_generator()("6c1f6a52-3d0b-4c0e-9e57-9a0d6a1f27c4");
    return "urn:uuid:" + to_string(boost::uuids::name_generator_sha1(space)(digest.Text()));
}

void WriteSupplier(TJsonWriter& json, const TBomComponent& component) {
    if (component.supplier.empty() && component.email.empty()) return;
    json.Key("supplier");
    json.StartObject();
    WriteIfAny(json, "name", component.supplier);
    if (!component.email.empty()) {
        json.Key("contact");
        json.StartArray();
        json.StartObject();
        WriteIfAny(json, "email", component.email);
        json.EndObject();
        json.EndArray();
    }
    json.EndObject();
}

void WriteProperties(TJsonWriter& json, const std::vector<TBomProperty>& properties) {
    if (properties.empty()) return;
    json.Key("properties");
    json.StartArray();
    for (const TBomProperty& property : properties) {
        json.StartObject();
        WriteIfAny(json, "name", property.name);
        WriteIfAny(json, "value", property.value);
        json.EndObject();
    }
    json.EndArray();
}

void WriteComponent(TJsonWriter& json, const TBomComponent& component) {
    json.StartObject();
    WriteIfAny(json, "type", component.type);
    WriteIfAny(json, "bom-ref", component.ref);
    WriteSupplier(json, component);
    WriteIfAny(json, "name", component.name);
    WriteIfAny(json, "version", CutText(component.version, kLongestVersion));
    WriteIfAny(json, "description", component.description);
    WriteIfAny(json, "purl", component.purl);
    WriteProperties(json, component.properties);
    json.EndObject();
}

void WriteComponents(TJsonWriter& json, const std::vector<TBomComponent>& components) {
    json.Key("components");
    json.StartArray();
    for (const TBomComponent& component : components) WriteComponent(json, component);
    json.EndArray();
}

void WriteTool(TJsonWriter& json) {
    json.Key("tools");
    json.StartObject();
    WriteComponents(json, {{"application", "kyr", "kyr", KYRCORE_VERSION}});
    json.EndObject();
}

void WriteLifecycle(TJsonWriter& json) {
    json.Key("lifecycles");
    json.StartArray();
    json.StartObject();
    WriteIfAny(json, "phase", "operations");
    json.EndObject();
    json.EndArray();
}

void WriteMetadata(TJsonWriter& json, const TBom& bom) {
    json.Key("metadata");
    json.StartObject();
    WriteIfAny(json, "timestamp", bom.fTimestamp);
    WriteLifecycle(json);
    WriteTool(json);
    json.Key("component");
    WriteComponent(json, bom.fMachine);
    WriteProperties(json, bom.fProperties);
    json.EndObject();
}

template <typename TTexts>
void WriteTexts(TJsonWriter& json, const char* key, const TTexts& texts) {
    json.Key(key);
    json.StartArray();
    for (const std::string& text : texts) json.String(text);
    json.EndArray();
}

void WriteDependencies(TJsonWriter& json, const TBom& bom) {
    json.Key("dependencies");
    json.StartArray();
    for (const auto& [ref, others] : bom.fDependencies) {
        json.StartObject();
        WriteIfAny(json, "ref", ref);
        WriteTexts(json, "dependsOn", others);
        json.EndObject();
    }
    json.EndArray();
}

void WriteCompositions(TJsonWriter& json, const TBom& bom) {
    json.Key("compositions");
    json.StartArray();
    for (const TBomComposition& composition : bom.fCompositions) {
        json.StartObject();
        WriteIfAny(json, "aggregate", composition.aggregate);
        WriteTexts(json, "dependencies", std::vector<std::string>{composition.ref});
        json.EndObject();
    }
    json.EndArray();
}

}  // namespace

void WriteBom(const TBom& bom, TOutput& output) {
    TJsonWriter json(output);
    json.StartObject();
    WriteIfAny(json, "bomFormat", "CycloneDX");
    WriteIfAny(json, "specVersion", "1.6");
    WriteIfAny(json, "serialNumber", SerialNumberOf(bom));
    json.Key("version");
    json.Integer("1");
    WriteMetadata(json, bom);
    WriteComponents(json, bom.fComponents);
    WriteDependencies(json, bom);
    WriteCompositions(json, bom);
    json.EndObject();
}
