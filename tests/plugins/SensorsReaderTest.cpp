#include "PowerSupplies.h"
#include "Sensors.h"
#include "SystemRoot.h"
#include "support/TestSupport.h"

namespace {

TSystemRoot Machine(const char* name) { return TSystemRoot(std::string(MACHINES "/") + name); }

std::string Show(const TFact<double>& fact) {
    if (fact) return std::to_string(*fact).substr(0, 6);
    return fact.source.empty() ? "none" : AbsenceText(fact.absence);
}

std::map<std::string, std::string> ReadingsOf(const char* machine) {
    std::map<std::string, std::string> readings;
    for (const TSensor& sensor : ReadSensors(Machine(machine)).sensors)
        readings[sensor.id] = sensor.label + " " + Show(sensor.reading) + " " + Show(sensor.upper);
    return readings;
}

}  // namespace

TEST(SensorsReaderTest, PlacesDoNotDependOnTheOrderOfDrivers) {
    const struct {
        const char *link, *place;
    } cases[] = {
        {"../../devices/platform/coretemp.0/hwmon/hwmon3", "platform/coretemp.0"},
        {"../../devices/pci0000:00/0000:01:00.0/nvme/nvme12/hwmon1", "pci0000:00/0000:01:00.0"},
        {"../../devices/pci0000:00/0000:00:18.3/hwmon/hwmon0", "pci0000:00/0000:00:18.3"},
        {"../../devices/LNXSYSTM:00/ACPI000D:00/hwmon4", "LNXSYSTM:00/ACPI000D:00"},
        {"../../devices/virtual/thermal/thermal_zone7/hwmon2", "virtual/chip"},
        {"../../devices/", ""},
        {"hwmon1", ""},
        {"", ""},
    };
    for (const auto& [link, place] : cases) EXPECT_EQ(StablePlace(link, "chip"), place) << link;
}

TEST(SensorsReaderTest, ReadingsAreInUnitsOfPeople) {
    const auto readings = ReadingsOf("server");
    EXPECT_EQ(readings.size(), 17u);
    EXPECT_EQ(readings.at("pci0000:00/0000:00:19.3/temp1"), "Tctl 55.125 none");
    EXPECT_EQ(readings.at("platform/nct6775.2592/in0"), "12V 12.096 13.200");
    EXPECT_EQ(readings.at("platform/nct6775.2592/temp2"), "Exhaust -128.0 none");
    EXPECT_EQ(readings.at("LNXSYSTM:00/LNXSYBUS:00/ACPI000D:00/power1"), "power1 312.00 none");
}

TEST(SensorsReaderTest, LimitsAtTheEndOfTheRangeAreNone) {
    EXPECT_EQ(ReadingsOf("nvme").at("pci0000:00/0000:00:01.1/0000:01:00.0/temp2"), "Sensor 1 40.850 not supported");
}

TEST(SensorsReaderTest, ThermalZonesThatAreChipsStandOnce) {
    const auto readings = ReadingsOf("laptop");
    EXPECT_EQ(readings.at("thermal/x86_pkg_temp"), "x86_pkg_temp 48.000 none");
    EXPECT_EQ(readings.at("thermal/iwlwifi_1"), "iwlwifi_1 not present none");
    EXPECT_EQ(readings.count("thermal/acpitz"), 0u);
    EXPECT_EQ(readings.count("virtual/acpitz/temp1"), 1u);
}

TEST(SensorsReaderTest, ABatteryTellsEnergyOrCharge) {
    const auto batteries = ReadPower(Machine("laptop")).batteries;
    ASSERT_EQ(batteries.size(), 2u);
    EXPECT_EQ(Show(batteries[0].fullEnergy), "46.120");
    EXPECT_EQ(Show(batteries[0].fullCharge), "none");
    EXPECT_EQ(batteries[0].chemistry.value, 8);
    const TempFolder machine;
    machine.Write("sys/class/power_supply/BAT0/type", "Battery\n");
    machine.Write("sys/class/power_supply/BAT0/charge_full", "3120000\n");
    EXPECT_EQ(Show(ReadPower(TSystemRoot(machine.Path())).batteries.at(0).fullCharge), "3.1200");
}

TEST(SensorsReaderTest, HostileFilesGiveNoReadings) {
    const auto batteries = ReadPower(Machine("hostile")).batteries;
    ASSERT_EQ(batteries.size(), 1u);
    EXPECT_EQ(batteries[0].chargeStatus.absence, EAbsence::eNotSupported);
    EXPECT_FALSE(batteries[0].chargePercent);
    EXPECT_FALSE(batteries[0].cycleCount);
    EXPECT_EQ(ReadingsOf("hostile").size(), 5u);
}
