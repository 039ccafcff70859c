#ifndef KYR_HOST_DIFFERENCE_SCOPE_H
#define KYR_HOST_DIFFERENCE_SCOPE_H

#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "difference/PropertyPlace.h"

class TCIMReference;
class TCIMValue;
class TContainer;

/// The machine that a collection is of. Its name is a key of most instances: to find the instances of a renamed machine
/// again, or those of another one, the name is the same word in the keys of both collections.
class TScope {
public:
    TScope() = default;
    explicit TScope(const TContainer& container);

    /// Empty if the collection tells of no machine, or of several.
    const std::string& Name() const { return fName; }
    /// The instance of the machine itself; null if the collection holds none, or several.
    const TCIMInstance* System() const { return fSystem; }
    /// The value of a string property of the machine itself, or that which the collection tells of its host; empty if
    /// there is none.
    std::string TextOfSystem(const char* property) const;
    /// The object path with that word in place of the machine's name.
    std::string PathOf(const TCIMInstance& instance) const;
    std::string PathOf(const TCIMReference& reference) const;

private:
    struct TKey {
        TPropertyPlace property;
        bool maySayName;  // whether the value is the name of a machine
    };

    const std::vector<TKey>& KeysOf(const TCIMClass& cls) const;
    bool MaySayName(const TCIMClass& cls, const std::string& key) const;
    void Append(std::string& path, const std::string& key, bool maySayName, const TCIMValue& value) const;

    const TContainer* fContainer = nullptr;
    std::string fName;
    const TCIMInstance* fSystem = nullptr;
    std::unordered_set<const TCIMClass*> fSystemClasses;
    mutable std::unordered_map<const TCIMClass*, std::vector<TKey>> fKeys;  // sorted by name
};

/// Whether both are of the same machine, by the strongest of machine ID, UUID and serial number that both have; nothing
/// if both have none. A copied system keeps its machine ID: with another name and another UUID or serial number it is
/// another machine, while one with the same name got another mainboard.
std::optional<bool> IsSameMachine(const TScope& before, const TScope& after);

#endif
