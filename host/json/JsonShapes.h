#ifndef KYR_HOST_JSON_JSONSHAPES_H
#define KYR_HOST_JSON_JSONSHAPES_H

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

/// A shape that is a whole document. The version changes whenever the shape does.
struct TJsonDocument {
    const char* name;
    const char* version;
};

constexpr TJsonDocument kJsonDocuments[] = {
    {"collection", "2"}, {"associations", "1"}, {"schema", "1"}, {"identity", "2"}};

/// The values of the CIM types; each may be null.
extern const std::vector<TJsonDefinition> kJsonTypes;
extern const std::vector<TJsonDefinition> kJsonDefinitions;
extern const std::vector<TJsonShape> kJsonShapes;

#endif
