#include "json/Json.h"
#include "json/JsonValues.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "model/Associations.h"

namespace {

void WriteLink(TJsonWriter& json, const TAssociationLink& link) {
    json.StartObject();
    WriteText(json, "class", link.association->GetClass()->GetName());
    WriteText(json, "association", link.association->BuildPath().GetPath());
    WriteText(json, "role", link.role);
    WriteText(json, "otherRole", link.other.role);
    json.Key("other");
    WriteReference(json, link.other.reference);
    json.Key("collected");
    json.Boolean(link.other.instance != nullptr);
    json.EndObject();
}

}  // namespace

void WriteAssociationsJson(TCIMInstance& instance, const std::vector<TAssociationLink>& links, TOutput& output) {
    TJsonWriter json(output);
    StartDocument(json, "associations");
    json.Key("instance");
    WriteReference(json, instance.BuildPath());
    json.Key("ties");
    json.StartArray();
    for (const TAssociationLink& link : links) WriteLink(json, link);
    json.EndArray();
    json.EndObject();
}
