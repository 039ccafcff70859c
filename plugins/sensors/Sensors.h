#ifndef KYR_PLUGINS_SENSORS_SENSORS_H
#define KYR_PLUGINS_SENSORS_SENSORS_H

#include <string>
#include <vector>

#include "Fact.h"

class TSystemRoot;

enum class ESensorKind { eTemperature, eVoltage, eCurrent, ePower, eFan };

/// A reading and its limits in degrees Celsius, volts, amperes, watts or revolutions per minute. A limit that the
/// sensor does not have is a fact without a source.
struct TSensor {
    ESensorKind kind;
    std::string id;    ///< device and channel; does not change when the system is restarted
    std::string chip;  ///< the name of the driver
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
    TListing zoneListing;
};

/// Reads /sys/class/hwmon, and the thermal zones that have no hwmon device.
TSensorFacts ReadSensors(const TSystemRoot& root);

/// The path of a hwmon device in /sys/devices, from the link in /sys/class/hwmon, without the numbers that depend on
/// the order in which drivers are loaded. For a virtual device, "virtual/" and the chip. Empty if the link is not into
/// /sys/devices.
std::string StableDevicePath(const std::string& link, const std::string& chip);

#endif
