#include "PowerSupplies.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "SystemRoot.h"

namespace {

const std::string kFolder = "/sys/class/power_supply";

struct TWord {
    std::string_view word;
    uint16_t number;
};

constexpr TWord kChemistries[] = {{"Unknown", 2}, {"NiCd", 4}, {"NiMH", 5}, {"Li-ion", 6},
                                  {"Li-poly", 8}, {"LiFe", 9}, {"LiMn", 10}};
constexpr TWord kChargeStates[] = {
    {"Unknown", 0}, {"Charging", 1}, {"Discharging", 2}, {"Not charging", 3}, {"Full", 4}};
constexpr TWord kScopes[] = {{"Unknown", 0}, {"System", 1}, {"Device", 2}};
// Old kernels have a type for each kind of USB port.
constexpr TWord kSupplyKinds[] = {{"Unknown", 0}, {"Mains", 1},   {"USB", 2},   {"Wireless", 3}, {"USB_DCP", 2},
                                  {"USB_CDP", 2}, {"USB_ACA", 2}, {"USB_C", 2}, {"USB_PD", 2},   {"USB_PD_DRP", 2}};

template <size_t count>
TFact<uint16_t> ReadWord(const TSystemRoot& root, const std::string& path, const TWord (&words)[count]) {
    return root.ReadText(path).Map([&](const std::string& text) {
        const auto found = std::find_if(words, words + count, [&](const TWord& word) { return word.word == text; });
        return found == words + count ? std::nullopt : std::optional(found->number);
    });
}

// Sysfs has microvolts, microwatt-hours and microampere-hours.
TFact<double> ReadMillionths(const TSystemRoot& root, const std::string& path) {
    return root.ReadNumber<int64_t>(path).Map(
        [](int64_t number) { return std::optional(static_cast<double>(number) / 1e6); });
}

struct TAmount {
    const char* file;
    TFact<double> TBattery::*fact;
};

constexpr TAmount kVoltages[] = {{"voltage_min_design", &TBattery::designVoltage}, {"voltage_now", &TBattery::voltage}};
constexpr TAmount kEnergies[] = {{"energy_full_design", &TBattery::designEnergy},
                                 {"energy_full", &TBattery::fullEnergy},
                                 {"energy_now", &TBattery::energy}};
constexpr TAmount kCharges[] = {{"charge_full_design", &TBattery::designCharge},
                                {"charge_full", &TBattery::fullCharge},
                                {"charge_now", &TBattery::charge}};

template <size_t count>
void ReadAmounts(const TSystemRoot& root, const std::string& folder, const TAmount (&amounts)[count],
                 TBattery& battery) {
    for (const TAmount& amount : amounts) battery.*amount.fact = ReadMillionths(root, folder + amount.file);
}

// 0 means that the firmware does not count cycles.
TFact<uint32_t> ReadCycles(const TSystemRoot& root, const std::string& path) {
    return root.ReadNumber<uint32_t>(path).Map(
        [](uint32_t count) { return count == 0 ? std::nullopt : std::optional(count); });
}

// A battery that holds more than what it calls full, as many do for a while, is full.
std::optional<uint16_t> ChargePercent(double percent) {
    constexpr double kFull = 100, kMost = 200;
    if (!(percent >= 0 && percent <= kMost)) return std::nullopt;
    return static_cast<uint16_t>(std::lround(std::min(percent, kFull)));
}

// Old kernels do not work out the percentage.
TFact<uint16_t> ReadChargePercent(const TSystemRoot& root, const std::string& path, const TFact<double>& left,
                                  const TFact<double>& full) {
    const TFact<uint16_t> percent = root.ReadNumber<uint16_t>(path).Map(ChargePercent);
    if (percent || percent.absence != EAbsence::eNotPresent || !left || full.ValueOr(0) <= 0) return percent;
    return left.Map([&](double amount) { return ChargePercent(100 * amount / *full); });
}

TBattery ReadBattery(const TSystemRoot& root, const std::string& name) {
    const std::string folder = kFolder + '/' + name + '/';
    TBattery battery;
    battery.name = name;
    battery.manufacturer = root.ReadText(folder + "manufacturer");
    battery.model = root.ReadText(folder + "model_name");
    battery.serialNumber = root.ReadText(folder + "serial_number");
    battery.isPresent = root.ReadFlag(folder + "present");
    battery.scope = ReadWord(root, folder + "scope", kScopes);
    battery.chemistry = ReadWord(root, folder + "technology", kChemistries);
    battery.chargeStatus = ReadWord(root, folder + "status", kChargeStates);
    battery.cycleCount = ReadCycles(root, folder + "cycle_count");
    ReadAmounts(root, folder, kVoltages, battery);
    const bool hasCharge = root.Exists(folder + "charge_full");
    if (hasCharge)
        ReadAmounts(root, folder, kCharges, battery);
    else
        ReadAmounts(root, folder, kEnergies, battery);
    battery.chargePercent = ReadChargePercent(root, folder + "capacity", hasCharge ? battery.charge : battery.energy,
                                              hasCharge ? battery.fullCharge : battery.fullEnergy);
    return battery;
}

}  // namespace

TPowerFacts ReadPower(const TSystemRoot& root) {
    TPowerFacts facts;
    const TFact<std::vector<std::string>> names = root.ListKind(kFolder, kFolder);
    facts.listing = root.CheckEntries(kFolder, names);
    for (const std::string& name : names.ValueOr({})) {
        const std::string folder = kFolder + '/' + name + '/';
        const std::string type = root.ReadText(folder + "type").ValueOr("");
        if (type == "Battery" || type == "UPS")
            facts.batteries.push_back(ReadBattery(root, name));
        else
            facts.supplies.push_back(
                {name, ReadWord(root, folder + "type", kSupplyKinds), root.ReadFlag(folder + "online")});
    }
    return facts;
}
