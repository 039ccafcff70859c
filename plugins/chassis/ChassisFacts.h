#ifndef KYR_PLUGINS_CHASSIS_CHASSISFACTS_H
#define KYR_PLUGINS_CHASSIS_CHASSISFACTS_H

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "Smbios.h"

using THardwareFact =
    std::variant<TFact<bool>, TFact<uint8_t>, TFact<uint16_t>, TFact<uint32_t>, TFact<uint64_t>, TFact<double>,
                 TFact<std::string>, TFact<std::vector<std::string>>, TFact<std::vector<uint16_t>>>;

struct THardwareProperty {
    const char* name;  ///< in the document
    THardwareFact fact;
};

/// A piece of hardware, or of firmware for it.
struct THardware {
    std::string tag;  ///< for what SMBIOS describes, type and index of the structure, such as "9-2"
    std::string caption;
    uint16_t handle = 0;               ///< of the structure
    std::string owner;                 ///< the tag of the hardware that it belongs to; may be empty
    std::vector<std::string> devices;  ///< the ids of the logical devices that it holds
    std::vector<THardwareProperty> properties;

    /// Null if there is no such property.
    const THardwareFact* Find(std::string_view name) const;
    /// The value of a text property; empty if it has none.
    std::string Text(std::string_view name) const;
};

using THardwareList = std::vector<THardware>;

struct TChassisFacts {
    THardwareList chassis;
    THardwareList sockets;  ///< their devices are processors
    THardwareList caches;   ///< their owners are sockets
    THardwareList slots;    ///< their devices are PCI functions, as are those of the next
    THardwareList onboardDevices;
    THardwareList connectors;
    THardwareList powerSupplies;
    THardwareList enclosures;
    THardwareList bays;  ///< their owners are enclosures, their devices disks
    THardwareList controllers;
    THardwareList hostInterfaces;
    THardwareList firmware;

    TListing smbiosListing, slotListing, enclosureListing, ipmiListing, firmwareListing;
    TListing processorListing, pciListing, diskListing;  ///< of the devices
};

TChassisFacts ReadChassis(const TSystemRoot& root);

// The parts of it. Those that take structures read nothing else.
using TStructures = std::vector<TSmbiosStructure>;
void ParseChassis(const TStructures& structures, TChassisFacts& facts);
void ParsePowerSupplies(const TStructures& structures, TChassisFacts& facts);
void ParseSockets(const TStructures& structures, TChassisFacts& facts);
void ParseSlots(const TStructures& structures, TChassisFacts& facts);
void ParseOnboardDevices(const TStructures& structures, TChassisFacts& facts);
void ParseConnectors(const TStructures& structures, TChassisFacts& facts);
void ParseControllers(const TStructures& structures, TChassisFacts& facts);
void ParseHostInterfaces(const TStructures& structures, TChassisFacts& facts);
/// After ParseSockets.
void ReadSocketProcessors(const TSystemRoot& root, TChassisFacts& facts);
/// After ParseSlots and ParseOnboardDevices.
void ReadSlots(const TSystemRoot& root, TChassisFacts& facts);
/// After ParseControllers.
void ReadControllers(const TSystemRoot& root, TChassisFacts& facts);
void ReadEnclosures(const TSystemRoot& root, TChassisFacts& facts);
void ReadFirmwareResources(const TSystemRoot& root, TChassisFacts& facts);

#endif
