#ifndef KYR_HOST_JSON_JSONSHAPES_H
#define KYR_HOST_JSON_JSONSHAPES_H

#include <vector>

// The structure of the documents that --json prints, from which their JSON Schema is made.

/// A definition whose JSON Schema is given as text.
struct TJsonDefinition {
    const char* name;
    const char* text;
};

/// The definition of an object with exactly these members.
struct TJsonShape {
    struct TMember {
        const char* key;
        const char* definition;  ///< the definition of its value; "name[]" is an array of that
    };
    const char* name;
    std::vector<TMember> members;
    /// Whether the schema of a member depends on another member: with eByClass, that of "instances" on the class in
    /// "name"; with eByType, that of the member typed on the CIM type in "type".
    enum ECases { eNone, eByClass, eByType } cases = eNone;
    const char* typed = nullptr;
};

/// A shape that is a whole document. Its version must change whenever the shape does.
struct TJsonDocument {
    const char* name;
    const char* version;
};

constexpr TJsonDocument kJsonDocuments[] = {{"collection", "3"}, {"associations", "1"}, {"schema", "1"},
                                            {"identity", "2"},   {"difference", "1"},   {"check", "1"}};

/// The values of the CIM types. Each may be null.
extern const std::vector<TJsonDefinition> kJsonTypes;
extern const std::vector<TJsonDefinition> kJsonDefinitions;
extern const std::vector<TJsonShape> kJsonShapes;

#endif
