#include "model/InstanceChoice.h"

#include <algorithm>

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "model/ObjectPath.h"
#include "model/Values.h"

namespace {

bool Meets(const TSpokenClass& condition, const TCIMInstance& instance) {
    if (condition.property.empty()) return true;
    const TCIMProperty* const property = instance.FindProperty(condition.property);
    return property != nullptr && !property->GetValue().IsNull() &&
           IsSameName(PlainText(property->GetValue()), condition.value);
}

bool IsOfNone(const TSpokenClass& spoken) {
    for (const TCIMClass* top : spoken.classes)
        for (const TCIMInstance* instance : top->EnumerateInstances(true))
            if (Meets(spoken, *instance)) return false;
    return true;
}

TCIMInstance& GetInstanceCalled(const TContainer& container, const std::string& name) {
    if (TCIMInstance* const spoken = FindSpokenInstance(container, name)) return *spoken;
    if (name.find('=') != std::string::npos) return GetInstanceNamed(container, name);
    RefuseUnknownName(container, name);
}

}  // namespace

TInstanceChoice::TInstanceChoice(const TContainer& schema, const std::vector<std::string>& classNames,
                                 const std::vector<std::string>& names)
    : fIsAll(classNames.empty() && names.empty()) {
    if (fIsAll) fClasses = SelectAllClasses(schema);
    fWhole.insert(fClasses.begin(), fClasses.end());
    for (const std::string& name : classNames) {
        const TSpokenClass spoken = FindSpokenClass(schema, name);
        if (spoken.classes.empty()) RefuseUnknownClass(schema, name);
        AddClass(name, spoken);
    }
    for (const std::string& name : names)
        if (const TSpokenClass spoken = FindSpokenClass(schema, name); !spoken.classes.empty())
            AddClass(name, spoken);
        else
            fNames.push_back(name);
    ArrangeClasses(fClasses);
}

std::vector<std::string> TInstanceChoice::ClassesToCollect() const {
    return fIsAll || !fNames.empty() ? std::vector<std::string>() : NamesOf(fClasses);
}

std::vector<std::string> TInstanceChoice::ClassesNamed() const {
    std::vector<std::string> named;
    for (const TAsked& asked : fAsked)
        for (const TCIMClass* cls : asked.spoken.classes) named.push_back(cls->GetName());
    return named;
}

void TInstanceChoice::FindInstances(const TContainer& container) {
    for (const std::string& name : fNames) AddInstance(GetInstanceCalled(container, name));
    for (const TSpokenClass& condition : fConditions) AddConditionally(condition);
    ArrangeClasses(fClasses);
}

std::vector<TCIMInstance*> TInstanceChoice::InstancesOf(const TCIMClass& cls) const {
    if (fWhole.count(&cls) != 0) return cls.EnumerateInstances(false);
    const auto some = fSome.find(&cls);
    return some == fSome.end() ? std::vector<TCIMInstance*>() : some->second;
}

std::vector<std::string> TInstanceChoice::NamesOfNone() const {
    std::vector<std::string> names;
    for (const TAsked& asked : fAsked)
        if (IsOfNone(asked.spoken)) names.push_back(asked.name);
    return names;
}

void TInstanceChoice::AddClass(const std::string& name, const TSpokenClass& spoken) {
    fAsked.push_back({name, spoken});
    if (!spoken.property.empty()) fConditions.push_back(spoken);
    for (TCIMClass* top : spoken.classes)
        for (TCIMClass* cls : WithSubClasses(*top)) {
            fClasses.push_back(cls);
            if (spoken.property.empty()) fWhole.insert(cls);
        }
}

void TInstanceChoice::AddConditionally(const TSpokenClass& condition) {
    for (TCIMClass* top : condition.classes)
        for (TCIMInstance* instance : top->EnumerateInstances(true))
            if (Meets(condition, *instance)) AddInstance(*instance);
}

void TInstanceChoice::AddInstance(TCIMInstance& instance) {
    TCIMClass* const cls = instance.GetClass();
    fClasses.push_back(cls);
    std::vector<TCIMInstance*>& some = fSome[cls];
    if (std::find(some.begin(), some.end(), &instance) == some.end()) some.push_back(&instance);
}
