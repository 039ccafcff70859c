#ifndef KYR_PLUGINS_HEALTH_SCSIPAGES_H
#define KYR_PLUGINS_HEALTH_SCSIPAGES_H

#include <cstdint>
#include <optional>
#include <string_view>

/// Whether the list of log pages, which is page 0, has this one.
bool HasScsiLogPage(std::string_view list, uint8_t page);
/// The value of a parameter of the log page; empty if it has no such parameter.
std::string_view FindScsiParameter(std::string_view bytes, uint8_t page, uint16_t code);

/// What the page of informational exceptions (2Fh) says.
enum class EScsiException { eNone, eWarning, eFailure };
std::optional<EScsiException> ParseScsiExceptions(std::string_view bytes);
/// Of the page of temperatures (0Dh): the present one, or the highest at which the disk may be used.
std::optional<int16_t> ScsiTemperature(std::string_view bytes);
std::optional<int16_t> ScsiReferenceTemperature(std::string_view bytes);
/// How much of its life a solid state disk has used, in percent (11h).
std::optional<uint16_t> ScsiPercentageUsed(std::string_view bytes);
/// From the page of background scans (15h), which counts minutes.
std::optional<uint64_t> ScsiPowerOnHours(std::string_view bytes);

#endif
