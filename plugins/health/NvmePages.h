#ifndef KYR_PLUGINS_HEALTH_NVMEPAGES_H
#define KYR_PLUGINS_HEALTH_NVMEPAGES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What NVMe log page 02h tells. The disk counts with 128 bits; a number that does not fit is left out.
struct TNvmeHealth {
    uint8_t criticalWarning;  ///< bits
    std::optional<int16_t> temperature;
    uint16_t spare;
    uint16_t spareThreshold;
    uint16_t used;
    std::optional<uint64_t> bytesRead, bytesWritten, readCommands, writeCommands, powerCycles, powerOnHours,
        unsafeShutdowns, mediaErrors, errorLogEntries;
};

/// The temperatures of Identify Controller above which it warns, and shuts down.
struct TNvmeLimits {
    std::optional<int16_t> warning, critical;
};

/// Nothing if the page is too short.
std::optional<TNvmeHealth> ParseNvmeHealth(std::string_view page);
std::optional<TNvmeLimits> ParseNvmeIdentify(std::string_view page);

/// What the bits of the critical warning mean.
std::vector<std::string> NvmeWarnings(uint8_t criticalWarning);
/// Whether any of them says more than that it is too warm or too cold.
bool IsNvmeFailing(uint8_t criticalWarning);

#endif
