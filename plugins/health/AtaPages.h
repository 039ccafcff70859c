#ifndef KYR_PLUGINS_HEALTH_ATAPAGES_H
#define KYR_PLUGINS_HEALTH_ATAPAGES_H

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// The registers that an ATA command returns.
struct TAtaRegisters {
    uint8_t error, count, lbaLow, lbaMid, lbaHigh, device, status;
};
/// From the sense data that go with them; nothing if they have none.
std::optional<TAtaRegisters> ParseAtaSense(std::string_view sense);
/// From the form in which recorded machines have them: a byte for each, in their order.
std::optional<TAtaRegisters> ParseAtaRegisters(std::string_view bytes);
/// Whether the registers of CHECK POWER MODE tell that the disk would have to be woken.
bool IsAsleep(const TAtaRegisters& registers);
/// What those of SMART RETURN STATUS say; nothing if they are not as the standard has them.
std::optional<bool> IsFailing(const TAtaRegisters& registers);

struct TAtaIdentity {
    bool hasSmart;
    bool isSmartEnabled;
    bool hasLogs;  ///< those for general purposes
    uint32_t sectorSize;
};
std::optional<TAtaIdentity> ParseAtaIdentify(std::string_view page);

/// Whether an attribute is or was at its threshold.
enum class EAttributeState : uint16_t { eGood = 1, eFailedOnce, eFailingNow };

struct TSmartAttribute {
    uint8_t id;
    uint16_t flags;
    uint8_t current, worst;
    uint64_t raw;
    std::optional<uint8_t> threshold;

    /// Whether the disk is about to fail when it is at its threshold, and not only old.
    bool IsPrefailure() const { return (flags & 1) != 0; }
    /// Nothing without a threshold.
    std::optional<EAttributeState> State() const;
};
/// The name of an attribute whose meaning all makers share; null if it is none.
const char* FindAttributeName(uint8_t id);

struct TSmartData {
    std::vector<TSmartAttribute> attributes;
    uint16_t selfTest;  ///< how the last self-test ended

    const TSmartAttribute* Find(uint8_t id) const;
};
std::optional<TSmartData> ParseSmartData(std::string_view page);
/// Adds to the attributes what the page of thresholds has for them.
void AddThresholds(std::string_view page, TSmartData& data);

/// Whether the directory of logs has this one.
bool HasLog(std::string_view directory, uint8_t log);
/// Whether the list of pages, which is page 0 of device statistics, has this one.
bool HasStatisticsPage(std::string_view list, uint8_t page);
/// The statistic at the offset in that page, if the disk has it and it is valid.
std::optional<uint64_t> StatisticAt(std::string_view bytes, uint8_t page, size_t offset);

#endif
