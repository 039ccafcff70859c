#ifndef KYR_HOST_JSON_JSON_H
#define KYR_HOST_JSON_JSON_H

#include <string>
#include <vector>

#include "base/Output.h"
#include "model/Reason.h"

class TCIMClass;
class TFindings;
struct TAssociationLink;
struct TDifference;
class TCIMInstance;
class TContainer;
class TInstanceChoice;

/// One fact that kyr identity prints.
struct TIdentityFact {
    std::string label;  ///< as printed for people
    std::string name;   ///< the key in JSON
    std::string value;  ///< empty if it is not known
    TReason reason;     ///< why it is not known
};

// What each command prints with --json. Every document is written as it is made, without a copy in memory, and starts
// with the name and version of its schema.

/// The chosen instances, and how complete the collection is.
void WriteCollectionJson(const TContainer& container, const TInstanceChoice& choice, bool stable, TOutput& output);
/// The links of an instance. "ties" is their key in JSON, which programs rely on.
void WriteAssociationsJson(TCIMInstance& instance, const std::vector<TAssociationLink>& links, TOutput& output);
/// All classes, or with only not null that one.
void WriteSchemaJson(const TContainer& container, const TCIMClass* only, TOutput& output);
/// The facts. The words for the codes of reasons are taken from the container's schema.
void WriteIdentityJson(const std::vector<TIdentityFact>& facts, const TContainer& container, TOutput& output);
/// What differs between two collections. Words for states and values are those of the collection that they are from.
void WriteDifferenceJson(const TDifference& difference, const TContainer& before, const TContainer& after,
                         TOutput& output);

/// What kyr check found.
void WriteCheckJson(const TFindings& findings, TOutput& output);
/// The same in the format for the results of checks that other programs read, SARIF 2.1.0.
void WriteSarif(const TFindings& findings, TOutput& output);

/// A JSON Schema of all of these documents but SARIF. The instances of each class in the container have a definition of
/// their own.
void WriteJsonSchema(const TContainer& container, TOutput& output);

#endif
