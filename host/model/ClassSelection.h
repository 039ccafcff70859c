#ifndef KYR_HOST_MODEL_CLASSSELECTION_H
#define KYR_HOST_MODEL_CLASSSELECTION_H

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

/// The classes whose instances are wanted: all, those of some exact names, or none because only the schema is wanted.
class TClassSelection {
public:
    static TClassSelection All() { return {eAll, {}}; }
    static TClassSelection These(std::vector<std::string> names) { return {eThese, std::move(names)}; }
    static TClassSelection SchemaOnly() { return {eSchemaOnly, {}}; }

    bool IsAll() const { return fCase == eAll; }
    bool IsSchemaOnly() const { return fCase == eSchemaOnly; }
    /// Of a schema alone, every class is wanted.
    bool Includes(const std::string& name) const {
        return fCase != eThese || std::find(fNames.begin(), fNames.end(), name) != fNames.end();
    }
    /// The names as the core's query takes them: empty for all.
    const std::vector<std::string>& Names() const { return fNames; }

private:
    enum ECase { eAll, eThese, eSchemaOnly };

    TClassSelection(ECase which, std::vector<std::string> names) : fCase(which), fNames(std::move(names)) {}

    ECase fCase;
    std::vector<std::string> fNames;
};

#endif
