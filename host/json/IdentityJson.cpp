#include "json/Json.h"
#include "json/JsonValues.h"
#include "states/StateInstances.h"

namespace {

void WriteFact(TJsonWriter& json, const TIdentityFact& fact, const TContainer& container) {
    json.Key(fact.name);
    json.StartObject();
    WriteText(json, "label", fact.label);
    WriteText(json, "value", fact.value);
    WriteText(json, "reasonCode", WordFor(fact.reason.code, container));
    WriteText(json, "reason", SentenceOf(fact.reason));
    json.EndObject();
}

}  // namespace

void WriteIdentityJson(const std::vector<TIdentityFact>& facts, const TContainer& container, TOutput& output) {
    TJsonWriter json(output);
    StartDocument(json, "identity");
    json.Key("facts");
    json.StartObject();
    for (const TIdentityFact& fact : facts) WriteFact(json, fact, container);
    json.EndObject();
    json.EndObject();
}
