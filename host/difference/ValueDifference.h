#ifndef KYR_HOST_DIFFERENCE_VALUEDIFFERENCE_H
#define KYR_HOST_DIFFERENCE_VALUEDIFFERENCE_H

#include <string>
#include <vector>

#include "difference/PropertyPlace.h"
#include "difference/Scope.h"

class TCIMClass;
class TCIMInstance;
class TCIMProperty;

/// A property that differs. A null pointer stands for an instance that is not there.
struct TPropertyDifference {
    const TCIMProperty* before;
    const TCIMProperty* after;
    std::string reason = {};  ///< why there is no value now, as the collection says it; mostly empty
};

/// What differs between two instances of one thing.
struct TValueDifferences {
    std::vector<TPropertyDifference> changed;
    std::vector<TPropertyDifference> unreadable;  ///< the value was read before, and cannot be read now
};

/// The elements of two arrays that only one of them has, as often as it has them more often than the other.
struct TElementDifference {
    std::vector<std::string> removed;
    std::vector<std::string> added;
};
TElementDifference CompareElements(const std::vector<std::string>& before, const std::vector<std::string>& after);

/// Compares the properties that a class has in two collections, by type and value; texts in an array may stand in any
/// order. Where a collection says that a value could not be read, nothing has changed. Keys are not compared, save the
/// name of the machine itself; what changes by itself and what describes other properties only with all.
class TValueComparison {
public:
    TValueComparison(const TScope& before, const TCIMClass& old, const TScope& after, const TCIMClass& present,
                     bool all);

    TValueDifferences Compare(const TCIMInstance& old, const TCIMInstance& present) const;
    /// The values of a thing that was added or removed, as differences from nothing.
    std::vector<TPropertyDifference> ValuesOf(const TCIMInstance& instance, bool isRemoved) const;
    /// The properties that only one of the collections declares.
    const std::vector<std::string>& OnlyBefore() const { return fOnlyBefore; }
    const std::vector<std::string>& OnlyAfter() const { return fOnlyAfter; }

private:
    struct TCompared {
        TPropertyPlace before;
        TPropertyPlace after;
        bool isDeclaredAlike;  // with the same type and unit
    };

    void AddCompared(const TCIMClass& old, const TCIMPropertyDecl& before, const TCIMClass& present,
                     const TCIMPropertyDecl& after);
    bool IsSame(const TCIMProperty& old, const TCIMProperty& present, bool isDeclaredAlike) const;
    bool AreOwnNames(const TCIMProperty& old, const TCIMProperty& present) const;
    void CompareName(const TCIMInstance& old, const TCIMInstance& present, TValueDifferences& differences) const;

    const TScope& fBefore;
    const TScope& fAfter;
    std::vector<TCompared> fCompared;
    std::vector<std::string> fOnlyBefore;
    std::vector<std::string> fOnlyAfter;
};

#endif
