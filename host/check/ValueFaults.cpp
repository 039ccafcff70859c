#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <cstdlib>

#include "check/DocumentRules.h"

namespace {

struct TIntegerType {
    const char* name;
    uint64_t lowest;  // how far it goes below 0
    uint64_t highest;
};

constexpr TIntegerType kIntegers[] = {
    {"uint8", 0, UINT8_MAX},   {"sint8", uint64_t{1} << 7, INT8_MAX},
    {"uint16", 0, UINT16_MAX}, {"sint16", uint64_t{1} << 15, INT16_MAX},
    {"uint32", 0, UINT32_MAX}, {"sint32", uint64_t{1} << 31, INT32_MAX},
    {"uint64", 0, UINT64_MAX}, {"sint64", uint64_t{1} << 63, INT64_MAX},
};

// The core takes "0x10" as 16 and "010" as 8.
int BaseOf(std::string& digits) {
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        digits.erase(0, 2);
        return 16;
    }
    return digits.size() > 1 && digits[0] == '0' ? 8 : 10;
}

std::string FaultOfInteger(const TIntegerType& type, const std::string& text) {
    const bool isNegative = !text.empty() && text[0] == '-';
    std::string digits = text.substr(isNegative || (!text.empty() && text[0] == '+') ? 1 : 0);
    const int base = BaseOf(digits);
    uint64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, base);
    if (digits.empty() || end != digits.data() + digits.size() || error == std::errc::invalid_argument)
        return "is no whole number";
    const uint64_t limit = isNegative ? type.lowest : type.highest;
    if (error == std::errc() && number <= limit) return "";
    return isNegative ? "is below " + std::string(type.lowest > 0 ? "-" : "") + std::to_string(type.lowest)
                      : "is above " + std::to_string(type.highest);
}

// The core takes "nan", "inf" and "0x10" as 0, and what is too large as the largest number.
bool IsReal(const std::string& text, double highest) {
    char* end = nullptr;
    const double number = std::strtod(text.c_str(), &end);
    return !text.empty() && *end == '\0' && text.find_first_not_of("+-.0123456789eE") == std::string::npos &&
           std::abs(number) <= highest;
}

// Such as 20261121105553.025000+060, or 00000001020304.000000:000 for a length of time.
bool IsDateTime(const std::string& text) {
    constexpr std::string_view kForm = "00000000000000.000000+000";
    const auto fits = [](char c, char form) {
        if (form == '.') return c == '.';
        if (form == '+') return c == '+' || c == '-' || c == ':';
        return (c >= '0' && c <= '9') || c == '*';
    };
    return text.size() == kForm.size() && std::equal(text.begin(), text.end(), kForm.begin(), fits);
}

}  // namespace

std::string FaultOfValue(const std::string& type, const std::string& text) {
    const std::string value = Trimmed(text);
    for (const TIntegerType& integer : kIntegers)
        if (type == integer.name) return FaultOfInteger(integer, value);
    if (type == "boolean" && value != "true" && value != "false") return "is neither true nor false";
    if ((type == "real32" && !IsReal(value, FLT_MAX)) || (type == "real64" && !IsReal(value, DBL_MAX)))
        return "is no number of that type";
    if (type == "datetime" && !IsDateTime(value)) return "is no date and time as in 20261121105553.025000+060";
    return "";
}
