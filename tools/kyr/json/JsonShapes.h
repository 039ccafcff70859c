#ifndef JSONSHAPES_H
#define JSONSHAPES_H

#include <vector>

// What the documents that --json prints are made of, in the words of JSON Schema.

/// A definition that is written here in full.
struct TJsonDefinition {
    const char* name;
    const char* text;
};

/// An object that has exactly these members.
struct TJsonShape {
    struct TMember {
        const char* key;
        const char* definition;  ///< with "[]" behind it: an array of them
    };
    const char* name;
    std::vector<TMember> members;
    /// What decides how a part of it looks: the class that it names, or the type that it names for the member typed.
    enum ECases { eNone, eByClass, eByType } cases = eNone;
    const char* typed = nullptr;
};

/// Those shapes that are whole documents.
constexpr const char* kJsonDocuments[] = {"collection", "associations", "schema", "identity"};

/// The values of the CIM types; each may be null.
extern const std::vector<TJsonDefinition> kJsonTypes;
extern const std::vector<TJsonDefinition> kJsonDefinitions;
extern const std::vector<TJsonShape> kJsonShapes;

#endif
