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

// Four characters for the type and three for the model. A type begins with a digit; a product name does not.
bool IsMachineTypeModel(const std::string& text) {
    return text.size() == 7 && text[0] <= '9' && std::all_of(text.begin(), text.end(), IsLetterOrDigit);
}

// Some makers put it in the field of the product name, others in that of the SKU.
TFact<std::string> FindMachineTypeModel(const TSystemFacts& facts) {
    if (facts.productName && IsMachineTypeModel(*facts.productName)) return facts.productName;
    if (facts.skuNumber && !IsMachineTypeModel(*facts.skuNumber))
        return TFact<std::string>::Missing(EAbsence::eNotPresent, facts.skuNumber.source);
    return facts.skuNumber;
}

}  // namespace

void ReadDmi(const TSystemRoot& root, TSystemFacts& facts) {
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
