#include <map>

#include "json/Json.h"
#include "json/JsonValues.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "model/CollectionState.h"
#include "model/InstanceChoice.h"
#include "model/Provenance.h"
#include "model/Qualifiers.h"
#include "model/Values.h"
#include "states/HostIdentity.h"
#include "states/StateInstances.h"

namespace {

// The property of the instance; null if it has no such property, the property has no value, or there is no instance.
const TCIMProperty* FindFilled(const TCIMInstance* instance, const char* name) {
    const TCIMProperty* const property = instance == nullptr ? nullptr : instance->FindProperty(name);
    return property == nullptr || property->GetValue().IsNull() ? nullptr : property;
}

class TCollectionWriter {
public:
    TCollectionWriter(const TContainer& container, const TInstanceChoice& choice, bool stable, TOutput& output)
        : fContainer(container), fChoice(choice), fStable(stable), fJson(output) {}

    void Write() {
        StartDocument(fJson, "collection");
        WriteCollection();
        WritePlugins();
        WriteClasses();
        fJson.EndObject();
    }

private:
    void WriteCollection() {
        const std::vector<TCIMInstance*> found = StatesOf(fContainer, kCollectionClass);
        const TCIMInstance* const collection = found.empty() ? nullptr : found.front();
        WriteState(collection);
        WritePlain("tool", collection, "Tool");
        WritePlain("toolVersion", collection, "ToolVersion");
        WriteBoolean("superuser", collection, "Superuser");
        WritePlain("time", collection, "DateTimeOfCollection");
        WriteHost();
    }

    void WriteHost() {
        fJson.Key("host");
        fJson.StartObject();
        for (const THostText& text : kHostTexts) WriteText(fJson, text.key, HostTextOf(fContainer, text));
        fJson.EndObject();
    }

    void WritePlugins() {
        fJson.Key("plugins");
        fJson.StartArray();
        for (const TCIMInstance* plugin : StatesOf(fContainer, kCollectedPluginClass)) {
            fJson.StartObject();
            WritePlain("name", plugin, "Name");
            WritePlain("library", plugin, "Library");
            WritePlain("folder", plugin, "Folder");
            WritePlain("version", plugin, "Version");
            WriteState(plugin);
            WriteTexts("sandbox", plugin, "Sandbox");
            fJson.EndObject();
        }
        fJson.EndArray();
    }

    void WriteClasses() {
        std::map<std::string, const TCIMInstance*> states;
        for (const TCIMInstance* state : StatesOf(fContainer, kCollectedClassClass))
            if (const TCIMProperty* const name = FindFilled(state, "Name"))
                states.emplace(PlainText(name->GetValue()), state);
        fJson.Key("classes");
        fJson.StartArray();
        for (const TCIMClass* cls : fChoice.Classes()) {
            const auto state = states.find(cls->GetName());
            WriteClass(*cls, state == states.end() ? nullptr : state->second);
        }
        fJson.EndArray();
    }

    // A class without a state could not be collected, as it is abstract. It is left out unless it has instances, which
    // a file of another program may hold.
    void WriteClass(const TCIMClass& cls, const TCIMInstance* state) {
        const std::vector<TCIMInstance*> instances = fChoice.InstancesOf(cls);
        if (state == nullptr && instances.empty()) return;
        fJson.StartObject();
        WriteText(fJson, "name", cls.GetName());
        WritePlain("plugin", state, "Plugin");
        WriteState(state);
        WriteTexts("missingSources", state, "MissingSources");
        WriteNullReasons(cls, !instances.empty());
        fJson.Key("instances");
        fJson.StartArray();
        for (const TCIMInstance* instance : instances) WriteInstance(*instance);
        fJson.EndArray();
        fJson.EndObject();
    }

    // What a property without a value means in each instance whose UnavailableValues does not say it.
    void WriteNullReasons(const TCIMClass& cls, bool hasInstances) {
        fJson.Key("nullReasons");
        fJson.StartObject();
        for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls())
            if (const std::string meaning = NullMeaningOf(*declaration); hasInstances && !meaning.empty())
                WriteNullReason(declaration->GetName(), meaning);
        fJson.EndObject();
    }

    void WriteNullReason(const std::string& property, const std::string& meaning) {
        fJson.Key(property.c_str());
        fJson.StartObject();
        WriteText(fJson, "reasonCode", WordFor(CodeOfAbsence(meaning), fContainer));
        WriteText(fJson, "reason", meaning);
        fJson.EndObject();
    }

    void WriteInstance(const TCIMInstance& instance) {
        fJson.StartObject();
        WriteText(fJson, "path", instance.BuildPath().GetPath());
        WriteProperties(fJson, instance, fStable);
        fJson.EndObject();
    }

    void WriteState(const TCIMInstance* instance) {
        const TCIMProperty* const state = FindFilled(instance, "State");
        WriteText(fJson, "state", state == nullptr ? "" : DisplayText(*state));
        const TCIMProperty* const code = FindFilled(instance, "ReasonCode");
        WriteText(fJson, "reasonCode", code == nullptr ? "" : DisplayText(*code));
        WritePlain("reason", instance, "Reason");
        WriteTexts("log", instance, "LogLines");
    }

    void WriteTexts(const char* key, const TCIMInstance* instance, const char* name) {
        const TCIMProperty* const texts = FindFilled(instance, name);
        fJson.Key(key);
        if (texts != nullptr && texts->IsArray() && IsPrinted(*texts)) return WriteValue(fJson, texts->GetValue());
        fJson.StartArray();
        fJson.EndArray();
    }

    bool IsPrinted(const TCIMProperty& property) const { return !fStable || !IsVolatile(property.GetDeclaration()); }

    void WritePlain(const char* key, const TCIMInstance* instance, const char* name) {
        const TCIMProperty* const property = FindFilled(instance, name);
        WriteText(fJson, key, property != nullptr && IsPrinted(*property) ? PlainText(property->GetValue()) : "");
    }

    void WriteBoolean(const char* key, const TCIMInstance* instance, const char* name) {
        const TCIMProperty* const property = FindFilled(instance, name);
        fJson.Key(key);
        if (property != nullptr && property->GetType() == TCIMValue::TCIMType::eCIMBoolean)
            fJson.Boolean(static_cast<bool>(property->GetValue()));
        else
            fJson.Null();
    }

    const TContainer& fContainer;
    const TInstanceChoice& fChoice;
    const bool fStable;
    TJsonWriter fJson;
};

}  // namespace

void WriteCollectionJson(const TContainer& container, const TInstanceChoice& choice, bool stable, TOutput& output) {
    TCollectionWriter(container, choice, stable, output).Write();
}
