#ifndef KYR_PLUGINS_CHASSIS_STRUCTUREFIELDS_H
#define KYR_PLUGINS_CHASSIS_STRUCTUREFIELDS_H

#include "ChassisFacts.h"
#include "SmbiosFields.h"

/// A field of a kind of SMBIOS structure, and the property that it is told by.
struct TStructureField {
    const char* property;
    size_t offset;
    THardwareFact (*parse)(const TSmbiosStructure& structure, size_t offset);
};

// What fields may hold.
THardwareFact ParseText(const TSmbiosStructure& structure, size_t offset);
THardwareFact ParseWord(const TSmbiosStructure& structure, size_t offset);   ///< a byte that stands for a word, or 0
THardwareFact ParseByte(const TSmbiosStructure& structure, size_t offset);   ///< a number, or 0
THardwareFact ParseShort(const TSmbiosStructure& structure, size_t offset);  ///< a number of two bytes, or 0
template <unsigned kBit>
THardwareFact ParseBit(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t>(structure, offset).Map([](uint8_t bits) {
        return std::optional((bits >> kBit & 1) != 0);
    });
}

/// A function on the PCI bus by segment, bus, and device and function: "0000:41:00.0". Not present if there is none.
TFact<std::string> ParsePciAddress(const TSmbiosStructure& structure, size_t segment, size_t bus);

/// The hardware with a property for each field.
template <typename TFields>
THardware ParseHardware(const TSmbiosStructure& structure, const std::string& tag, const TFields& fields) {
    THardware hardware;
    hardware.tag = tag;
    hardware.handle = structure.GetHandle();
    for (const TStructureField& field : fields)
        hardware.properties.push_back({field.property, field.parse(structure, field.offset)});
    return hardware;
}

#endif
