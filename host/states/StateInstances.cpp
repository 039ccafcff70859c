#include "states/StateInstances.h"

#include <algorithm>
#include <map>
#include <set>

#include "base/Locations.h"
#include "base/StatusWords.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "model/Qualifiers.h"
#include "model/Values.h"
#include "states/Outcomes.h"

namespace {

using CIM = TCIMValue::TCIMType;

// Skips a property that the class lacks or declares with another type: the class may come from a foreign file.
void Set(TCIMInstance& state, const char* name, const TCIMValue& value) {
    const TCIMProperty* const property = state.FindProperty(name);
    if (property == nullptr || property->GetType() != value.GetType()) return;
    state.SetPropertyValue(name, value);
}

// Makes the property NULL, as if it had never been set.
void Clear(TCIMInstance& state, const char* name) {
    if (const TCIMProperty* const property = state.FindProperty(name))
        state.SetProperty(TCIMProperty(property->GetDeclaration()));
}

// How many instances of the class were collected, as its state tells.
size_t CollectedCount(const TCIMInstance& state) {
    const TCIMProperty* const property = state.FindProperty("InstanceCount");
    if (property == nullptr || property->GetType() != CIM::eCIMUint32) return 0;
    const TCIMValue value = property->GetValue();
    return value.IsNull() ? 0 : static_cast<unsigned int>(value);
}

size_t CountInstances(const TContainer& container, const std::string& className) {
    const TCIMClass* const cls = FindClassNamed(container, className);
    return cls == nullptr ? 0 : cls->EnumerateInstances(false).size();
}

void StoreNotSelected(TCIMInstance& state) {
    StoreOutcome(state, {eNotAsked, ReasonFor(EReason::eNotSelected)});
    for (const char* name : {"LogLines", "MissingSources"}) Clear(state, name);
    Set(state, "InstanceCount", TCIMValue(0u));
}

bool IsStateMissing(const TCIMInstance& state) {
    const TStoredOutcome outcome = OutcomeOf(state);
    return IsMissing(outcome.state, outcome.code);
}

TReason IncompletePlugins(const TContainer& container) {
    const std::vector<TCIMInstance*> plugins = StatesOf(container, kCollectedPluginClass);
    const auto missing = std::count_if(plugins.begin(), plugins.end(),
                                       [](const TCIMInstance* plugin) { return IsStateMissing(*plugin); });
    return PluginsIncomplete(static_cast<size_t>(missing), plugins.size());
}

void StoreIfComplete(TCIMInstance& state, const TOutcome& outcome) {
    if (OutcomeOf(state).state == eComplete) StoreOutcome(state, outcome);
}

// The time of collection stays NULL: the core would set it to the present time.
void AddCollectionState(TContainer& container) {
    if (container.FindClass(kCollectionClass) == nullptr) container.PopulateContainerFromFile(FindStateDocument());
    TCIMInstance& state = *container.AllocateInstance(container.GetClass(kCollectionClass));
    Set(state, "Tool", TCIMValue("kyr"));
    Set(state, "DateTimeOfCollection", TCIMValue(CIM::eCIMDateTime, 0));
    state.AddToContainer();
}

/// How many of a plugin's wanted classes were asked for, and how many of them are missing.
struct TWantedCounts {
    size_t asked = 0;
    size_t missing = 0;
};

/// One run of NarrowStates: classes first, then the plugins, then the collection, each from the states before it.
class TNarrowing {
public:
    TNarrowing(const TContainer& container, const TClassSelection& wanted) : fContainer(container), fWanted(wanted) {}

    void Narrow() {
        for (TCIMInstance* cls : StatesOf(fContainer, kCollectedClassClass)) NarrowClass(*cls);
        for (TCIMInstance* plugin : StatesOf(fContainer, kCollectedPluginClass)) NarrowPlugin(*plugin);
        const TReason reason = IncompletePlugins(fContainer);
        for (TCIMInstance* collection : StatesOf(fContainer, kCollectionClass))
            if (OutcomeOf(*collection).code == EReason::ePluginsIncomplete)
                StoreOutcome(*collection, {reason ? ePartial : eComplete, reason});
    }

private:
    void NarrowClass(TCIMInstance& cls) {
        if (fWanted.IsSchemaOnly() || !fWanted.Includes(TextOf(cls, "Name"))) return StoreNotSelected(cls);
        TWantedCounts& counts = fCounts[TextOf(cls, "Plugin")];
        counts.asked += OutcomeOf(cls).state != eNotAsked;
        counts.missing += IsStateMissing(cls);
    }

    // A plugin with a reason of its own keeps it, whichever classes are wanted.
    void NarrowPlugin(TCIMInstance& plugin) {
        const TWantedCounts counts = fCounts[TextOf(plugin, "Name")];
        if (OutcomeOf(plugin).HasReason() || counts.missing != 0) return;
        counts.asked == 0 ? StoreNotSelected(plugin) : StoreOutcome(plugin, TOutcome());
    }

    const TContainer& fContainer;
    const TClassSelection& fWanted;
    std::map<std::string, TWantedCounts> fCounts;  // by the name of the plugin
};

}  // namespace

