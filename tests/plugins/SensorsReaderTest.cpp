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
