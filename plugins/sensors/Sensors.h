#ifndef KYR_PLUGINS_SENSORS_SENSORS_H
#define KYR_PLUGINS_SENSORS_SENSORS_H

#include <string>
#include <vector>

#include "Fact.h"

class TSystemRoot;

enum class ESensorKind { eTemperature, eVoltage, eCurrent, ePower, eFan };

/// A reading and its limits: degrees Celsius, volts, amperes, watts, or revolutions per minute. A limit that the sensor
/// does not have is a fact without a source.
struct TSensor {
    ESensorKind kind;
    std::string id;    ///< the device that measures and the channel; the same after each start of the system
    std::string chip;  ///< what the driver calls the device
    std::string label;
    TFact<double> reading;
    TFact<double> lowerCritical;
    TFact<double> lower;
    TFact<double> upper;
    TFact<double> upperCritical;
    TFact<double> upperFatal;
    TFact<double> target;
};

struct TSensorFacts {
    std::vector<TSensor> sensors;
    TListing listing;
};

/// Those below /sys/class/hwmon, and the thermal zones that none of them stands for.
TSensorFacts ReadSensors(const TSystemRoot& root);

/// The place of a hwmon device in the tree of devices, from what its link below /sys/class/hwmon points to: without
/// numbers that depend on the order in which drivers were loaded. Virtual devices have no place but the chip's name.
/// Empty if the text has no place.
std::string StablePlace(const std::string& link, const std::string& chip);

#endif
