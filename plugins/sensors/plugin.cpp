#include "DataPlugin.h"
#include "InstanceReport.h"
#include "PowerSupplies.h"
#include "Sensors.h"

namespace {

struct TFacts {
    TSensorFacts sensors;
    TPowerFacts power;
};

TFacts Read(const TSystemRoot& root) { return {ReadSensors(root), ReadPower(root)}; }

// In the order of ESensorKind.
constexpr const char* kSensorClasses[] = {"MOLTA_TemperatureSensor", "MOLTA_VoltageSensor", "MOLTA_CurrentSensor",
                                          "MOLTA_PowerSensor", "MOLTA_Fan"};
constexpr const char* kBattery = "MOLTA_Battery";
constexpr const char* kPowerSupply = "MOLTA_PowerSupply";
constexpr const char* kSystemSensor = "MOLTA_SystemSensor";
constexpr const char* kSystemPowerSource = "MOLTA_SystemPowerSource";

TInstancePath SensorPath(const TSensor& sensor) {
    return DevicePath(kSensorClasses[static_cast<size_t>(sensor.kind)], sensor.id);
}

TInstancePath BatteryPath(const TBattery& battery) { return DevicePath(kBattery, battery.name); }
TInstancePath PowerSupplyPath(const TPowerSupply& supply) { return DevicePath(kPowerSupply, supply.name); }

struct TReading {
    const char* property;
    TFact<double> TSensor::*fact;
};

constexpr TReading kReadings[] = {{"CurrentReading", &TSensor::reading},
                                  {"LowerThresholdCritical", &TSensor::lowerCritical},
                                  {"LowerThresholdNonCritical", &TSensor::lower},
                                  {"UpperThresholdNonCritical", &TSensor::upper},
                                  {"UpperThresholdCritical", &TSensor::upperCritical},
                                  {"UpperThresholdFatal", &TSensor::upperFatal}};

constexpr TReading kFanReadings[] = {{"CurrentSpeed", &TSensor::reading},
                                     {"MinimumSpeed", &TSensor::lower},
                                     {"MaximumSpeed", &TSensor::upper},
                                     {"DesiredSpeed", &TSensor::target}};

void AddNames(TInstanceReport& report, const TSensor& sensor) {
    report.Set("Caption", sensor.label + " of " + sensor.chip);
    report.Set("ElementName", sensor.label);
    report.Set("Driver", sensor.chip);
}

kyrStatusCode ReportNumericSensor(kyrIOHandle handle, const TSensor& sensor) {
    TInstanceReport report(handle, SensorPath(sensor));
    AddNames(report, sensor);
    for (const TReading& reading : kReadings) report.Add(reading.property, sensor.*reading.fact);
    return report.Finish();
}

std::optional<uint32_t> WholeNumber(double number) {
    if (number < 0 || number > UINT32_MAX) return std::nullopt;
    return static_cast<uint32_t>(number);
}

kyrStatusCode ReportFan(kyrIOHandle handle, const TSensor& sensor) {
    TInstanceReport report(handle, SensorPath(sensor));
    AddNames(report, sensor);
    for (const TReading& reading : kFanReadings) report.Add(reading.property, (sensor.*reading.fact).Map(WholeNumber));
    return report.Finish();
}

template <ESensorKind kind>
kyrStatusCode ReportSensors(kyrIOHandle handle, const TFacts& facts) {
    return ReportEach(facts.sensors.sensors, [&](const TSensor& sensor) {
        if (sensor.kind != kind) return kyrStatusOK;
        return kind == ESensorKind::eFan ? ReportFan(handle, sensor) : ReportNumericSensor(handle, sensor);
    });
}

void AddEnergy(TInstanceReport& report, const TBattery& battery) {
    report.Add("DesignCapacity", battery.designEnergy);
    report.Add("FullChargeCapacity", battery.fullEnergy);
    report.Add("RemainingCapacity", battery.energy);
    report.Add("DesignCharge", battery.designCharge);
    report.Add("FullCharge", battery.fullCharge);
    report.Add("RemainingCharge", battery.charge);
    report.Add("DesignVoltage", battery.designVoltage);
    report.Add("Voltage", battery.voltage);
}

kyrStatusCode ReportBattery(kyrIOHandle handle, const TBattery& battery) {
    TInstanceReport report(handle, BatteryPath(battery));
    report.Set("Caption", "Battery " + battery.model.ValueOr(battery.name));
    report.Set("ElementName", battery.name);
    report.Add("Manufacturer", battery.manufacturer);
    report.Add("Model", battery.model);
    report.Add("SerialNumber", battery.serialNumber);
    report.Add("Present", battery.isPresent);
    report.Add("Scope", battery.scope);
    report.Add("Chemistry", battery.chemistry);
    report.Add("ChargeStatus", battery.chargeStatus);
    report.Add("EstimatedChargeRemaining", battery.chargePercent);
    report.Add("CycleCount", battery.cycleCount);
    AddEnergy(report, battery);
    return report.Finish();
}

kyrStatusCode ReportBatteries(kyrIOHandle handle, const TFacts& facts) {
    return ReportEach(handle, facts.power.batteries, ReportBattery);
}

kyrStatusCode ReportPowerSupply(kyrIOHandle handle, const TPowerSupply& supply) {
    TInstanceReport report(handle, PowerSupplyPath(supply));
    report.Set("Caption", "Power supply " + supply.name);
    report.Set("ElementName", supply.name);
    report.Add("Kind", supply.kind);
    report.Add("Online", supply.isOnline);
    return report.Finish();
}

kyrStatusCode ReportPowerSupplies(kyrIOHandle handle, const TFacts& facts) {
    return ReportEach(handle, facts.power.supplies, ReportPowerSupply);
}

kyrStatusCode ReportSystemSensors(kyrIOHandle handle, const TFacts& facts) {
    return ReportSystemDevices(handle, kSystemSensor, facts.sensors.sensors, SensorPath);
}

kyrStatusCode ReportSystemPowerSources(kyrIOHandle handle, const TFacts& facts) {
    const kyrStatusCode status = ReportSystemDevices(handle, kSystemPowerSource, facts.power.batteries, BatteryPath);
    if (status != kyrStatusOK) return status;
    return ReportSystemDevices(handle, kSystemPowerSource, facts.power.supplies, PowerSupplyPath);
}

TListing Chips(const TFacts& facts) { return facts.sensors.listing; }
TListing Zones(const TFacts& facts) { return facts.sensors.zoneListing; }
TListing Supplies(const TFacts& facts) { return facts.power.listing; }

const TDataPlugin<TFacts> gPlugin("sensors", Read,
                                  {{kSensorClasses[0], ReportSensors<ESensorKind::eTemperature>, {Chips, Zones}},
                                   {kSensorClasses[1], ReportSensors<ESensorKind::eVoltage>, {Chips}},
                                   {kSensorClasses[2], ReportSensors<ESensorKind::eCurrent>, {Chips}},
                                   {kSensorClasses[3], ReportSensors<ESensorKind::ePower>, {Chips}},
                                   {kSensorClasses[4], ReportSensors<ESensorKind::eFan>, {Chips}},
                                   {kBattery, ReportBatteries, {Supplies}},
                                   {kPowerSupply, ReportPowerSupplies, {Supplies}},
                                   {kSystemSensor, ReportSystemSensors, {Chips, Zones}},
                                   {kSystemPowerSource, ReportSystemPowerSources, {Supplies}}});

}  // namespace
