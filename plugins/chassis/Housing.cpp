// The housing of the computer, and its power supplies.
#include "Placeholder.h"
#include "StructureFields.h"

namespace {

constexpr uint8_t kChassis = 3, kOemStrings = 11, kConfigurationOptions = 12, kPowerSupply = 39;
constexpr size_t kShortestChassis = 0x09, kShortestPowerSupply = 0x10;

// The highest bit tells of a lock.
THardwareFact ParseKind(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t>(structure, offset).Map([](uint8_t number) {
        return (number & 0x7F) == 0 ? std::nullopt : std::optional<uint16_t>(number & 0x7F);
    });
}

// Behind a list of elements, which says how many there are and how long each is.
THardwareFact ParseSku(const TSmbiosStructure& structure, size_t offset) {
    const size_t count = structure.FindNumber<uint8_t>(0x13).value_or(0);
    const size_t length = structure.FindNumber<uint8_t>(0x14).value_or(0);
    return SmbiosText(structure, offset + count * length);
}

constexpr TStructureField kChassisFields[] = {
    {"Manufacturer", 0x04, ParseText},  {"ChassisType", 0x05, ParseKind},  {"LockPresent", 0x05, ParseBit<7>},
    {"Version", 0x06, ParseText},       {"SerialNumber", 0x07, ParseText}, {"AssetTag", 0x08, ParseText},
    {"SKUNumber", 0x15, ParseSku},      {"Height", 0x11, ParseByte},       {"PowerCords", 0x12, ParseByte},
    {"BootUpState", 0x09, ParseWord},   {"PowerState", 0x0A, ParseWord},   {"ThermalState", 0x0B, ParseWord},
    {"SecurityState", 0x0C, ParseWord},
};

THardwareFact ParsePower(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint16_t>(structure, offset, {0, 0x8000}).Map([](uint16_t watts) {
        return std::optional<uint32_t>(watts);
    });
}

// A number within the two bytes of characteristics.
template <unsigned kShift, unsigned kMask>
THardwareFact ParseBits(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint16_t>(structure, offset).Map([](uint16_t bits) {
        const uint16_t number = bits >> kShift & kMask;
        return number == 0 ? std::nullopt : std::optional(number);
    });
}

THardwareFact ParsePlugged(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t>(structure, offset).Map([](uint8_t bits) { return std::optional((bits & 4) == 0); });
}

constexpr TStructureField kPowerSupplyFields[] = {
    {"Location", 0x05, ParseText},
    {"DeviceName", 0x06, ParseText},
    {"Manufacturer", 0x07, ParseText},
    {"SerialNumber", 0x08, ParseText},
    {"AssetTag", 0x09, ParseText},
    {"PartNumber", 0x0A, ParseText},
    {"RevisionLevel", 0x0B, ParseText},
    {"MaxPower", 0x0C, ParsePower},
    {"Present", 0x0E, ParseBit<1>},
    {"PluggedIn", 0x0E, ParsePlugged},
    {"HotReplaceable", 0x0E, ParseBit<0>},
    {"SupplyType", 0x0E, ParseBits<10, 0xF>},
    {"SupplyStatus", 0x0E, ParseBits<7, 0x7>},
    {"InputVoltageSwitching", 0x0E, ParseBits<3, 0xF>},
};

std::string JoinTexts(const std::string& first, const std::string& second) {
    return first + (first.empty() || second.empty() ? "" : " ") + second;
}

// The texts of all structures of the type. They describe the computer rather than a chassis of it, but every computer
// has one chassis at least.
TFact<std::vector<std::string>> TextsOf(const TStructures& structures, uint8_t type) {
    std::vector<std::string> texts;
    for (const TSmbiosStructure& structure : structures)
        if (structure.GetType() == type)
            for (const std::string_view text : structure.GetTexts())
                if (std::string plain(text); !IsPlaceholder(plain)) texts.push_back(std::move(plain));
    if (texts.empty()) return SmbiosMissing<std::vector<std::string>>(EAbsence::eNotPresent);
    return SmbiosFound(std::move(texts));
}

}  // namespace

void ParseChassis(const TStructures& structures, TChassisFacts& facts) {
    ForEachOfType(structures, kChassis, kShortestChassis, [&](const auto& structure, const std::string& tag) {
        THardware chassis = ParseHardware(structure, tag, kChassisFields);
        const std::string maker = chassis.Text("Manufacturer");
        chassis.caption = maker.empty() ? "Chassis" : "Chassis by " + maker;
        if (facts.chassis.empty()) {
            chassis.properties.push_back({"OEMStrings", TextsOf(structures, kOemStrings)});
            chassis.properties.push_back({"ConfigurationOptions", TextsOf(structures, kConfigurationOptions)});
        }
        facts.chassis.push_back(std::move(chassis));
    });
}

void ParsePowerSupplies(const TStructures& structures, TChassisFacts& facts) {
    ForEachOfType(structures, kPowerSupply, kShortestPowerSupply, [&](const auto& structure, const std::string& tag) {
        THardware supply = ParseHardware(structure, tag, kPowerSupplyFields);
        supply.caption = JoinTexts("Power supply", JoinTexts(supply.Text("Location"), supply.Text("DeviceName")));
        facts.powerSupplies.push_back(std::move(supply));
    });
}
