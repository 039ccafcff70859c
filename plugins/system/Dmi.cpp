#include <algorithm>
#include <cstdio>
#include <ctime>

#include "Placeholder.h"
#include "SystemFacts.h"

namespace {

TFact<std::string> ReadField(const TSystemRoot& root, const char* name) {
    TFact<std::string> text = root.ReadText(std::string("/sys/class/dmi/id/") + name);
    if (text && IsPlaceholder(*text)) text.value.reset();
    return text;
}

std::optional<uint16_t> ParseChassisType(const std::string& text) { return ParseNumber<uint8_t>(text); }

// "MM/DD/YYYY"
std::optional<int64_t> ParseDate(const std::string& text) {
    int month = 0, day = 0, year = 0;
    if (std::sscanf(text.c_str(), "%2d/%2d/%4d", &month, &day, &year) != 3 || year < 1900) return {};
    struct tm date {};
    date.tm_year = year - 1900;
    date.tm_mon = month - 1;
    date.tm_mday = day;
    const time_t seconds = timegm(&date);
    // timegm turns an impossible date, such as February 30, into another one.
    if (date.tm_mon != month - 1 || date.tm_mday != day) return {};
    return seconds;
}

// Not isalnum, which depends on the host's locale.
bool IsLetterOrDigit(char c) { return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// Four characters for the type, which begins with a digit, and three for the model.
bool IsMachineTypeModel(std::string_view text) {
    return text[0] <= '9' && std::all_of(text.begin(), text.end(), IsLetterOrDigit);
}

// "Server -[4185C2X]-". Seven characters without the brackets may be anything: the library decides whether a product
// name is a machine type.
std::optional<std::string> FindBracketed(const std::string& text) {
    const size_t start = text.find("-[");
    if (start == std::string::npos || text.compare(std::min(start + 9, text.size()), 2, "]-") != 0) return {};
    const std::string inside = text.substr(start + 2, 7);
    return IsMachineTypeModel(inside) ? std::optional(inside) : std::nullopt;
}

// Some makers put it in the field of the product name, others in that of the SKU.
TFact<std::string> FindMachineTypeModel(const TSystemFacts& facts) {
    for (const TFact<std::string>& field : {facts.productName, facts.skuNumber})
        if (const TFact<std::string> found = field.Map(FindBracketed)) return found;
    const EAbsence absence = facts.skuNumber ? EAbsence::eNotPresent : facts.skuNumber.absence;
    return TFact<std::string>::Missing(absence, facts.skuNumber.source);
}

}  // namespace

void ReadDmi(const TSystemRoot& root, TSystemFacts& facts) {
    facts.dmiListing = ListingOf(root.ListKind("/sys/class/dmi/id", "/sys/class/dmi"));
    facts.manufacturer = ReadField(root, "sys_vendor");
    facts.productName = ReadField(root, "product_name");
    facts.productVersion = ReadField(root, "product_version");
    facts.productFamily = ReadField(root, "product_family");
    facts.skuNumber = ReadField(root, "product_sku");
    facts.serialNumber = ReadField(root, "product_serial");
    facts.uuid = ReadField(root, "product_uuid");
    facts.assetTag = ReadField(root, "chassis_asset_tag");
    facts.chassisType = ReadField(root, "chassis_type").Map(ParseChassisType);
    facts.boardVendor = ReadField(root, "board_vendor");
    facts.boardName = ReadField(root, "board_name");
    facts.boardVersion = ReadField(root, "board_version");
    facts.boardSerialNumber = ReadField(root, "board_serial");
    facts.boardAssetTag = ReadField(root, "board_asset_tag");
    facts.biosVendor = ReadField(root, "bios_vendor");
    facts.biosVersion = ReadField(root, "bios_version");
    facts.biosRelease = ReadField(root, "bios_release");
    facts.biosDate = ReadField(root, "bios_date").Map(ParseDate);
    facts.machineTypeModel = FindMachineTypeModel(facts);
}
