#ifndef KYR_PLUGINS_SENSORS_POWERSUPPLIES_H
#define KYR_PLUGINS_SENSORS_POWERSUPPLIES_H

#include <cstdint>
#include <string>
#include <vector>

#include "Fact.h"

class TSystemRoot;

/// A battery or UPS. Energies are in watt-hours and charges in ampere-hours. A battery reports one of the two; the
/// facts of the other have no source.
struct TBattery {
    std::string name;
    TFact<std::string> manufacturer;
    TFact<std::string> model;
    TFact<std::string> serialNumber;
    TFact<bool> isPresent;
    TFact<uint16_t> scope;
    TFact<uint16_t> chemistry;
    TFact<uint16_t> chargeStatus;
    TFact<uint16_t> chargePercent;
    TFact<uint32_t> cycleCount;
    TFact<double> designEnergy;
    TFact<double> fullEnergy;
    TFact<double> energy;
    TFact<double> designCharge;
    TFact<double> fullCharge;
    TFact<double> charge;
    TFact<double> designVoltage;
    TFact<double> voltage;
};

/// A mains adapter, USB port or other supply.
struct TPowerSupply {
    std::string name;
    TFact<uint16_t> kind;
    TFact<bool> isOnline;
};

struct TPowerFacts {
    std::vector<TBattery> batteries;
    std::vector<TPowerSupply> supplies;
    TListing listing;
};

/// Reads /sys/class/power_supply. Enumerations have the numbers of sensors.properties.xml.
TPowerFacts ReadPower(const TSystemRoot& root);

#endif
