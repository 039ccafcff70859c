#ifndef KYR_HOST_DIFFERENCE_CLASSSTATES_H
#define KYR_HOST_DIFFERENCE_CLASSSTATES_H

#include <string>
#include <unordered_map>

#include "states/StateInstances.h"

class TCIMClass;
class TContainer;

/// How complete a class is in one collection.
struct TClassState {
    const TCIMClass* cls = nullptr;          ///< null: the collection does not know the class
    const TCIMInstance* instance = nullptr;  ///< the state instance; null: there is none
    TStoredOutcome outcome = {};
    std::string word = {};  ///< for the state; empty if the class is not known
    std::string code = {};  ///< the word for the code of the reason; empty if there is none

    bool IsKnown() const { return cls != nullptr; }
    /// Whether the collection says anything of the class.
    bool HasState() const { return instance != nullptr; }
    bool IsWhole() const { return IsKnown() && outcome.state == eComplete; }
    /// Whether all of its instances are there, though values of some may be missing.
    bool HasAllInstances() const {
        return IsWhole() || (IsKnown() && outcome.state == ePartial && outcome.code == EReason::eValuesUnreadable);
    }
    /// Whether its instances can be compared with others.
    bool IsComparable() const { return IsWhole() || (IsKnown() && outcome.state == ePartial); }
    /// Whether it was left out on purpose.
    bool IsLeftOut() const { return IsKnown() && !IsWhole() && !IsMissing(outcome.state, outcome.code); }
};

/// Whether both are incomplete in the same way. The sentences do not count if there are codes: they may be worded anew.
bool IsSameState(const TClassState& a, const TClassState& b);

/// The states of all classes in a collection. A collection that tells no states, as that of another program, is
/// complete; in one that tells some, a class without a state is partial. In a file that is not as it was saved no class
/// is complete.
class TClassStates {
public:
    explicit TClassStates(const TContainer& container);

    TClassState StateOf(const std::string& className) const;
    /// How the file is not as it was saved; empty if it is.
    const std::string& FileChange() const { return fFileChange.text; }

private:
    const TContainer& fContainer;
    std::unordered_map<std::string, const TCIMInstance*> fStates;
    bool fTellsStates;
    TStoredOutcome fFileChange;  // complete: there is none
};

#endif
