#ifndef KYR_PLUGINS_PCI_PCIFACTS_H
#define KYR_PLUGINS_PCI_PCIFACTS_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "SystemRoot.h"

/// Ids and class from the configuration registers, and their names in pci.ids.
struct TPciIdentity {
    TFact<uint16_t> vendor;
    TFact<uint16_t> device;
    TFact<uint16_t> subsystemVendor;
    TFact<uint16_t> subsystem;
    TFact<uint32_t> classCode;  ///< class, subclass and programming interface, a byte each

    TFact<std::string> vendorName;
    TFact<std::string> deviceName;
    TFact<std::string> subsystemVendorName;
    TFact<std::string> subsystemName;
    TFact<std::string> className;  ///< of the subclass, or of the class if that has none

    bool IsKnown() const { return vendor && device && subsystemVendor && subsystem && classCode; }
    /// False for most bridges.
    bool HasSubsystem() const { return !subsystemVendor || *subsystemVendor != 0; }
};

/// The link of a PCI Express function. Speeds are in transfers per second and lane.
struct TPciLink {
    TFact<uint64_t> currentSpeed;
    TFact<uint64_t> maxSpeed;
    TFact<uint16_t> currentWidth;
    TFact<uint16_t> maxWidth;
};

struct TPciFunction {
    std::string address;  ///< "0000:00:1f.2"
    std::string bridge;   ///< the address of the bridge above it; empty on a root bus
    TPciIdentity identity;
    TFact<uint8_t> revision;
    TFact<std::string> driver;
    TFact<uint32_t> interrupt;
    TFact<uint32_t> numaNode;
    TFact<std::vector<std::string>> firmwareIds;
    std::optional<TPciLink> link;  ///< of PCI Express functions only
};

struct TPciFacts {
    std::vector<TPciFunction> functions;  ///< sorted by address
    TListing listing;
};

TPciFacts ReadPci(const TSystemRoot& root);

/// "8.0 GT/s PCIe" as transfers per second.
std::optional<uint64_t> ParseLinkSpeed(std::string_view text);

#endif
