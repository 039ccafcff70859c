#include "states/StateInstances.h"

#include <algorithm>
#include <map>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TContainer.h"
#include "model/Values.h"
#include "states/Outcomes.h"

namespace {

using CIM = TCIMValue::TCIMType;

// Not where the property is of another type.
void Set(TCIMInstance& state, const char* name, const TCIMValue& value) {
    const TCIMProperty* const property = state.FindProperty(name);
    if (property == nullptr || property->GetType() != value.GetType()) return;
    state.SetPropertyValue(name, value);
}

// As if it had never been set.
void Clear(TCIMInstance& state, const char* name) {
    if (const TCIMProperty* const property = state.FindProperty(name))
        state.SetProperty(TCIMProperty(property->GetDeclaration()));
}

// 0 where there is none.
unsigned short NumberOf(const TCIMInstance& state, const char* name) {
    const TCIMProperty* const property = state.FindProperty(name);
    if (property == nullptr || property->GetType() != CIM::eCIMUint16) return 0;
    const TCIMValue value = property->GetValue();
    return value.IsNull() ? 0 : static_cast<unsigned short>(value);
}

void LeaveOut(TCIMInstance& state) {
    StoreOutcome(state, {eNotAsked, ReasonFor(EReason::eNotSelected)});
    Clear(state, "LogLines");
    Set(state, "InstanceCount", TCIMValue(0u));
}

bool IsStateMissing(const TCIMInstance& state) {
    const TStoredOutcome outcome = OutcomeOf(state);
    return IsMissing(outcome.state, outcome.code);
}

struct TClassCounts {
    size_t asked = 0;
    size_t missing = 0;
};

class TNarrowing {
public:
    TNarrowing(const TContainer& container, const TClassSelection& wanted) : fContainer(container), fWanted(wanted) {}

    void Narrow() {
        for (TCIMInstance* cls : StatesOf(fContainer, kCollectedClassClass)) NarrowClass(*cls);
        for (TCIMInstance* plugin : StatesOf(fContainer, kCollectedPluginClass)) NarrowPlugin(*plugin);
        const TReason left = IncompletePlugins();
        for (TCIMInstance* collection : StatesOf(fContainer, kCollectionClass))
            if (OutcomeOf(*collection).code == EReason::ePluginsIncomplete)
                StoreOutcome(*collection, {left ? ePartial : eComplete, left});
    }

private:
    TReason IncompletePlugins() const {
        const std::vector<TCIMInstance*> plugins = StatesOf(fContainer, kCollectedPluginClass);
        const auto missing = std::count_if(plugins.begin(), plugins.end(),
                                           [](const TCIMInstance* plugin) { return IsStateMissing(*plugin); });
        return PluginsIncomplete(static_cast<size_t>(missing), plugins.size());
    }

    void NarrowClass(TCIMInstance& cls) {
        if (fWanted.IsSchemaOnly() || !fWanted.Includes(TextOf(cls, "Name"))) return LeaveOut(cls);
        TClassCounts& counts = fCounts[TextOf(cls, "Plugin")];
        counts.asked += OutcomeOf(cls).state != eNotAsked;
        counts.missing += IsStateMissing(cls);
    }

    // One with a reason of its own keeps it.
    void NarrowPlugin(TCIMInstance& plugin) {
        const TClassCounts counts = fCounts[TextOf(plugin, "Name")];
        if (!OutcomeOf(plugin).text.empty() || counts.missing != 0) return;
        counts.asked == 0 ? LeaveOut(plugin) : StoreOutcome(plugin, TOutcome());
    }

    const TContainer& fContainer;
    const TClassSelection& fWanted;
    std::map<std::string, TClassCounts> fCounts;  // by the names of plugins
};

}  // namespace

std::vector<TCIMInstance*> StatesOf(const TContainer& container, const char* className) {
    const TCIMClass* const cls = container.FindClass(className);
    return cls == nullptr ? std::vector<TCIMInstance*>() : cls->EnumerateInstances(false);
}

TStoredOutcome OutcomeOf(const TCIMInstance& state) {
    const unsigned short number = NumberOf(state, "State");
    if (number < eComplete || number > eNotAsked) return {};
    return {static_cast<EState>(number), static_cast<EReason>(NumberOf(state, "ReasonCode")), TextOf(state, "Reason")};
}

std::string TextOf(const TCIMInstance& state, const char* name) {
    const TCIMProperty* const property = state.FindProperty(name);
    if (property == nullptr || property->GetType() != CIM::eCIMString) return "";
    const TCIMValue value = property->GetValue();
    return value.IsNull() ? "" : static_cast<std::string>(value);
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

void NarrowStates(const TContainer& container, const TClassSelection& wanted) {
    if (!wanted.IsAll()) TNarrowing(container, wanted).Narrow();
}
