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

/// The first and last characters of the readable names give each of them a slot of its own.
constexpr std::size_t SlotOf(std::string_view name) {
    return (4u * static_cast<unsigned char>(name.front()) + static_cast<unsigned char>(name.back())) % 32;
}

struct TReadableTypes {
    unsigned char slots[32] = {};

    constexpr TReadableTypes() {
        unsigned char number = 0;
        for (const TTypeName& type : kTypeNames) {
            if (type.isReadable) slots[SlotOf(type.name)] = number;
            ++number;
        }
    }
};

constexpr TReadableTypes kReadableTypes;

/// eCIMNone if no readable type has this name.
TType::ECIMType FindType(std::string_view name) {
    if (name.empty()) return TType::eCIMNone;
    const unsigned char number = kReadableTypes.slots[SlotOf(name)];
    return name == kTypeNames[number].name ? static_cast<TType::ECIMType>(number) : TType::eCIMNone;
}
}  // namespace

TCIMValue::TCIMType::TCIMType(std::string name) : fType(TypeOfName(name)) {}

std::string TCIMValue::TCIMType::ToString() const {
    const std::string_view name = FindTypeName(fType);
    if (name.empty()) throw TKYRException(kyrStatusTypeMismatch);
    return std::string(name);
}

std::ostream& operator<<(std::ostream& stream, const TCIMValue::TCIMType& type) { return stream << type.ToString(); }

std::string TypeNameForLog(TCIMValue::TCIMType type) { return std::string(FindTypeName(type)); }

TCIMValue::TCIMType::ECIMType TypeOfName(const std::string& name) {
    TType::ECIMType type = FindType(name);
    if (type != TType::eCIMNone) return type;
    std::string lowered = name;
    for (char& c : lowered) c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    type = FindType(lowered);
    if (type == TType::eCIMNone) throw TKYRException(kyrStatusTypeMismatch);
    return type;
}
