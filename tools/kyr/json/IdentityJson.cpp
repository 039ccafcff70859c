#include "json/Json.h"
#include "json/JsonValues.h"

namespace {

void WriteFact(TJsonWriter& json, const TIdentityFact& fact) {
    json.Key(fact.name);
    json.StartObject();
    WriteText(json, "label", fact.label);
    WriteText(json, "value", fact.value);
    WriteText(json, "reason", fact.reason);
    json.EndObject();
}

}  // namespace

void WriteIdentityJson(const std::vector<TIdentityFact>& facts, TOutput& output) {
    TJsonWriter json(output);
    StartDocument(json, "identity");
    json.Key("facts");
    json.StartObject();
    for (const TIdentityFact& fact : facts) WriteFact(json, fact);
    json.EndObject();
    json.EndObject();
}
