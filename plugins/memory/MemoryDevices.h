#ifndef KYR_PLUGINS_MEMORY_MEMORYDEVICES_H
#define KYR_PLUGINS_MEMORY_MEMORYDEVICES_H

#include <cstdint>
#include <string>
#include <vector>

#include "Fact.h"

// Memory hardware as described by SMBIOS, with its numbers for enumerations. A tag is the type of the structure and its
// index among those of this type, as in /sys/firmware/dmi/entries.

struct TMemoryArray {
    std::string tag;
    uint16_t handle = 0;
    TFact<uint16_t> location;
    TFact<uint16_t> use;
    TFact<uint16_t> errorCorrection;
    TFact<uint64_t> maximumCapacity;  ///< bytes
    TFact<uint16_t> slotCount;
    std::vector<std::string> emptySlots;
};

struct TMemoryModule {
    std::string tag;
    std::string arrayTag;  ///< empty if the module belongs to no array
    bool isSystemMemory = true;
    TFact<std::string> deviceLocator;
    TFact<std::string> bankLocator;
    TFact<std::string> manufacturer;
    TFact<std::string> partNumber;
    TFact<std::string> serialNumber;
    TFact<std::string> assetTag;
    TFact<std::string> firmwareVersion;
    TFact<uint64_t> capacity;  ///< bytes
    TFact<uint64_t> volatileSize;
    TFact<uint64_t> nonVolatileSize;
    TFact<uint16_t> totalWidth;
    TFact<uint16_t> dataWidth;
    TFact<uint16_t> formFactor;
    TFact<uint16_t> memoryType;
    TFact<std::vector<uint16_t>> typeDetail;  ///< the numbers of the bits that are set
    TFact<uint16_t> technology;
    TFact<uint16_t> rank;
    TFact<uint32_t> speed;  ///< in megatransfers per second, like the next
    TFact<uint32_t> configuredSpeed;
    TFact<double> minimumVoltage;  ///< in volts, like the next two
    TFact<double> maximumVoltage;
    TFact<double> configuredVoltage;
};

/// The slot of a module for display, with the bank, since many boards repeat slot names in each bank.
std::string SlotName(const TMemoryModule& module);

struct TMemoryHardware {
    std::vector<TMemoryArray> arrays;
    std::vector<TMemoryModule> modules;  ///< without the empty slots
    TFact<uint32_t> installedModules;    ///< of system memory, like the next
    TFact<uint64_t> installedSize;       ///< in bytes; missing if the size of a module is unknown
};

TMemoryHardware ParseMemoryHardware(const TFact<std::string>& smbiosTable);

#endif
