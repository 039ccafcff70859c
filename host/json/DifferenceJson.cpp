#include <iterator>
#include <optional>

#include "difference/Difference.h"
#include "json/Json.h"
#include "json/JsonValues.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"
#include "model/CollectionState.h"
#include "states/StateInstances.h"

namespace {

constexpr const char* kWords[] = {"removed", "added", "moved", "changed", "unreadable"};  // by EChange
static_assert(std::size(kWords) == kChanges);

void WritePropertyValue(TJsonWriter& json, const char* key, const TCIMProperty* property) {
    json.Key(key);
    property == nullptr ? json.Null() : WriteValue(json, property->GetValue());
}

std::string PathOf(const TCIMInstance* instance) { return instance == nullptr ? "" : instance->BuildPath().GetPath(); }

class TDifferenceWriter {
public:
    TDifferenceWriter(const TDifference& difference, TOutput& output) : fDifference(difference), fJson(output) {}

    void Write(const TContainer& before, const TContainer& after) {
        StartDocument(fJson, "difference");
        fJson.Key("differs");
        fJson.Boolean(fDifference.IsAny());
        WriteSameMachine();
        WriteCollection("old", before, fDifference.before, fDifference.fileChangeBefore);
        WriteCollection("new", after, fDifference.after, fDifference.fileChangeAfter);
        fJson.Key("changes");
        fJson.StartArray();
        for (const TClassChanges& cls : fDifference.classes)
            for (const TChange& change : cls.changes) WriteChange(cls.name, change);
        fJson.EndArray();
        fJson.Key("notCompared");
        fJson.StartArray();
        for (const TNotCompared& limits : fDifference.notCompared) WriteNotCompared(limits);
        fJson.EndArray();
        fJson.EndObject();
    }

private:
    void WriteSameMachine() {
        const std::optional<bool> isSame = IsSameMachine(fDifference.before, fDifference.after);
        fJson.Key("sameMachine");
        isSame ? fJson.Boolean(*isSame) : fJson.Null();
    }

    void WriteCollection(const char* key, const TContainer& container, const TScope& scope,
                         const std::string& fileChange) {
        const std::vector<TCIMInstance*> found = StatesOf(container, kCollectionClass);
        fJson.Key(key);
        fJson.StartObject();
        WriteText(fJson, "name", scope.Name());
        WriteText(fJson, "machineId", scope.TextOfSystem("MachineID"));
        WriteText(fJson, "uuid", scope.TextOfSystem("UUID"));
        WriteText(fJson, "serialNumber", scope.TextOfSystem("SerialNumber"));
        WriteText(fJson, "fileChange", fileChange);
        WriteText(fJson, "toolVersion", found.empty() ? "" : TextOf(*found.front(), "ToolVersion"));
        WritePropertyValue(fJson, "time",
                           found.empty() ? nullptr : found.front()->FindProperty("DateTimeOfCollection"));
        fJson.EndObject();
    }

    void WriteChange(const std::string& className, const TChange& change) {
        const std::string former = PathOf(change.before), present = PathOf(change.after);
        fJson.StartObject();
        WriteText(fJson, "op", kWords[static_cast<size_t>(change.kind)]);
        WriteText(fJson, "class", className);
        WriteText(fJson, "path", present.empty() ? former : present);
        WriteText(fJson, "formerPath", present.empty() || present == former ? "" : former);
        fJson.Key("properties");
        fJson.StartObject();
        for (const TPropertyDifference& property : change.properties) WriteProperty(property);
        fJson.EndObject();
        fJson.EndObject();
    }

    void WriteProperty(const TPropertyDifference& property) {
        fJson.Key((property.after != nullptr ? property.after : property.before)->GetName());
        fJson.StartObject();
        WritePropertyValue(fJson, "old", property.before);
        WritePropertyValue(fJson, "new", property.after);
        WriteText(fJson, "reason", property.reason);
        fJson.EndObject();
    }

    void WriteNotCompared(const TNotCompared& limits) {
        fJson.StartObject();
        WriteText(fJson, "class", limits.name);
        fJson.Key("commonCompared");
        fJson.Boolean(limits.commonCompared);
        WriteState("old", limits.before, limits.onlyAfter, limits.unknownBefore);
        WriteState("new", limits.after, limits.onlyBefore, limits.unknownAfter);
        fJson.EndObject();
    }

    void WriteState(const char* key, const TClassState& state, size_t notSeen,
                    const std::vector<std::string>& unknownProperties) {
        fJson.Key(key);
        fJson.StartObject();
        fJson.Key("known");
        fJson.Boolean(state.IsKnown());
        WriteText(fJson, "state", state.word);
        WriteText(fJson, "reasonCode", state.code);
        WriteText(fJson, "reason", state.outcome.text);
        fJson.Key("notSeen");
        fJson.Integer(std::to_string(notSeen));
        fJson.Key("unknownProperties");
        fJson.StartArray();
        for (const std::string& name : unknownProperties) fJson.String(name);
        fJson.EndArray();
        fJson.EndObject();
    }

    const TDifference& fDifference;
    TJsonWriter fJson;
};

}  // namespace

void WriteDifferenceJson(const TDifference& difference, const TContainer& before, const TContainer& after,
                         TOutput& output) {
    TDifferenceWriter(difference, output).Write(before, after);
}
