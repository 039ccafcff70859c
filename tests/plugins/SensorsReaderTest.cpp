#include <filesystem>

#include "PowerSupplies.h"
#include "Sensors.h"
#include "SystemRoot.h"
#include "support/TestSupport.h"

TEST(SensorsReaderTest, PlacesDoNotDependOnTheOrderOfDrivers) {
    const std::pair<const char*, const char*> cases[] = {
        {"../../devices/platform/coretemp.0/hwmon/hwmon3", "platform/coretemp.0"},
        {"../../devices/pci0000:00/0000:01:00.0/nvme/nvme12/hwmon1", "pci0000:00/0000:01:00.0"},
        {"../../devices/pci0000:00/0000:00:18.3/hwmon/hwmon0", "pci0000:00/0000:00:18.3"},
        {"../../devices/LNXSYSTM:00/ACPI000D:00/hwmon4", "LNXSYSTM:00/ACPI000D:00"},
        {"../../devices/virtual/thermal/thermal_zone7/hwmon2", "virtual/chip"},
    };
    for (const auto& [link, place] : cases) EXPECT_EQ(StableDevicePath(link, "chip"), place) << link;
    for (const char* link : {"../../devices/", "hwmon1", ""}) EXPECT_EQ(StableDevicePath(link, "chip"), "") << link;
}

TEST(SensorsReaderTest, WhatIsNoReadingSaysWhy) {
    for (const TSensor& sensor : ReadSensors(TSystemRoot(MACHINES "/laptop")).sensors)
        EXPECT_EQ(sensor.reading ? "read" : std::string(AbsenceText(sensor.reading.absence)),
                  sensor.id == "thermal/iwlwifi_1" ? "not present" : "read")
            << sensor.id;
    for (const TSensor& sensor : ReadSensors(TSystemRoot(MACHINES "/old")).sensors)
        EXPECT_EQ(sensor.reading ? "" : sensor.reading.source,
                  sensor.label == "CPUTIN" ? "/sys/class/hwmon/hwmon0/device/temp2_fault" : "")
            << sensor.id;
    const auto hostile = ReadPower(TSystemRoot(MACHINES "/hostile")).batteries;
    EXPECT_EQ(hostile.at(0).chargeStatus.absence, EAbsence::eNotSupported);
}

TEST(SensorsReaderTest, ABatteryTellsEnergyOrCharge) {
    const TempFolder machine;
    machine.Write("sys/class/power_supply/BAT0/type", "Battery\n");
    machine.Write("sys/class/power_supply/BAT0/charge_full", "3120000\n");
    const TBattery battery = ReadPower(TSystemRoot(machine.Path())).batteries.at(0);
    EXPECT_DOUBLE_EQ(*battery.fullCharge, 3.12);
    EXPECT_EQ(battery.fullEnergy.source, "") << "nothing is told of it";
}

TEST(SensorsReaderTest, AllKindsOfUsbPortsAreUsb) {
    for (const char* type : {"USB", "USB_C", "USB_PD_DRP"}) {
        const TempFolder machine;
        machine.Write("sys/class/power_supply/port/type", type);
        EXPECT_EQ(*ReadPower(TSystemRoot(machine.Path())).supplies.at(0).kind, 2) << type;
    }
}

TEST(SensorsReaderTest, AChargeAboveFullIsFull) {
    const std::tuple<const char*, const char*, const char*, std::optional<uint16_t>, EAbsence> cases[] = {
        {"67", "1", "2", 67, {}},
        {"110", "11", "10", 100, {}},
        {"", "11", "10", 100, {}},
        {"", "5", "8", 63, {}},
        {"65535", "1", "2", std::nullopt, EAbsence::eNotSupported},
        {"", "90", "0", std::nullopt, EAbsence::eNotPresent},
        {"x", "1", "2", std::nullopt, EAbsence::eNotSupported},
        {"", "", "10", std::nullopt, EAbsence::eNotPresent},
    };
    for (const auto& [capacity, now, full, percent, absence] : cases) {
        const TempFolder machine;
        const std::string folder = "sys/class/power_supply/BAT0/";
        machine.Write(folder + "type", "Battery");
        machine.Write(folder + "capacity", capacity);
        machine.Write(folder + "energy_now", now);
        machine.Write(folder + "energy_full", full);
        const TFact<uint16_t> fact = ReadPower(TSystemRoot(machine.Path())).batteries.at(0).chargePercent;
        EXPECT_EQ(fact.value, percent) << capacity << now << full;
        EXPECT_EQ(fact.absence, absence) << capacity << now << full;
    }
}

TEST(SensorsReaderTest, FilesOfOldDriversAreReadInTheFolderOfTheDevice) {
    const TempFolder machine;
    const std::string device = "sys/devices/platform/applesmc.768/";
    for (const char* file : {"name", "fan1_output", "fan2_input", "fan2_output", "fan2_target"})
        machine.Write(device + file, *file == 'n' ? "applesmc" : "4294967295");
    std::filesystem::create_directories(machine.Path() + "/sys/class/hwmon");
    for (const std::string number : {"1", "2"}) {
        machine.Write(device + "hwmon/hwmon" + number + "/uevent", "");
        std::filesystem::create_symlink("../../../applesmc.768",
                                        machine.Path() + '/' + device + "hwmon/hwmon" + number + "/device");
        std::filesystem::create_symlink("../../devices/platform/applesmc.768/hwmon/hwmon" + number,
                                        machine.Path() + "/sys/class/hwmon/hwmon" + number);
    }
    // The kernels of the time before made folders, not links.
    machine.Write("sys/devices/platform/lm78.656/temp1_input", "1000");
    machine.Write("sys/class/hwmon/hwmon3/uevent", "");
    std::filesystem::create_symlink("../../../devices/platform/lm78.656",
                                    machine.Path() + "/sys/class/hwmon/hwmon3/device");
    std::string text;
    for (const TSensor& sensor : ReadSensors(TSystemRoot(machine.Path())).sensors)
        text += sensor.id + " of " + sensor.chip + (sensor.reading ? "" : ": " + sensor.reading.source) +
                (sensor.target.ValueOr(0) > INT32_MAX ? ", target\n" : "\n");
    EXPECT_EQ(text,
              "platform/applesmc.768/fan1 of applesmc: /sys/class/hwmon/hwmon1/device/fan1_input, target\n"
              "platform/applesmc.768/fan2 of applesmc, target\n"
              "platform/lm78.656/temp1 of hwmon3\n");
}
