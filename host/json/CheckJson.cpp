#include "check/Findings.h"
#include "json/Json.h"
#include "json/JsonValues.h"

namespace {

void WriteCount(TJsonWriter& json, const char* key, size_t count) {
    json.Key(key);
    json.Json(std::to_string(count));
}

void WriteFinding(TJsonWriter& json, const TFinding& finding) {
    const TPlace& place = finding.place;
    json.StartObject();
    WriteText(json, "rule", finding.rule->id);
    WriteText(json, "level", NameOf(finding.rule->level));
    WriteText(json, "file", place.file);
    json.Key("line");
    place.line == 0 ? json.Null() : json.Json(std::to_string(place.line));
    WriteText(json, "class", place.cls);
    WriteText(json, "property", place.property);
    WriteText(json, "text", finding.text);
    WriteText(json, "remedy", finding.remedy);
    WriteText(json, "allowed", finding.excuse);
    json.EndObject();
}

}  // namespace

void WriteCheckJson(const TFindings& findings, TOutput& output) {
    TJsonWriter json(output);
    StartDocument(json, "check");
    WriteCount(json, "errors", findings.Count(ELevel::eError));
    WriteCount(json, "warnings", findings.Count(ELevel::eWarning));
    WriteCount(json, "notes", findings.Count(ELevel::eNote));
    json.Key("findings");
    json.StartArray();
    for (const TFinding& finding : findings.All()) WriteFinding(json, finding);
    json.EndArray();
    json.EndObject();
}
