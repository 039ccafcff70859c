#ifndef KYR_PLUGINS_MEMORY_MEMORYDEVICES_H
#define KYR_PLUGINS_MEMORY_MEMORYDEVICES_H

#include <cstdint>
#include <string>
#include <vector>

#include "Fact.h"

/// What the firmware tells of memory's hardware. Enumerations are in its numbers. A tag is the structure's type and
/// its place among those of the type, as the kernel names it below /sys/firmware/dmi/entries.

struct TMemoryArray {
    std::string tag;
    uint16_t handle = 0;
    TFact<uint16_t> location;
    TFact<uint16_t> use;
    TFact<uint16_t> errorCorrection;
    TFact<uint64_t> maximumCapacity;  ///< kilobytes
    TFact<uint16_t> slotCount;
    std::vector<std::string> emptySlots;
};

struct TMemoryModule {
    std::string tag;
    std::string arrayTag;  ///< empty for a module of no array
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
    TFact<std::vector<uint16_t>> typeDetail;  ///< the bits that are set
    TFact<uint16_t> technology;
    TFact<uint16_t> rank;
    TFact<uint32_t> speed;  ///< megatransfers per second, as the next
    TFact<uint32_t> configuredSpeed;
    TFact<double> minimumVoltage;  ///< volts, as the next two
    TFact<double> maximumVoltage;
    TFact<double> configuredVoltage;
};

/// The slot of a module for a person: many boards call slots of two banks alike.
std::string SlotName(const TMemoryModule& module);

struct TMemoryHardware {
    std::vector<TMemoryArray> arrays;
    std::vector<TMemoryModule> modules;  ///< without the empty slots
    TFact<uint32_t> installedModules;    ///< of system memory, as the next
    TFact<uint64_t> installedSize;       ///< bytes; missing if a module does not tell its own
};

TMemoryHardware ParseMemoryHardware(const TFact<std::string>& smbiosTable);

#endif
