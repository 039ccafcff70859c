// The network between the computer and the controller that manages it, by which the controller offers Redfish.
#include <sys/socket.h>

#include <cstdio>

#include "Netlink.h"
#include "StructureFields.h"

namespace {

constexpr uint8_t kHostInterface = 42, kNetworkInterface = 0x40, kRedfishOverIp = 4;
constexpr size_t kShortestInterface = 0x09;
constexpr size_t kRecordSize = 91;  // without the host name at its end

std::string BytesAt(const TSmbiosStructure& structure, size_t offset, size_t size) {
    std::string bytes;
    for (size_t i = 0; i < size; ++i)
        if (const auto byte = structure.FindNumber<uint8_t>(offset + i)) bytes += static_cast<char>(*byte);
    return bytes;
}

bool IsZero(const std::string& bytes) { return bytes.find_first_not_of('\0') == std::string::npos; }

// Of the family that a byte tells. Zeros are no address.
TFact<std::string> ParseAddress(const TSmbiosStructure& structure, size_t format, size_t offset) {
    const bool isShort = structure.FindNumber<uint8_t>(format) == 1;
    const std::string bytes = BytesAt(structure, offset, isShort ? 4 : 16);
    const std::optional<std::string> text = AddressText(isShort ? AF_INET : AF_INET6, bytes);
    return text && !IsZero(bytes) ? SmbiosFound(*text) : SmbiosMissing<std::string>(EAbsence::eNotPresent);
}

// The first three parts are numbers with their lowest byte in front.
TFact<std::string> ParseUuid(const TSmbiosStructure& structure, size_t offset) {
    const std::string rest = BytesAt(structure, offset + 8, 8);
    char text[40];
    int length =
        std::snprintf(text, sizeof text, "%08x-%04x-%04x-", *structure.FindNumber<uint32_t>(offset),
                      *structure.FindNumber<uint16_t>(offset + 4), *structure.FindNumber<uint16_t>(offset + 6));
    for (size_t i = 0; i < rest.size(); ++i)
        length += std::snprintf(text + length, sizeof text - length, i == 2 ? "-%02x" : "%02x",
                                static_cast<uint8_t>(rest[i]));
    const bool isNull = IsZero(BytesAt(structure, offset, 16));
    return isNull ? SmbiosMissing<std::string>(EAbsence::eNotPresent) : SmbiosFound<std::string>(text);
}

TFact<std::string> ParseHostName(const TSmbiosStructure& structure, size_t offset) {
    const std::string bytes = BytesAt(structure, offset + 1, structure.FindNumber<uint8_t>(offset).value_or(0));
    const std::string name(Trim(bytes.substr(0, bytes.find('\0'))));
    return name.empty() ? SmbiosMissing<std::string>(EAbsence::eNotPresent) : SmbiosFound(name);
}

THardware ParseRedfish(const TSmbiosStructure& structure, const std::string& tag, size_t record) {
    THardware interface;
    interface.tag = tag;
    interface.handle = structure.GetHandle();
    interface.caption = "Redfish host interface " + tag;
    interface.properties = {{"ServiceUUID", ParseUuid(structure, record)},
                            {"HostIPAssignment", ParseWord(structure, record + 16)},
                            {"HostAddress", ParseAddress(structure, record + 17, record + 18)},
                            {"HostMask", ParseAddress(structure, record + 17, record + 34)},
                            {"ServiceIPDiscovery", ParseWord(structure, record + 50)},
                            {"ServiceAddress", ParseAddress(structure, record + 51, record + 52)},
                            {"ServiceMask", ParseAddress(structure, record + 51, record + 68)},
                            {"ServicePort", ParseShort(structure, record + 84)},
                            {"ServiceVLAN", SmbiosNumber<uint32_t>(structure, record + 86, {0})},
                            {"ServiceHostName", ParseHostName(structure, record + 90)}};
    return interface;
}

// Data of the interface come first, and then records, one for each protocol.
std::optional<size_t> FindRedfishRecord(const TSmbiosStructure& structure) {
    if (structure.FindNumber<uint8_t>(0x04) != kNetworkInterface) return std::nullopt;
    size_t at = 0x06 + *structure.FindNumber<uint8_t>(0x05);
    const unsigned count = structure.FindNumber<uint8_t>(at++).value_or(0);
    for (unsigned i = 0; i < count; ++i) {
        const size_t length = structure.FindNumber<uint8_t>(at + 1).value_or(0);
        if (structure.FindNumber<uint8_t>(at) == kRedfishOverIp && length >= kRecordSize &&
            at + 2 + kRecordSize <= structure.GetLength())
            return at + 2;
        at += 2 + length;
    }
    return std::nullopt;
}

}  // namespace

void ParseHostInterfaces(const TStructures& structures, TChassisFacts& facts) {
    ForEachOfType(structures, kHostInterface, kShortestInterface, [&](const auto& structure, const std::string& tag) {
        if (const std::optional<size_t> record = FindRedfishRecord(structure))
            facts.hostInterfaces.push_back(ParseRedfish(structure, tag, *record));
    });
}
