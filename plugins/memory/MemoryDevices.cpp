#include "MemoryDevices.h"

#include <algorithm>

#include "SmbiosFields.h"

namespace {

enum EType : uint8_t { eMemoryArray = 16, eMemoryDevice = 17 };
enum EUse : uint16_t { eSystemMemory = 3 };

// Shorter structures lack fields that every version of SMBIOS requires.
constexpr size_t kShortestArray = 0x0F;
constexpr size_t kShortestDevice = 0x15;

constexpr uint64_t kKilo = 1024;
constexpr uint64_t kMega = kKilo * kKilo;

TFact<uint16_t> Width(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint16_t>(structure, offset, {0, 0xFFFF});
}

TFact<uint64_t> Size(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint64_t>(structure, offset, {UINT64_MAX});
}

TFact<double> Voltage(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint16_t>(structure, offset, {0}).Map([](uint16_t milliVolts) {
        return std::optional(milliVolts / 1000.0);
    });
}

// A speed above 16 bits is in an extended field.
TFact<uint32_t> Speed(const TSmbiosStructure& structure, size_t offset, size_t extendedOffset) {
    if (structure.FindNumber<uint16_t>(offset) == 0xFFFF) return SmbiosNumber<uint32_t>(structure, extendedOffset, {0});
    return SmbiosNumber<uint16_t, uint32_t>(structure, offset, {0});
}

TFact<uint16_t> Rank(const TSmbiosStructure& structure) {
    TFact<uint16_t> rank = SmbiosEnumeration(structure, 0x1B);
    if (rank) rank.value = *rank & 0xF;
    return rank && *rank == 0 ? SmbiosMissing<uint16_t>(EAbsence::eNotPresent) : rank;
}

TFact<std::vector<uint16_t>> TypeDetail(const TSmbiosStructure& structure) {
    return SmbiosNumber<uint16_t>(structure, 0x13, {0}).Map([](uint16_t detail) {
        std::vector<uint16_t> bits;
        for (uint16_t bit = 1; bit < 16; ++bit)  // bit 0 is reserved
            if ((detail >> bit & 1) != 0) bits.push_back(bit);
        return std::optional(bits);
    });
}

// In megabytes, or in kilobytes if the highest bit is set. A capacity above 15 bits is in an extended field.
TFact<uint64_t> Capacity(const TSmbiosStructure& structure) {
    const TFact<uint16_t> size = SmbiosNumber<uint16_t>(structure, 0x0C, {0xFFFF});
    const std::optional<uint32_t> extended = structure.FindNumber<uint32_t>(0x1C);
    if (size && *size == 0x7FFF && extended) return SmbiosFound((*extended & 0x7FFFFFFF) * kMega);
    return size.Map(
        [](uint64_t number) { return std::optional((number & 0x7FFF) * ((number & 0x8000) != 0 ? kKilo : kMega)); });
}

TFact<uint64_t> MaximumCapacity(const TSmbiosStructure& structure) {
    const TFact<uint32_t> kilobytes = SmbiosNumber<uint32_t>(structure, 0x07, {0});
    if (kilobytes && *kilobytes == 0x80000000) return SmbiosNumber<uint64_t>(structure, 0x0F, {0});
    return kilobytes.Map([](uint64_t number) { return std::optional(number * kKilo); });
}

TMemoryArray ParseArray(const TSmbiosStructure& structure, const std::string& tag) {
    TMemoryArray array;
    array.tag = tag;
    array.handle = structure.GetHandle();
    array.location = SmbiosEnumeration(structure, 0x04);
    array.use = SmbiosEnumeration(structure, 0x05);
    array.errorCorrection = SmbiosEnumeration(structure, 0x06);
    array.maximumCapacity = MaximumCapacity(structure);
    array.slotCount = SmbiosNumber<uint16_t>(structure, 0x0D);
    return array;
}

void ParseTexts(const TSmbiosStructure& structure, TMemoryModule& module) {
    module.deviceLocator = SmbiosText(structure, 0x10);
    module.bankLocator = SmbiosText(structure, 0x11);
    module.manufacturer = SmbiosText(structure, 0x17);
    module.serialNumber = SmbiosText(structure, 0x18);
    module.assetTag = SmbiosText(structure, 0x19);
    module.partNumber = SmbiosText(structure, 0x1A);
    module.firmwareVersion = SmbiosText(structure, 0x2B);
}

void ParseKind(const TSmbiosStructure& structure, TMemoryModule& module) {
    module.formFactor = SmbiosEnumeration(structure, 0x0E);
    module.memoryType = SmbiosEnumeration(structure, 0x12);
    module.typeDetail = TypeDetail(structure);
    module.technology = SmbiosEnumeration(structure, 0x28);
    module.rank = Rank(structure);
}

void ParseMeasures(const TSmbiosStructure& structure, TMemoryModule& module) {
    module.capacity = Capacity(structure);
    module.nonVolatileSize = Size(structure, 0x34);
    module.volatileSize = Size(structure, 0x3C);
    module.totalWidth = Width(structure, 0x08);
    module.dataWidth = Width(structure, 0x0A);
    module.speed = Speed(structure, 0x15, 0x54);
    module.configuredSpeed = Speed(structure, 0x20, 0x58);
    module.minimumVoltage = Voltage(structure, 0x22);
    module.maximumVoltage = Voltage(structure, 0x24);
    module.configuredVoltage = Voltage(structure, 0x26);
}

TMemoryModule ParseDevice(const TSmbiosStructure& structure, const std::string& tag) {
    TMemoryModule module;
    module.tag = tag;
    ParseTexts(structure, module);
    ParseKind(structure, module);
    ParseMeasures(structure, module);
    return module;
}

TMemoryArray* FindArray(std::vector<TMemoryArray>& arrays, const TSmbiosStructure& device) {
    const auto found = std::find_if(arrays.begin(), arrays.end(), [&](const TMemoryArray& array) {
        return array.handle == device.FindNumber<uint16_t>(0x04);
    });
    return found == arrays.end() ? nullptr : &*found;
}

// A device without an array, or in one whose use is unknown, counts as system memory.
void AddDevice(TMemoryHardware& hardware, TMemoryModule device, TMemoryArray* array) {
    const bool isEmpty = device.capacity && *device.capacity == 0;
    if (array != nullptr && isEmpty) array->emptySlots.push_back(SlotName(device));
    if (isEmpty) return;
    if (array != nullptr) device.arrayTag = array->tag;
    device.isSystemMemory = array == nullptr || array->use.ValueOr(eSystemMemory) == eSystemMemory;
    hardware.modules.push_back(std::move(device));
}

void SumUp(TMemoryHardware& hardware) {
    uint32_t count = 0;
    TFact<uint64_t> size = SmbiosFound<uint64_t>(0);
    for (const TMemoryModule& module : hardware.modules) {
        if (!module.isSystemMemory) continue;
        ++count;
        if (size && module.capacity)
            *size.value += *module.capacity;
        else
            size.value.reset();
    }
    hardware.installedModules = SmbiosFound(count);
    hardware.installedSize = count == 0 ? SmbiosMissing<uint64_t>(EAbsence::eNotPresent) : size;
}

}  // namespace

