#ifndef KYR_PLUGINS_HEALTH_DISKPAGES_H
#define KYR_PLUGINS_HEALTH_DISKPAGES_H

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "SystemRoot.h"

/// What a disk is asked for.
enum class EDiskPage {
    eNvmeHealth,
    eNvmeIdentify,
    eAtaPowerMode,
    eAtaIdentify,
    eAtaSmartStatus,
    eAtaSmartData,
    eAtaSmartThresholds,
    eAtaLogDirectory,
    eAtaStatisticsList,
    eAtaGeneralStatistics,
    eAtaSolidStateStatistics,
    eScsiLogPages,
    eScsiTemperature,
    eScsiSolidState,
    eScsiBackgroundScan,
    eScsiExceptions,
};

/// Asks the disk of that kernel name, such as "sda".
using TAskDisk = std::function<TFact<std::string>(const std::string& disk, EDiskPage page)>;

/// Where the page comes from, such as "/dev/sda SMART READ DATA".
std::string SourceOf(const std::string& disk, EDiskPage page);
/// The page of a recorded machine, which has it in a file such as /.kyr/health/sda-ata-smart-data.
TFact<std::string> ReadRecordedPage(const TSystemRoot& root, const std::string& disk, EDiskPage page);

/// The number in so many bytes, at most eight, at the offset; nothing if the page ends before.
std::optional<uint64_t> LittleEndianAt(std::string_view page, size_t offset, size_t length);
std::optional<uint64_t> BigEndianAt(std::string_view page, size_t offset, size_t length);

/// Asks one disk. A disk that could not answer once is not asked again: each question may take until its time is up.
class TDiskPages {
public:
    TDiskPages(std::string disk, const TAskDisk& ask) : fDisk(std::move(disk)), fAsk(ask) {}

    TFact<std::string> Ask(EDiskPage page);

private:
    const std::string fDisk;
    const TAskDisk& fAsk;
    std::optional<EAbsence> fFailure;
};

#endif