std::vector<TCIMInstance*> StatesOf(const TContainer& container, const char* className) {
    const TCIMClass* const cls = container.FindClass(className);
    return cls == nullptr ? std::vector<TCIMInstance*>() : cls->EnumerateInstances(false);
}

TStoredOutcome OutcomeOf(const TCIMInstance& state) {
    const unsigned short number = NumberOf(state, "State");
    if (number == 0) return {};
    if (number > eNoSource)
        return {ePartial, EReason::eNone, "its state, " + std::to_string(number) + ", is not known"};
    const auto code = static_cast<EReason>(NumberOf(state, "ReasonCode"));
    const std::string sentence = WithStatusInWords(TextOf(state, "Reason"));  // files of kyr 1.0 have names alone
    return {static_cast<EState>(number), code, sentence.empty() ? WordFor(code, *state.GetContainer()) : sentence};
}

std::string TextOf(const TCIMInstance& state, const char* name) {
    const TCIMProperty* const property = state.FindProperty(name);
    if (property == nullptr || property->GetType() != CIM::eCIMString) return "";
    const TCIMValue value = property->GetValue();
    return value.IsNull() ? "" : static_cast<std::string>(value);
}

unsigned short NumberOf(const TCIMInstance& state, const char* name) {
    const TCIMProperty* const property = state.FindProperty(name);
    if (property == nullptr || property->GetType() != CIM::eCIMUint16) return 0;
    const TCIMValue value = property->GetValue();
    return value.IsNull() ? 0 : static_cast<unsigned short>(value);
}

std::vector<std::string> TextsOf(const TCIMInstance& state, const char* name) {
    std::vector<std::string> texts;
    const TCIMProperty* const property = state.FindProperty(name);
    if (property == nullptr || property->GetType() != kStringArray) return texts;
    const TCIMValue value = property->GetValue();
    if (value.IsNull()) return texts;
    for (const TCIMValue& element : static_cast<std::vector<TCIMValue>&>(value))
        if (!element.IsNull()) texts.push_back(static_cast<std::string>(element));
    return texts;
}

// Removing an instance removes all others with its path.
void RemoveInstances(TCIMClass& cls) {
    std::map<std::string, TCIMInstance*> instances;
    for (TCIMInstance* const instance : cls.EnumerateInstances(false))
        instances.emplace(instance->BuildPath().GetPath(), instance);
    for (const auto& [path, instance] : instances) cls.RemoveInstance(*instance);
}

void StoreOutcome(TCIMInstance& state, const TOutcome& outcome) {
    Set(state, "State", TCIMValue(static_cast<unsigned short>(outcome.state)));
    for (const char* name : {"ReasonCode", "Reason"}) Clear(state, name);
    const std::string sentence = SentenceOf(outcome.reason);
    if (outcome.reason) Set(state, "ReasonCode", TCIMValue(static_cast<unsigned short>(outcome.reason.code)));
    if (!sentence.empty()) Set(state, "Reason", TCIMValue(sentence));
}

std::string WordFor(EReason code, const TContainer& container) {
    const TCIMClass* const cls = container.FindClass(kStateClass);
    const TCIMPropertyDecl* const declaration = cls == nullptr ? nullptr : cls->FindPropertyDecl("ReasonCode");
    if (declaration == nullptr || code == EReason::eNone) return "";
    TCIMProperty property(*declaration);
    property.SetValue(TCIMValue(static_cast<unsigned short>(code)));
    return DisplayText(property);
}

void CheckInstanceCounts(const TContainer& container) {
    std::set<std::string> plugins;
    for (TCIMInstance* state : StatesOf(container, kCollectedClassClass)) {
        const size_t collected = CollectedCount(*state), held = CountInstances(container, TextOf(*state, "Name"));
        if (held >= collected) continue;
        const std::string counts = std::to_string(held) + " of " + std::to_string(collected);
        StoreOutcome(*state, {ePartial, ReasonFor(EReason::eInstancesLost, counts)});
        plugins.insert(TextOf(*state, "Plugin"));
    }
    if (plugins.empty()) return;
    for (TCIMInstance* plugin : StatesOf(container, kCollectedPluginClass))
        if (plugins.count(TextOf(*plugin, "Name")) != 0) StoreIfComplete(*plugin, {ePartial});
    for (TCIMInstance* collection : StatesOf(container, kCollectionClass))
        StoreIfComplete(*collection, {ePartial, IncompletePlugins(container)});
}

void StoreFileChange(TContainer& container, const TReason& change) {
    if (StatesOf(container, kCollectionClass).empty()) AddCollectionState(container);
    for (TCIMInstance* collection : StatesOf(container, kCollectionClass)) {
        const TStoredOutcome before = OutcomeOf(*collection);
        TReason reason = change;
        if (before.code == EReason::eInterrupted) reason.detail += "; the collection was " + before.text;
        if (before.state == eComplete || before.state == ePartial || before.state == eNotAsked)
            StoreOutcome(*collection, {ePartial, reason});
    }
}

void NarrowStates(const TContainer& container, const TClassSelection& wanted) {
    if (!wanted.IsAll()) TNarrowing(container, wanted).Narrow();
}
