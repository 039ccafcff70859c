#include "Placeholder.h"

#include <strings.h>

#include <algorithm>
#include <iterator>

namespace {

constexpr const char* kPlaceholders[] = {
    "To be filled by O.E.M.",
    "To be filled by OEM",
    "O.E.M.",
    "OEM",
    "Default string",
    "Not Specified",
    "Not Available",
    "Not Defined",
    "Not Applicable",
    "Not Present",
    "Not Provided",
    "Not Set",
    "NO DIMM",
    "N/A",
    "None",
    "Null",
    "Unknown",
    "Undefined",
    "Unspecified",
    "Invalid",
    "Empty",
    "[Empty]",
    "System Product Name",
    "System manufacturer",
    "System Version",
    "System Serial Number",
    "System SKU",
    "System Family",
    "System Name",
    "SKU",
    "Chassis Serial Number",
    "Chassis Manufacture",
    "Serial Number",
    "Asset Tag",
    "No Asset Tag",
    "No Asset Information",
    "Asset-1234567890",
    "Type1ProductConfigId",
    "0123456789",
    "1234567890",
    "123456789",
    "0",
    "00000000",
    "0000000000",
    "........",
    "xxxxxxxxxxx",
    "00000000-0000-0000-0000-000000000000",
    "ffffffff-ffff-ffff-ffff-ffffffffffff",
    "03000200-0400-0500-0006-000700080009",
    "00020003-0004-0005-0006-000700080009",
};

}  // namespace

bool IsPlaceholder(const std::string& text) {
    const auto isThis = [&text](const char* placeholder) { return strcasecmp(text.c_str(), placeholder) == 0; };
    return std::any_of(std::begin(kPlaceholders), std::end(kPlaceholders), isThis);
}
