#include "json/Json.h"
#include "json/JsonValues.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "lookup/Ties.h"

namespace {

void WriteTie(TJsonWriter& json, const TTie& tie) {
    json.StartObject();
    WriteText(json, "class", tie.association->GetClass()->GetName());
    WriteText(json, "association", tie.association->BuildPath().GetPath());
    WriteText(json, "role", tie.role);
    WriteText(json, "otherRole", tie.other.role);
    json.Key("other");
    WriteReference(json, tie.other.reference);
    json.Key("collected");
    json.Boolean(tie.other.instance != nullptr);
    json.EndObject();
}

}  // namespace

void WriteTiesJson(TCIMInstance& instance, const TOptions& options, TOutput& output) {
    const std::vector<TTie> ties = FindTies(instance, options);
    TJsonWriter json(output);
    StartDocument(json, "associations");
    json.Key("instance");
    WriteReference(json, instance.BuildPath());
    json.Key("ties");
    json.StartArray();
    for (const TTie& tie : ties) WriteTie(json, tie);
    json.EndArray();
    json.EndObject();
}
