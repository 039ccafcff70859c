#ifndef KYR_HOST_JSON_JSON_H
#define KYR_HOST_JSON_JSON_H

#include <string>
#include <vector>

#include "base/Output.h"
#include "model/Reason.h"

class TCIMClass;
struct TAssociationLink;
class TCIMInstance;
class TContainer;

/// One line of kyr identity.
struct TIdentityFact {
    std::string label;  ///< as printed for people
    std::string name;   ///< one word, for programs
    std::string value;  ///< empty if it is not known
    TReason reason;     ///< why it is not known
};

// What each command prints with --json. The output streams, and each document says its schema and version.

/// The instances of the classes, and how complete the collection is.
void WriteCollectionJson(const TContainer& container, const std::vector<TCIMClass*>& classes, bool stable,
                         TOutput& output);
/// What an instance is tied to.
void WriteAssociationsJson(TCIMInstance& instance, const std::vector<TAssociationLink>& links, TOutput& output);
/// All classes, or one.
void WriteSchemaJson(const TContainer& container, const TCIMClass* only, TOutput& output);
/// The container has the words for the codes of reasons.
void WriteIdentityJson(const std::vector<TIdentityFact>& facts, const TContainer& container, TOutput& output);

/// A JSON Schema of all of these documents, made from the classes of the container.
void WriteJsonSchema(const TContainer& container, TOutput& output);

#endif
