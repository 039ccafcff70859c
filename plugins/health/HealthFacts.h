#ifndef KYR_PLUGINS_HEALTH_HEALTHFACTS_H
#define KYR_PLUGINS_HEALTH_HEALTHFACTS_H

#include <cstdint>
#include <string>
#include <vector>

#include "AtaPages.h"
#include "DiskPages.h"
#include "Fact.h"

enum class EAssessment : uint16_t { ePassed = 1, eWarning, eFailing };

/// How well a disk is. What the disk does not tell has no source.
struct TDiskHealth {
    std::string name;  ///< such as "sda"
    TFact<EAssessment> assessment;
    TFact<std::vector<std::string>> warnings;
    TFact<bool> isAsleep;
    TFact<bool> isSmartEnabled;
    TFact<int16_t> temperature, warningTemperature, criticalTemperature;
    TFact<uint16_t> percentageUsed, spare, spareThreshold, selfTest;
    TFact<uint64_t> powerOnHours, powerCycles, unsafeShutdowns;
    TFact<uint64_t> reallocatedSectors, pendingSectors, uncorrectableSectors, mediaErrors, errorLogEntries;
    TFact<uint64_t> bytesRead, bytesWritten, readCommands, writeCommands;
    std::vector<TSmartAttribute> attributes;
    TListing attributeListing;
};

struct THealthFacts {
    TListing listing;  ///< of disks
    std::vector<TDiskHealth> disks;
};

/// The disks of the machine: those of this one are asked, a recorded one has files with what they answered.
THealthFacts ReadHealth(const TSystemRoot& root);
THealthFacts ReadHealth(const TSystemRoot& root, const TAskDisk& ask);

/// What a disk tells that takes ATA commands.
void ReadAtaHealth(TDiskPages& pages, TDiskHealth& disk);

/// Of one that sleeps, nothing.
void LeaveAsleep(TDiskHealth& disk);

/// What a page tells by this function, or why the page could not be read. A page that the disk has not, or that does
/// not have the value, tells nothing.
template <typename TPage, typename F>
auto ToldBy(const TFact<TPage>& page, F find) {
    using TValue = typename decltype(find(*page))::value_type;
    if (!page) return IsUnreadable(page) ? TFact<TValue>::Missing(page.absence, page.source) : TFact<TValue>();
    auto value = find(*page);
    return value ? TFact<TValue>::Of(std::move(*value), page.source) : TFact<TValue>();
}

/// A disk that warns of nothing tells nothing.
inline TFact<std::vector<std::string>> WarningsTold(TFact<std::vector<std::string>> warnings) {
    if (warnings && warnings->empty()) return {};
    return warnings;
}

#endif
