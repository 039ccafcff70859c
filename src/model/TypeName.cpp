#include "model/TypeName.h"

#include <cctype>
#include <ostream>
#include <string_view>

#include "kyr/TKYRException.h"

namespace {
using TType = TCIMValue::TCIMType;

struct TTypeName {
    std::string_view name;  // empty: the type has none
    bool isReadable;        // TCIMType can be made from the name
};

// Indexed by ECIMType.
constexpr TTypeName kTypeNames[] = {
    {"", false},      {"boolean", true}, {"uint8", true},    {"sint8", true},      {"uint16", true}, {"sint16", true},
    {"uint32", true}, {"sint32", true},  {"uint64", true},   {"sint64", true},     {"real32", true}, {"real64", true},
    {"char", false},  {"string", true},  {"datetime", true}, {"reference", false},
};
static_assert(sizeof kTypeNames / sizeof *kTypeNames == TType::eCIMArrayFlag, "one name for each type");

std::string_view FindTypeName(TType type) {
    const auto number = static_cast<unsigned int>(type) & ~static_cast<unsigned int>(TType::eCIMArrayFlag);
    return number < TType::eCIMArrayFlag ? kTypeNames[number].name : std::string_view();
}

/// eCIMNone if no type has this name.
TType::ECIMType FindType(const std::string& name) {
    int number = 0;
    for (const TTypeName& type : kTypeNames) {
        if (type.isReadable && name == type.name) return static_cast<TType::ECIMType>(number);
        ++number;
    }
    return TType::eCIMNone;
}
}  // namespace

TCIMValue::TCIMType::TCIMType(std::string name) : fType(FindType(name)) {
    if (fType != eCIMNone) return;
    for (char& c : name) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    fType = FindType(name);
    if (fType == eCIMNone) throw TKYRException(kyrStatusTypeMismatch);
}

std::string TCIMValue::TCIMType::ToString() const {
    const std::string_view name = FindTypeName(fType);
    if (name.empty()) throw TKYRException(kyrStatusTypeMismatch);
    return std::string(name);
}

std::ostream& operator<<(std::ostream& stream, const TCIMValue::TCIMType& type) { return stream << type.ToString(); }

std::string TypeNameForLog(TCIMValue::TCIMType type) { return std::string(FindTypeName(type)); }
