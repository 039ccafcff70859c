#include "MemoryDevices.h"

#include <algorithm>
#include <initializer_list>

#include "Placeholder.h"
#include "Smbios.h"

namespace {

enum EType : uint8_t { eMemoryArray = 16, eMemoryDevice = 17 };
enum EUse : uint16_t { eSystemMemory = 3 };

// Shorter structures lack fields that every version of SMBIOS requires.
constexpr size_t kShortestArray = 0x0F;
constexpr size_t kShortestDevice = 0x15;

constexpr uint64_t kKilo = 1024;
constexpr uint64_t kMega = kKilo * kKilo;

template <typename T>
TFact<T> Missing(EAbsence absence) {
    return TFact<T>::Missing(absence, kSmbiosTable);
}

template <typename T>
TFact<T> Found(T value) {
    return TFact<T>::Of(std::move(value), kSmbiosTable);
}

// A field that the structure lacks is "not supported"; one with a number that means "unknown" is "not present".
template <typename TField, typename TResult = TField>
TFact<TResult> Number(const TSmbiosStructure& structure, size_t offset, std::initializer_list<TField> unknown = {}) {
    const std::optional<TField> number = structure.FindNumber<TField>(offset);
    if (!number) return Missing<TResult>(EAbsence::eNotSupported);
    if (std::find(unknown.begin(), unknown.end(), *number) != unknown.end())
        return Missing<TResult>(EAbsence::eNotPresent);
    return Found<TResult>(*number);
}

TFact<uint16_t> Enumeration(const TSmbiosStructure& structure, size_t offset) {
    return Number<uint8_t, uint16_t>(structure, offset, {0});
}

TFact<uint16_t> Width(const TSmbiosStructure& structure, size_t offset) {
    return Number<uint16_t>(structure, offset, {0, 0xFFFF});
}

TFact<uint64_t> Size(const TSmbiosStructure& structure, size_t offset) {
    return Number<uint64_t>(structure, offset, {UINT64_MAX});
}

TFact<double> Voltage(const TSmbiosStructure& structure, size_t offset) {
    return Number<uint16_t>(structure, offset, {0}).Map([](uint16_t milliVolts) {
        return std::optional(milliVolts / 1000.0);
    });
}

TFact<std::string> Text(const TSmbiosStructure& structure, size_t offset) {
    const std::optional<std::string_view> text = structure.FindText(offset);
    if (!text) return Missing<std::string>(EAbsence::eNotSupported);
    std::string trimmed(Trim(*text));
    if (trimmed.empty() || IsPlaceholder(trimmed)) return Missing<std::string>(EAbsence::eNotPresent);
    return Found(std::move(trimmed));
}

// A speed above 16 bits is in an extended field.
TFact<uint32_t> Speed(const TSmbiosStructure& structure, size_t offset, size_t extendedOffset) {
    if (structure.FindNumber<uint16_t>(offset) == 0xFFFF) return Number<uint32_t>(structure, extendedOffset, {0});
    return Number<uint16_t, uint32_t>(structure, offset, {0});
}

TFact<uint16_t> Rank(const TSmbiosStructure& structure) {
    TFact<uint16_t> rank = Enumeration(structure, 0x1B);
    if (rank) rank.value = *rank & 0xF;
    return rank && *rank == 0 ? Missing<uint16_t>(EAbsence::eNotPresent) : rank;
}

TFact<std::vector<uint16_t>> TypeDetail(const TSmbiosStructure& structure) {
    return Number<uint16_t>(structure, 0x13, {0}).Map([](uint16_t detail) {
        std::vector<uint16_t> bits;
        for (uint16_t bit = 1; bit < 16; ++bit)  // bit 0 is reserved
            if ((detail >> bit & 1) != 0) bits.push_back(bit);
        return std::optional(bits);
    });
}

// In megabytes, or in kilobytes if the highest bit is set. A capacity above 15 bits is in an extended field.
TFact<uint64_t> Capacity(const TSmbiosStructure& structure) {
    const TFact<uint16_t> size = Number<uint16_t>(structure, 0x0C, {0xFFFF});
    const std::optional<uint32_t> extended = structure.FindNumber<uint32_t>(0x1C);
    if (size && *size == 0x7FFF && extended) return Found((*extended & 0x7FFFFFFF) * kMega);
    return size.Map(
        [](uint64_t number) { return std::optional((number & 0x7FFF) * ((number & 0x8000) != 0 ? kKilo : kMega)); });
}

TFact<uint64_t> MaximumCapacity(const TSmbiosStructure& structure) {
    const TFact<uint32_t> kilobytes = Number<uint32_t>(structure, 0x07, {0});
    if (kilobytes && *kilobytes == 0x80000000) return Number<uint64_t>(structure, 0x0F, {0});
    return kilobytes.Map([](uint64_t number) { return std::optional(number * kKilo); });
}

std::string Tag(EType type, size_t index) { return std::to_string(type) + "-" + std::to_string(index); }

TMemoryArray ParseArray(const TSmbiosStructure& structure, size_t index) {
    TMemoryArray array;
    array.tag = Tag(eMemoryArray, index);
    array.handle = structure.GetHandle();
    array.location = Enumeration(structure, 0x04);
    array.use = Enumeration(structure, 0x05);
    array.errorCorrection = Enumeration(structure, 0x06);
    array.maximumCapacity = MaximumCapacity(structure);
    array.slotCount = Number<uint16_t>(structure, 0x0D);
    return array;
}

void ParseTexts(const TSmbiosStructure& structure, TMemoryModule& module) {
    module.deviceLocator = Text(structure, 0x10);
    module.bankLocator = Text(structure, 0x11);
    module.manufacturer = Text(structure, 0x17);
    module.serialNumber = Text(structure, 0x18);
    module.assetTag = Text(structure, 0x19);
    module.partNumber = Text(structure, 0x1A);
    module.firmwareVersion = Text(structure, 0x2B);
}

void ParseKind(const TSmbiosStructure& structure, TMemoryModule& module) {
    module.formFactor = Enumeration(structure, 0x0E);
    module.memoryType = Enumeration(structure, 0x12);
    module.typeDetail = TypeDetail(structure);
    module.technology = Enumeration(structure, 0x28);
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

TMemoryModule ParseDevice(const TSmbiosStructure& structure, size_t index) {
    TMemoryModule module;
    module.tag = Tag(eMemoryDevice, index);
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
    TFact<uint64_t> size = Found<uint64_t>(0);
    for (const TMemoryModule& module : hardware.modules) {
        if (!module.isSystemMemory) continue;
        ++count;
        if (size && module.capacity)
            *size.value += *module.capacity;
        else
            size.value.reset();
    }
    hardware.installedModules = Found(count);
    hardware.installedSize = count == 0 ? Missing<uint64_t>(EAbsence::eNotPresent) : size;
}

// The index counts structures that are too short as well, as the kernel does.
template <typename F>
void ForEachOfType(const std::vector<TSmbiosStructure>& structures, EType type, size_t shortest, F function) {
    size_t index = 0;
    for (const TSmbiosStructure& structure : structures) {
        if (structure.GetType() != type) continue;
        if (structure.GetLength() >= shortest) function(structure, index);
        ++index;
    }
}

}  // namespace

std::string SlotName(const TMemoryModule& module) {
    std::string name = module.deviceLocator.ValueOr(module.tag);
    return module.bankLocator ? name + " (" + *module.bankLocator + ")" : name;
}

TMemoryHardware ParseMemoryHardware(const TFact<std::string>& smbiosTable) {
    TMemoryHardware hardware;
    hardware.installedSize = Missing<uint64_t>(smbiosTable.absence);
    hardware.installedModules = Missing<uint32_t>(smbiosTable.absence);
    if (!smbiosTable) return hardware;
    const std::vector<TSmbiosStructure> structures = ParseSmbiosTable(*smbiosTable);
    ForEachOfType(structures, eMemoryArray, kShortestArray, [&](const TSmbiosStructure& structure, size_t index) {
        hardware.arrays.push_back(ParseArray(structure, index));
    });
    ForEachOfType(structures, eMemoryDevice, kShortestDevice, [&](const TSmbiosStructure& structure, size_t index) {
        AddDevice(hardware, ParseDevice(structure, index), FindArray(hardware.arrays, structure));
    });
    SumUp(hardware);
    return hardware;
}
