#ifndef KYR_BENCH_SCHEMA_H
#define KYR_BENCH_SCHEMA_H

#include <string>
#include <vector>

#include "kyr/TCIMValue.h"

class TCIMClass;
class TContainer;

struct TField {
    const char* name;
    TCIMValue value;
};

TCIMValue NullOf(TCIMValue::TCIMType::ECIMType type);
/// A NULL reference to the class, for a declaration.
TCIMValue NullReferenceTo(TCIMClass& cls);

/// Adds a class to the container; the first `keys` fields are its keys.
TCIMClass& DeclareClass(TContainer& container, const std::string& name, const std::vector<TField>& fields,
                        std::size_t keys, bool isAssociation = false);

#endif
