#include "StructureFields.h"

#include <cstdio>

THardwareFact ParseText(const TSmbiosStructure& structure, size_t offset) { return SmbiosText(structure, offset); }

THardwareFact ParseWord(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosEnumeration(structure, offset);
}

THardwareFact ParseByte(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t, uint16_t>(structure, offset, {0});
}

THardwareFact ParseShort(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint16_t>(structure, offset, {0});
}

// Bytes of 0xFF say that there is no such address. 0000:00:00.0 is the host bridge, which firmware leaves in fields
// that it never filled.
TFact<std::string> ParsePciAddress(const TSmbiosStructure& structure, size_t segment, size_t bus) {
    const std::optional<uint8_t> function = structure.FindNumber<uint8_t>(bus + 1);
    if (!function) return SmbiosMissing<std::string>(EAbsence::eNotSupported);
    const unsigned domain = *structure.FindNumber<uint16_t>(segment), number = *structure.FindNumber<uint8_t>(bus);
    if (number == 0xFF || (domain == 0 && number == 0 && *function == 0))
        return SmbiosMissing<std::string>(EAbsence::eNotPresent);
    char text[16];
    std::snprintf(text, sizeof text, "%04x:%02x:%02x.%x", domain, number, *function >> 3, *function & 7);
    return SmbiosFound<std::string>(text);
}
