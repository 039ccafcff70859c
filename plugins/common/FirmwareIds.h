#ifndef KYR_PLUGINS_COMMON_FIRMWAREIDS_H
#define KYR_PLUGINS_COMMON_FIRMWAREIDS_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

using TUuid = std::array<uint8_t, 16>;

std::string UuidText(const TUuid& uuid);

/// The UUID of version 5 of a name in a namespace: its SHA-1.
std::string NameUuid(const TUuid& nameSpace, std::string_view name);

/// The identifiers of instance ids, such as "USB\VID_0A5C&PID_6412", in the namespace of DNS, as firmware catalogues
/// name devices.
std::vector<std::string> FirmwareIds(const std::vector<std::string>& instanceIds);

struct TPciSubsystem {
    uint16_t vendor;
    uint16_t device;
};

/// The instance ids of a PCI function on the bus "PCI" or of a drive on the bus "NVME", the plainest first.
std::vector<std::string> PciInstanceIds(const std::string& bus, uint16_t vendor, uint16_t device,
                                        std::optional<TPciSubsystem> subsystem, std::optional<uint8_t> revision);

/// A number in upper case hexadecimal digits.
std::string UpperHex(int digits, unsigned number);

#endif
