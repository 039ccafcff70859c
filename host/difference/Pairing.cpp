#include "difference/Pairing.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "difference/Identity.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"

namespace {

using TInstances = std::vector<const TCIMInstance*>;

TInstances InstancesOf(const TCIMClass& cls) {
    const std::vector<TCIMInstance*> instances = cls.EnumerateInstances(false);
    return {instances.begin(), instances.end()};
}

/// Instances by their path, to be taken out one by one. Those of one path are taken in their order.
class TPathIndex {
public:
    template <typename TPathOf>
    TPathIndex(const TInstances& instances, TPathOf pathOf) : fInstances(instances), fNext(instances.size(), kNone) {
        fFirst.reserve(instances.size());
        for (size_t i = instances.size(); i-- > 0;) {
            const auto [first, isNew] = fFirst.emplace(pathOf(*instances[i]), i);
            if (!isNew) fNext[i] = std::exchange(first->second, i);
        }
    }

    // Null if there is none of that path left, or the next one does not suit.
    template <typename TSuits>
    const TCIMInstance* Take(const std::string& path, TSuits suits) {
        const auto found = fFirst.find(path);
        if (found == fFirst.end() || found->second == kNone) return nullptr;
        const TCIMInstance* const instance = fInstances[found->second];
        if (!suits(*instance)) return nullptr;
        found->second = fNext[found->second];
        return instance;
    }

private:
    static constexpr size_t kNone = static_cast<size_t>(-1);

    const TInstances& fInstances;
    std::unordered_map<std::string, size_t> fFirst;
    std::vector<size_t> fNext;  // of the same path
};

template <typename TPathBefore, typename TPathAfter, typename TSuits>
TPairing PairByPath(const TCIMClass& old, TPathBefore pathBefore, const TCIMClass& present, TPathAfter pathAfter,
                    TSuits suits) {
    TPairing pairing;
    const TInstances instances = InstancesOf(present);
    TPathIndex index(instances, pathAfter);
    std::unordered_set<const TCIMInstance*> taken;
    for (const TCIMInstance* before : InstancesOf(old)) {
        const auto suitsThis = [&](const TCIMInstance& after) { return suits(*before, after); };
        const TCIMInstance* const after = index.Take(pathBefore(*before), suitsThis);
        if (after == nullptr) {
            pairing.onlyBefore.push_back(before);
            continue;
        }
        pairing.pairs.push_back({before, after});
        taken.insert(after);
    }
    std::copy_if(instances.begin(), instances.end(), std::back_inserter(pairing.onlyAfter),
                 [&taken](const TCIMInstance* instance) { return taken.count(instance) == 0; });
    return pairing;
}

/// Pairs what is left by identities.
class TMoves {
public:
    TMoves(const TIdentities& before, const TIdentities& after, TPairing& pairing)
        : fBefore(before),
          fAfter(after),
          fPairing(pairing),
          fLeft(pairing.onlyAfter.begin(), pairing.onlyAfter.end()) {}

    void Pair() {
        TInstances rest;
        for (const TCIMInstance* instance : fPairing.onlyBefore)
            if (!PairOne(*instance)) rest.push_back(instance);
        fPairing.onlyBefore = std::move(rest);
        const auto isTaken = [this](const TCIMInstance* instance) { return fLeft.count(instance) == 0; };
        TInstances& after = fPairing.onlyAfter;
        after.erase(std::remove_if(after.begin(), after.end(), isTaken), after.end());
    }

private:
    bool PairOne(const TCIMInstance& instance) {
        for (const std::string& property : fBefore.Properties()) {
            std::string value = fBefore.ValueOf(instance, property);
            const TCIMInstance* const after = value.empty() ? nullptr : fAfter.Find(property, value);
            if (after == nullptr || fLeft.count(after) == 0 || AreDifferentThings(fBefore, instance, fAfter, *after))
                continue;
            fLeft.erase(after);
            fPairing.pairs.push_back({&instance, after, std::move(value)});
            return true;
        }
        return false;
    }

    const TIdentities& fBefore;
    const TIdentities& fAfter;
    TPairing& fPairing;
    std::unordered_set<const TCIMInstance*> fLeft;
};

// The path of an association whose ends are where they are now.
std::string PresentPath(const TScope& scope, const TCIMInstance& association, const TMovedPaths& moved) {
    std::string path;
    for (const TCIMProperty* property : association.EnumerateProperties()) {
        const TCIMValue value = property->GetValue();
        if (!value.IsReference() || value.IsNull()) continue;
        const std::string end = scope.PathOf(static_cast<TCIMReference>(value));
        const auto found = moved.find(end);
        path.append(property->GetName()).append(1, '=').append(found == moved.end() ? end : found->second);
    }
    return path;
}

}  // namespace

TPairing PairInstances(const TScope& before, const TCIMClass& old, const TScope& after, const TCIMClass& present) {
    const std::vector<std::string> properties = IdentityPropertiesOf(old, present);
    const TIdentities was(old, properties), is(present, properties);
    TPairing pairing = PairByPath(
        old, [&](const TCIMInstance& instance) { return before.PathOf(instance); }, present,
        [&](const TCIMInstance& instance) { return after.PathOf(instance); },
        [&](const TCIMInstance& one, const TCIMInstance& other) {
            const bool areMachines = &one == before.System() && &other == after.System();
            return areMachines ? IsSameMachine(before, after) != false : !AreDifferentThings(was, one, is, other);
        });
    if (!properties.empty()) TMoves(was, is, pairing).Pair();
    return pairing;
}

TPairing PairAssociations(const TScope& before, const TCIMClass& old, const TScope& after, const TCIMClass& present,
                          const TMovedPaths& moved) {
    return PairByPath(
        old, [&](const TCIMInstance& instance) { return PresentPath(before, instance, moved); }, present,
        [&](const TCIMInstance& instance) { return PresentPath(after, instance, {}); },
        [](const TCIMInstance&, const TCIMInstance&) { return true; });
}
