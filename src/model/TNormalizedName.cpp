#include "model/TNormalizedName.h"

#include <ctype.h>

#include "platform/CoreLog.h"

namespace {

/// The tables of tolower, isalpha and isalnum, fetched once for a name. They are those of the host's locale.
struct TCharacterTables {
    const int* lower = *__ctype_tolower_loc();
    const unsigned short* classes = *__ctype_b_loc();
};

/// Writes the name in lower case; false if it is not a CIM name.
bool Normalize(const std::string& name, char* target) {
    const TCharacterTables tables;
    bool isValid = true;
    unsigned short allowed = _ISalpha;
    for (const char character : name) {
        const auto c = static_cast<unsigned char>(tables.lower[static_cast<unsigned char>(character)]);
        isValid = isValid && (c == '_' || (tables.classes[c] & allowed) != 0);
        allowed = _ISalnum;
        *target++ = static_cast<char>(c);
    }
    return isValid;
}

[[noreturn]] void RefuseName(const std::string& name) {
    LogAndThrow(kyrStatusInvalidCIMName, "CIM name '" + name + "' is invalid");
}

}  // namespace

TNormalizedName::TNormalizedName(const std::string& name) {
    char* target = fBuffer;
    if (name.size() > kShort) {
        fLong.resize(name.size());
        target = fLong.data();
    }
    if (!Normalize(name, target)) RefuseName(name);
    fView = std::string_view(target, name.size());
}