std::string SlotName(const TMemoryModule& module) {
    std::string name = module.deviceLocator.ValueOr(module.tag);
    return module.bankLocator ? name + " (" + *module.bankLocator + ")" : name;
}

TMemoryHardware ParseMemoryHardware(const TFact<std::string>& smbiosTable) {
    TMemoryHardware hardware;
    const EAbsence absence = smbiosTable ? EAbsence::eReadError : smbiosTable.absence;
    hardware.installedSize = SmbiosMissing<uint64_t>(absence);
    hardware.installedModules = SmbiosMissing<uint32_t>(absence);
    if (!smbiosTable) return hardware;
    const std::vector<TSmbiosStructure> structures = ParseSmbiosTable(*smbiosTable);
    ForEachOfType(structures, eMemoryArray, kShortestArray,
                  [&](const TSmbiosStructure& structure, const std::string& tag) {
                      hardware.arrays.push_back(ParseArray(structure, tag));
                  });
    ForEachOfType(structures, eMemoryDevice, kShortestDevice,
                  [&](const TSmbiosStructure& structure, const std::string& tag) {
                      AddDevice(hardware, ParseDevice(structure, tag), FindArray(hardware.arrays, structure));
                  });
    if (IsWholeSmbiosTable(*smbiosTable)) SumUp(hardware);
    return hardware;
}
