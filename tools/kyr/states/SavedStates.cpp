#include "states/SavedStates.h"

#include <algorithm>
#include <map>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"
#include "states/Judgement.h"
#include "states/State.h"

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

void SetVerdict(TCIMInstance& state, const TVerdict& verdict) {
    Set(state, "State", TCIMValue(static_cast<unsigned short>(verdict.state)));
    if (verdict.reason.empty())
        Clear(state, "Reason");
    else
        Set(state, "Reason", TCIMValue(verdict.reason));
}

void LeaveOut(TCIMInstance& state) {
    SetVerdict(state, {eNotAsked, kReasonUnwanted});
    Clear(state, "LogLines");
    Set(state, "InstanceCount", TCIMValue(0u));
}

struct TTally {
    size_t asked = 0;
    size_t missing = 0;
};

class TNarrowing {
public:
    TNarrowing(const TContainer& container, const std::vector<std::string>* wanted)
        : fContainer(container), fWanted(wanted) {}

    void Narrow() {
        const std::string reason = PluginsReason();
        for (TCIMInstance* cls : StatesOf(fContainer, kCollectedClassClass)) NarrowClass(*cls);
        for (TCIMInstance* plugin : StatesOf(fContainer, kCollectedPluginClass)) NarrowPlugin(*plugin);
        const std::string left = PluginsReason();
        for (TCIMInstance* collection : StatesOf(fContainer, kCollectionClass))
            if (VerdictOf(*collection).state == ePartial && TextOf(*collection, "Reason") == reason)
                SetVerdict(*collection, {left.empty() ? eComplete : ePartial, left});
    }

private:
    std::string PluginsReason() const {
        const std::vector<TCIMInstance*> plugins = StatesOf(fContainer, kCollectedPluginClass);
        const auto missing = std::count_if(plugins.begin(), plugins.end(),
                                           [](const TCIMInstance* plugin) { return IsMissing(VerdictOf(*plugin)); });
        return PluginsMissing(static_cast<size_t>(missing), plugins.size());
    }

    void NarrowClass(TCIMInstance& cls) {
        const std::string name = TextOf(cls, "Name");
        if (fWanted == nullptr || std::find(fWanted->begin(), fWanted->end(), name) == fWanted->end())
            return LeaveOut(cls);
        const TVerdict verdict = VerdictOf(cls);
        TTally& tally = fTallies[TextOf(cls, "Plugin")];
        tally.asked += verdict.state != eNotAsked;
        tally.missing += IsMissing(verdict);
    }

    // One with a reason of its own keeps it.
    void NarrowPlugin(TCIMInstance& plugin) {
        const TTally tally = fTallies[TextOf(plugin, "Name")];
        if (!VerdictOf(plugin).reason.empty() || tally.missing != 0) return;
        tally.asked == 0 ? LeaveOut(plugin) : SetVerdict(plugin, TVerdict());
    }

    const TContainer& fContainer;
    const std::vector<std::string>* const fWanted;
    std::map<std::string, TTally> fTallies;  // by the names of plugins
};

}  // namespace

std::vector<TCIMInstance*> StatesOf(const TContainer& container, const char* className) {
    const TCIMClass* const cls = container.FindClass(className);
    return cls == nullptr ? std::vector<TCIMInstance*>() : cls->EnumerateInstances(false);
}

TVerdict VerdictOf(const TCIMInstance& state) {
    const TCIMProperty* const property = state.FindProperty("State");
    if (property == nullptr || property->GetType() != CIM::eCIMUint16) return {};
    const TCIMValue value = property->GetValue();
    const unsigned short number = value.IsNull() ? 0 : static_cast<unsigned short>(value);
    if (number < eComplete || number > eNotAsked) return {};
    return {static_cast<EState>(number), TextOf(state, "Reason")};
}

std::string TextOf(const TCIMInstance& state, const char* name) {
    const TCIMProperty* const property = state.FindProperty(name);
    if (property == nullptr || property->GetType() != CIM::eCIMString) return "";
    const TCIMValue value = property->GetValue();
    return value.IsNull() ? "" : static_cast<std::string>(value);
}

void NarrowStates(const TContainer& container, const std::vector<std::string>* classNames) {
    if (classNames == nullptr || !classNames->empty()) TNarrowing(container, classNames).Narrow();
}
