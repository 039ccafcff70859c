#include "difference/Difference.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "base/ExitStatus.h"
#include "difference/Pairing.h"
#include "kyr/TCIMClass.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "model/InstanceChoice.h"

namespace {

bool IsKnown(const std::string& name, const TContainer& container) {
    return !FindSpokenClass(container, name).classes.empty();
}

// The chosen classes of one collection. A name that only the other one knows is left out here; one that neither knows
// is refused.
std::vector<TCIMClass*> ChosenClasses(const TContainer& container, const TContainer& other,
                                      const TDifferenceOptions& options) {
    std::vector<std::string> names;
    for (const std::string& name : options.classes)
        if (IsKnown(name, container) || !IsKnown(name, other)) names.push_back(name);
    if (names.empty() && !options.classes.empty()) return {};
    std::vector<TCIMClass*> classes = TInstanceChoice(container, names, {}).Classes();
    const bool withAssociations = options.references || !options.classes.empty();
    const auto isLeftOut = [&](const TCIMClass* cls) { return cls->IsAssociation() && !withAssociations; };
    classes.erase(std::remove_if(classes.begin(), classes.end(), isLeftOut), classes.end());
    return classes;
}

// The names of the classes of both, first those of the later collection, in its order; the associations last, since
// they follow what they refer to.
std::vector<std::string> NamesOfBoth(const TContainer& before, const TContainer& after,
                                     const TDifferenceOptions& options) {
    std::vector<TCIMClass*> classes = ChosenClasses(after, before, options);
    std::unordered_set<std::string> known;
    for (const TCIMClass* cls : classes) known.insert(cls->GetName());
    for (TCIMClass* cls : ChosenClasses(before, after, options))
        if (known.count(cls->GetName()) == 0) classes.push_back(cls);
    std::stable_partition(classes.begin(), classes.end(), [](const TCIMClass* cls) { return !cls->IsAssociation(); });
    return NamesOf(classes);
}

bool HasInstances(const TClassState& state) { return state.IsKnown() && !state.cls->EnumerateInstances(false).empty(); }

// Abstract classes, of which nothing could be collected.
bool HoldsNothing(const TClassState& state) { return !state.HasState() && !HasInstances(state); }

class TComparison {
public:
    TComparison(const TContainer& before, const TContainer& after, const TDifferenceOptions& options)
        : fBefore(before), fAfter(after), fOptions(options) {
        fDifference.before = TScope(before);
        fDifference.after = TScope(after);
        fDifference.fileChangeBefore = fBefore.FileChange();
        fDifference.fileChangeAfter = fAfter.FileChange();
    }

    TDifference Compare(const std::vector<std::string>& names) {
        for (const std::string& name : names) CompareClass(name);
        return std::move(fDifference);
    }

private:
    void CompareClass(const std::string& name) {
        const TClassState before = fBefore.StateOf(name), after = fAfter.StateOf(name);
        if (HoldsNothing(before) && HoldsNothing(after)) return;
        TNotCompared limits{name, before, after};
        if (before.IsComparable() && after.IsComparable()) CompareInstances(limits);
        const bool isLimited = !before.IsWhole() || !after.IsWhole();
        if (isLimited || !limits.unknownBefore.empty() || !limits.unknownAfter.empty())
            fDifference.notCompared.push_back(std::move(limits));
    }

    void CompareInstances(TNotCompared& limits) {
        const TCIMClass& old = *limits.before.cls;
        const TCIMClass& present = *limits.after.cls;
        const TPairing pairing = Pair(old, present);
        const TValueComparison values(fDifference.before, old, fDifference.after, present, fOptions.all);
        TClassChanges changes{limits.name, {}};
        if (limits.before.HasAllInstances() && limits.after.HasAllInstances())
            AddUnpaired(pairing, values, changes.changes);
        else
            CountUnpaired(pairing, limits);
        for (const TPair& pair : pairing.pairs) ComparePair(pair, values, changes.changes);
        if (!changes.changes.empty()) fDifference.classes.push_back(std::move(changes));
        limits.commonCompared = true;
        limits.unknownBefore = values.OnlyAfter();
        limits.unknownAfter = values.OnlyBefore();
        ++fDifference.compared;
    }

    TPairing Pair(const TCIMClass& old, const TCIMClass& present) const {
        return present.IsAssociation() ? PairAssociations(fDifference.before, old, fDifference.after, present, fMoved)
                                       : PairInstances(fDifference.before, old, fDifference.after, present);
    }

    static void AddUnpaired(const TPairing& pairing, const TValueComparison& values, std::vector<TChange>& changes) {
        for (const TCIMInstance* instance : pairing.onlyBefore)
            changes.push_back({EChange::eRemoved, instance, nullptr, values.ValuesOf(*instance, true)});
        for (const TCIMInstance* instance : pairing.onlyAfter)
            changes.push_back({EChange::eAdded, nullptr, instance, values.ValuesOf(*instance, false)});
    }

    // Nobody knows whether they are there.
    static void CountUnpaired(const TPairing& pairing, TNotCompared& limits) {
        limits.onlyBefore = pairing.onlyBefore.size();
        limits.onlyAfter = pairing.onlyAfter.size();
    }

    void ComparePair(const TPair& pair, const TValueComparison& values, std::vector<TChange>& changes) {
        TValueDifferences differences = values.Compare(*pair.before, *pair.after);
        if (!pair.identity.empty()) {
            fMoved.emplace(fDifference.before.PathOf(*pair.before), fDifference.after.PathOf(*pair.after));
            changes.push_back(
                {EChange::eMoved, pair.before, pair.after, std::move(differences.changed), pair.identity});
        } else if (!differences.changed.empty()) {
            changes.push_back({EChange::eChanged, pair.before, pair.after, std::move(differences.changed)});
        }
        if (!differences.unreadable.empty())
            changes.push_back({EChange::eUnreadable, pair.before, pair.after, std::move(differences.unreadable)});
    }

    const TClassStates fBefore;
    const TClassStates fAfter;
    const TDifferenceOptions& fOptions;
    TDifference fDifference;
    TMovedPaths fMoved;
};

// A class that only the earlier collection does not know is new in the program, not in the machine.
bool IsNewlyMissing(const TNotCompared& limits) {
    const TClassState& before = limits.before;
    const TClassState& after = limits.after;
    if (!before.IsKnown() || before.IsLeftOut() || after.IsLeftOut()) return false;
    return !IsSameState(before, after) || limits.onlyBefore + limits.onlyAfter > 0;
}

}  // namespace

size_t TDifference::Count(EChange kind) const {
    size_t count = 0;
    for (const TClassChanges& cls : classes)
        count += static_cast<size_t>(std::count_if(cls.changes.begin(), cls.changes.end(),
                                                   [kind](const TChange& change) { return change.kind == kind; }));
    return count;
}

bool TDifference::IsAny() const {
    return !classes.empty() || std::any_of(notCompared.begin(), notCompared.end(), IsNewlyMissing);
}

TDifference FindDifference(const TContainer& before, const TContainer& after, const TDifferenceOptions& options) {
    return TComparison(before, after, options).Compare(NamesOfBoth(before, after, options));
}
