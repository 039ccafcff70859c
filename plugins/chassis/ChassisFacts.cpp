#include "ChassisFacts.h"

#include <algorithm>

#include "BusDevice.h"
#include "SmbiosFields.h"

const THardwareFact* THardware::Find(std::string_view name) const {
    const auto found = std::find_if(properties.begin(), properties.end(),
                                    [name](const THardwareProperty& property) { return property.name == name; });
    return found == properties.end() ? nullptr : &found->fact;
}

std::string THardware::Text(std::string_view name) const {
    const THardwareFact* const fact = Find(name);
    return fact == nullptr ? "" : std::get<TFact<std::string>>(*fact).ValueOr("");
}

TChassisFacts ReadChassis(const TSystemRoot& root) {
    TChassisFacts facts;
    const TFact<std::string> table = ReadSmbiosTable(root);
    facts.smbiosListing = SmbiosListing(root, table);
    const TStructures structures = table ? ParseSmbiosTable(*table) : TStructures();
    for (const auto parse : {ParseChassis, ParsePowerSupplies, ParseSockets, ParseSlots, ParseOnboardDevices,
                             ParseConnectors, ParseControllers, ParseHostInterfaces})
        parse(structures, facts);
    for (const auto read : {ReadSocketProcessors, ReadSlots, ReadControllers, ReadEnclosures, ReadFirmwareResources})
        read(root, facts);
    return facts;
}
