#ifndef JSON_H
#define JSON_H

#include <string>
#include <vector>

#include "command/Options.h"
#include "text/Output.h"

class TCIMClass;
class TCIMInstance;
class TContainer;

/// One line of kyr identity.
struct TIdentityFact {
    std::string label;   ///< as printed for people
    std::string name;    ///< one word, for programs
    std::string value;   ///< empty if it is not known
    std::string reason;  ///< why it is not known
};

// What each command prints with --json. The output streams, and each document says its schema and version.

/// The instances of the classes, and how complete the collection is.
void WriteCollectionJson(const TContainer& container, const std::vector<TCIMClass*>& classes, const TOptions& options,
                         TOutput& output);
/// What an instance is tied to.
void WriteTiesJson(TCIMInstance& instance, const TOptions& options, TOutput& output);
/// All classes, or one.
void WriteSchemaJson(const TContainer& container, const TCIMClass* only, TOutput& output);
void WriteIdentityJson(const std::vector<TIdentityFact>& facts, TOutput& output);

/// A JSON Schema of all of these documents, made from the classes of the container.
void WriteJsonSchema(const TContainer& container, TOutput& output);

#endif
