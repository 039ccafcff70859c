#include "Placeholder.h"

#include <algorithm>
#include <iterator>
#include <string_view>

namespace {

// In the form of Plain.
constexpr std::string_view kPlaceholders[] = {
    "tobefilledbyoem",
    "tobefilledbyodm",
    "tobefilled",
    "tbdbyoem",
    "tbdbyodm",
    "tbd",
    "oem",
    "oemdefaultstring",
    "default",
    "defaultstring",
    "notspecified",
    "notavailable",
    "notdefined",
    "notapplicable",
    "notpresent",
    "notprovided",
    "notset",
    "notsupport",
    "notsupported",
    "notinstalled",
    "nodimm",
    "nodpk",
    "noserialnumber",
    "na",
    "none",
    "null",
    "unknown",
    "unknown0",
    "undefined",
    "unspecified",
    "invalid",
    "badindex",
    "empty",
    "productname",
    "systemproductname",
    "systemmanufacturer",
    "systemversion",
    "systemserialnumber",
    "systemsku",
    "systemskunumber",
    "systemfamily",
    "systemname",
    "sku",
    "skunumber",
    "baseboardmanufacturer",
    "baseboardproductname",
    "baseboardversion",
    "baseboardserialnumber",
    "baseboardassettag",
    "chassisserialnumber",
    "chassismanufacture",
    "chassismanufacturer",
    "chassisversion",
    "chassisassettag",
    "noassettag",
    "noassetinformation",
    "asset1234567890",
    "type1family",
    "type1sku0",
    "type1productconfigid",
    "type2boardvendorname1",
    "type2boardproductname1",
    "type2boardversion",
    "type2boardserialnumber",
    "type2boardassettag",
    "9876543210",
    "ffffffffffffffffffffffffffffffff",
    "03000200040005000006000700080009",
    "00020003000400050006000700080009",
};

constexpr std::string_view kFields[] = {"manufacturer", "partnum",      "partnumber", "modulepartnumber",
                                        "sernum",       "serialnumber", "assettag",   "assettagnum"};

// Bytes above ASCII are parts of letters.
bool IsLetterOrDigit(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c & 0x80) != 0;
}

/// In lower case, without blanks and punctuation, in which the same filler differs from maker to maker.
std::string Plain(std::string_view text) {
    std::string plain;
    for (const char c : text)
        if (IsLetterOrDigit(c)) plain += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return plain;
}

bool IsOnly(std::string_view text, const char* characters) {
    return text.find_first_not_of(characters) == std::string_view::npos;
}

bool IsNext(char c, char next) { return next == c + 1 || (c == '9' && (next == '0' || next == 'a')); }

// "123456", "01234567890123456789AB". Shorter ones are numbers that an owner or a maker may have given.
bool Counts(std::string_view text) {
    if (text.size() < 6 || (text[0] != '0' && text[0] != '1')) return false;
    return std::adjacent_find(text.begin(), text.end(), [](char c, char next) { return !IsNext(c, next); }) ==
           text.end();
}

template <size_t N>
bool IsAmong(const std::string_view (&words)[N], std::string_view plain) {
    return std::find(std::begin(words), std::end(words), plain) != std::end(words);
}

// "Manufacturer00", or behind the name of a slot: "A1_AssetTagNum0", "P0-DIMMA1_AssetTag".
bool IsFieldName(const std::string& text) {
    const std::string name = Plain(text.substr(text.rfind('_') + 1));
    return IsAmong(kFields, std::string_view(name).substr(0, name.find_last_not_of("0123456789") + 1));
}

}  // namespace

// A single X may be a revision, and 0.0 and 1.2.3.4.5.6 may be versions.
bool IsPlaceholder(const std::string& text) {
    const std::string plain = Plain(text);
    if (plain.empty() || IsOnly(text, "0-") || (text.size() > 1 && IsOnly(plain, "x"))) return true;
    return (plain.size() == text.size() && Counts(plain)) || IsFieldName(text) || IsAmong(kPlaceholders, plain);
}
