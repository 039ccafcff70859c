#include "difference/Scope.h"

#include <algorithm>
#include <utility>

#include "difference/Identity.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMReference.h"
#include "kyr/TContainer.h"
#include "kyr/TKYRException.h"
#include "model/ClassNames.h"
#include "states/HostIdentity.h"
#include "states/StateInstances.h"

namespace {

constexpr const char* kScopeKeys[] = {"SystemName", "CSName"};
constexpr const char* kMachineIdentities[] = {"MachineID", "UUID", "SerialNumber"};  // the strongest first
constexpr const char kToken = '\x01';  // in place of the name; no name begins with it

std::unordered_set<const TCIMClass*> FindSystemClasses(const TContainer& container) {
    const TCIMClass* const cls = FindClassNamed(container, "CIM_ComputerSystem");
    if (cls == nullptr) return {};
    const std::vector<TCIMClass*> classes = cls->EnumerateSubClasses(true);
    std::unordered_set<const TCIMClass*> all(classes.begin(), classes.end());
    all.insert(cls);
    return all;
}

// Null if there is none, or more than one.
const TCIMInstance* FindOnlyInstance(const std::unordered_set<const TCIMClass*>& classes) {
    const TCIMInstance* only = nullptr;
    for (const TCIMClass* cls : classes)
        for (const TCIMInstance* instance : cls->EnumerateInstances(false))
            if (std::exchange(only, instance) != nullptr) return nullptr;
    return only;
}

// For a collection without the machine itself: a few classes, saved alone.
std::string NameInKeys(const TContainer& container) {
    for (const TCIMClass* cls : container.GetRootClass()->EnumerateSubClasses(true)) {
        const std::vector<TCIMInstance*> instances = cls->EnumerateInstances(false);
        for (const char* key : kScopeKeys)
            if (!instances.empty())
                if (const std::string name = TextOf(*instances.front(), key); !name.empty()) return name;
    }
    return "";
}

std::string TextOfKey(const TCIMValue& value) {
    try {
        return value.ToString(10);
    } catch (const TKYRException&) {
        return "";
    }
}

}  // namespace

TScope::TScope(const TContainer& container) : fContainer(&container), fSystemClasses(FindSystemClasses(container)) {
    fSystem = FindOnlyInstance(fSystemClasses);
    fName = fSystem == nullptr ? NameInKeys(container) : TextOf(*fSystem, "Name");
}

std::string TScope::TextOfSystem(const char* property) const {
    if (fSystem != nullptr) return TextOf(*fSystem, property);
    for (const THostText& text : kHostTexts)
        if (fContainer != nullptr && IsSameName(text.systemProperty, property)) return HostTextOf(*fContainer, text);
    return "";
}

bool TScope::MaySayName(const TCIMClass& cls, const std::string& key) const {
    for (const char* scopeKey : kScopeKeys)
        if (IsSameName(key, scopeKey)) return true;
    return IsSameName(key, "Name") && fSystemClasses.count(&cls) != 0;
}

const std::vector<TScope::TKey>& TScope::KeysOf(const TCIMClass& cls) const {
    const auto [found, isNew] = fKeys.try_emplace(&cls);
    if (!isNew) return found->second;
    for (const std::string& name : cls.EnumerateKeyNames())
        found->second.push_back({TPropertyPlace(cls, name), MaySayName(cls, name)});
    std::sort(found->second.begin(), found->second.end(),
              [](const TKey& a, const TKey& b) { return a.property.Name() < b.property.Name(); });
    return found->second;
}

void TScope::Append(std::string& path, const std::string& key, bool maySayName, const TCIMValue& value) const {
    path.append(1, ',').append(key).append(1, '=');
    if (value.IsNull()) return;
    if (value.IsReference()) {
        path += PathOf(static_cast<TCIMReference>(value));
        return;
    }
    const std::string text = TextOfKey(value);
    if (maySayName && text == fName)
        path += kToken;
    else
        path.append(1, '"').append(text).append(1, '"');
}

std::string TScope::PathOf(const TCIMInstance& instance) const {
    const TCIMClass& cls = *instance.GetClass();
    std::string path = cls.GetName();
    const TProperties properties = instance.EnumerateProperties();
    for (const TKey& key : KeysOf(cls))
        if (const TCIMProperty* const property = key.property.Find(instance, properties))
            Append(path, key.property.Name(), key.maySayName, property->GetValue());
    return path;
}

std::string TScope::PathOf(const TCIMReference& reference) const {
    const TCIMClass& cls = *reference.GetClass();
    std::string path = cls.GetName();
    for (const auto& [name, value] : reference.EnumerateKeyBindings()) Append(path, name, MaySayName(cls, name), value);
    return path;
}

std::optional<bool> IsSameMachine(const TScope& before, const TScope& after) {
    std::optional<bool> strongest;
    bool anyDiffers = false;
    for (const char* property : kMachineIdentities) {
        const std::string old = before.TextOfSystem(property), present = after.TextOfSystem(property);
        if (IsPlaceholder(old) || IsPlaceholder(present)) continue;
        const bool isSame = IsSameName(old, present);
        if (!strongest) strongest = isSame;
        anyDiffers |= !isSame;
    }
    const bool isCopy = strongest == true && anyDiffers && before.Name() != after.Name();
    return isCopy ? false : strongest;
}
