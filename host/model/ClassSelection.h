#ifndef KYR_HOST_MODEL_CLASSSELECTION_H
#define KYR_HOST_MODEL_CLASSSELECTION_H

#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

/// The classes of which instances are wanted: all, those with the given names (not their subclasses), or none, because
/// only the schema is wanted.
class TClassSelection {
public:
    static TClassSelection All() { return {eAll, {}}; }
    static TClassSelection These(std::vector<std::string> names) { return {eThese, std::move(names)}; }
    static TClassSelection SchemaOnly() { return {eSchemaOnly, {}}; }

    /// The same with one class more.
    TClassSelection With(const std::string& name) const {
        TClassSelection more = *this;
        if (Includes(name)) return more;
        more.fNames.push_back(name);
        more.fIndex.insert(name);
        return more;
    }
    /// The same, of which the user has named these classes.
    TClassSelection Naming(const std::vector<std::string>& names) const {
        TClassSelection naming = *this;
        naming.fNamed.insert(names.begin(), names.end());
        return naming;
    }

    bool IsAll() const { return fCase == eAll; }
    bool IsSchemaOnly() const { return fCase == eSchemaOnly; }
    /// Whether the class is wanted. Where only the schema is wanted, it is wanted of every class.
    bool Includes(const std::string& name) const { return fCase != eThese || fIndex.count(name) != 0; }
    /// Whether the user has named the class, and not only all classes or one above it.
    bool IsNamed(const std::string& name) const { return fNamed.count(name) != 0; }
    /// The names in the form that the core's plugin manager takes: empty for all.
    const std::vector<std::string>& Names() const { return fNames; }

private:
    enum ECase { eAll, eThese, eSchemaOnly };

    TClassSelection(ECase which, std::vector<std::string> names)
        : fCase(which), fNames(std::move(names)), fIndex(fNames.begin(), fNames.end()) {}

    ECase fCase;
    std::vector<std::string> fNames;
    std::unordered_set<std::string> fIndex;  // of those names
    std::unordered_set<std::string> fNamed;
};

#endif
