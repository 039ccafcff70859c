#ifndef KYR_HOST_DIFFERENCE_DIFFERENCE_H
#define KYR_HOST_DIFFERENCE_DIFFERENCE_H

#include <cstddef>
#include <string>
#include <vector>

#include "difference/ClassStates.h"
#include "difference/Scope.h"
#include "difference/ValueDifference.h"

class TCIMInstance;
class TContainer;

/// What became of one thing between two collections. Unreadable: values that were read before and cannot be read now.
enum class EChange { eRemoved, eAdded, eMoved, eChanged, eUnreadable };
constexpr size_t kChanges = 5;

struct TChange {
    EChange kind;
    const TCIMInstance* before;  ///< null: it was added
    const TCIMInstance* after;   ///< null: it was removed
    std::vector<TPropertyDifference> properties;
    std::string identity = {};  ///< of a thing that was moved: the value by which it was found
};

struct TClassChanges {
    std::string name;
    std::vector<TChange> changes;
};

/// A class of which not everything could be compared.
struct TNotCompared {
    std::string name;
    TClassState before;
    TClassState after;
    bool commonCompared = false;  ///< the instances that both collections hold were compared
    size_t onlyBefore = 0;        ///< instances that only one of them holds, which are neither removed nor added
    size_t onlyAfter = 0;
    std::vector<std::string> unknownBefore = {};  ///< properties that the class does not have there
    std::vector<std::string> unknownAfter = {};
};

/// What differs between two collections. It points into both containers.
struct TDifference {
    TScope before;
    TScope after;
    std::string fileChangeBefore = {};  ///< how the file is not as it was saved; empty if it is
    std::string fileChangeAfter = {};
    std::vector<TClassChanges> classes;  ///< those with changes
    std::vector<TNotCompared> notCompared;
    size_t compared = 0;  ///< how many classes were compared, fully or in part

    size_t Count(EChange kind) const;
    /// Whether there is any change, or a class that cannot be compared although it is not missing on both sides for the
    /// same reason.
    bool IsAny() const;
};

struct TDifferenceOptions {
    std::vector<std::string> classes = {};  ///< these and their subclasses; empty: all
    bool references = false;                ///< associations too; those that are named in classes are always compared
    bool all = false;                       ///< properties that change by themselves and companions too
};

/// Compares two collections. Raises TCommandError for a class that neither of them knows.
TDifference FindDifference(const TContainer& before, const TContainer& after, const TDifferenceOptions& options);

#endif
