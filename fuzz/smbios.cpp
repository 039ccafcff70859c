// The SMBIOS parser: an entry point of 32 bytes, followed by the table.
#include <algorithm>
#include <cstdint>

#include "ChassisFacts.h"
#include "MemoryDevices.h"
#include "Smbios.h"
#include "support/FuzzSupport.h"

namespace {

void CheckStructures(const std::string& table) {
    size_t taken = 0;
    for (const TSmbiosStructure& structure : ParseSmbiosTable(table)) {
        Require(structure.GetLength() >= 4, "a structure has a header");
        taken += structure.GetLength();
        Require(!structure.FindNumber<uint64_t>(structure.GetLength() - 4), "no number reaches over the end");
        Require(!structure.FindText(structure.GetLength()), "no text has its number behind the end");
        for (size_t offset = 4; offset < structure.GetLength(); ++offset)
            Require(structure.FindText(offset)->size() <= table.size(), "a text stands in the table");
    }
    Require(taken <= table.size(), "structures do not overlap");
}

void CheckHardware(const std::string& table) {
    const TMemoryHardware hardware = ParseMemoryHardware(TFact<std::string>::Of(table, kSmbiosTable));
    uint64_t sum = 0;
    uint32_t count = 0;
    for (const TMemoryModule& module : hardware.modules) {
        Require(!module.capacity || *module.capacity > 0, "an empty slot is no module");
        if (!module.isSystemMemory) continue;
        ++count;
        sum += module.capacity.ValueOr(0);
    }
    const bool isWhole = IsWholeSmbiosTable(table);
    Require(hardware.installedModules.value == (isWhole ? std::optional(count) : std::nullopt),
            "the modules of a whole table are counted");
    Require(!hardware.installedSize || *hardware.installedSize == sum, "capacities add up");
}

bool HasTag(const THardwareList& list, const std::string& tag) {
    return std::any_of(list.begin(), list.end(), [&](const THardware& hardware) { return hardware.tag == tag; });
}

void CheckChassis(const std::string& table) {
    TChassisFacts facts;
    const TStructures structures = ParseSmbiosTable(table);
    for (const auto parse : {ParseChassis, ParsePowerSupplies, ParseSockets, ParseSlots, ParseOnboardDevices,
                             ParseConnectors, ParseControllers, ParseHostInterfaces})
        parse(structures, facts);
    size_t count = 0;
    for (const THardwareList* list :
         {&facts.chassis, &facts.powerSupplies, &facts.sockets, &facts.caches, &facts.slots, &facts.onboardDevices,
          &facts.connectors, &facts.controllers, &facts.hostInterfaces}) {
        count += list->size();
        for (const THardware& hardware : *list) Require(!hardware.properties.empty(), "a structure has fields");
    }
    Require(count <= structures.size(), "no structure is told twice");
    for (const THardware& cache : facts.caches)
        Require(cache.owner.empty() || HasTag(facts.sockets, cache.owner), "a cache belongs to a socket that is told");
    for (const THardware& slot : facts.slots) {
        const std::string address = slot.Text("BusAddress");
        Require(address.empty() || address.size() == 12, "an address has its parts");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TByteReader input(data, size);
    const std::string entryPoint = input.Bytes(32);
    std::string table = input.Bytes(size);
    if (const auto length = ParseSmbiosEntryPoint(entryPoint)) table.resize(std::min(*length, table.size()));
    CheckStructures(table);
    CheckHardware(table);
    CheckChassis(table);
    return 0;
}
