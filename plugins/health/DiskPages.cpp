#include "DiskPages.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr size_t kMostBytes = 4096;

struct TPageName {
    EDiskPage page;
    const char* file;
    const char* name;
};

constexpr TPageName kPageNames[] = {
    {EDiskPage::eNvmeHealth, "nvme-log-02", "NVMe log page 02h"},
    {EDiskPage::eNvmeIdentify, "nvme-identify", "NVMe IDENTIFY"},
    {EDiskPage::eAtaPowerMode, "ata-power-mode", "CHECK POWER MODE"},
    {EDiskPage::eAtaIdentify, "ata-identify", "IDENTIFY DEVICE"},
    {EDiskPage::eAtaSmartStatus, "ata-smart-status", "SMART RETURN STATUS"},
    {EDiskPage::eAtaSmartData, "ata-smart-data", "SMART READ DATA"},
    {EDiskPage::eAtaSmartThresholds, "ata-smart-thresholds", "SMART READ THRESHOLDS"},
    {EDiskPage::eAtaLogDirectory, "ata-log-00", "log 00h"},
    {EDiskPage::eAtaStatisticsList, "ata-log-04-00", "log 04h page 00h"},
    {EDiskPage::eAtaGeneralStatistics, "ata-log-04-01", "log 04h page 01h"},
    {EDiskPage::eAtaSolidStateStatistics, "ata-log-04-07", "log 04h page 07h"},
    {EDiskPage::eScsiLogPages, "scsi-log-00", "log page 00h"},
    {EDiskPage::eScsiTemperature, "scsi-log-0d", "log page 0Dh"},
    {EDiskPage::eScsiSolidState, "scsi-log-11", "log page 11h"},
    {EDiskPage::eScsiBackgroundScan, "scsi-log-15", "log page 15h"},
    {EDiskPage::eScsiExceptions, "scsi-log-2f", "log page 2Fh"},
};

const TPageName& NameOf(EDiskPage page) {
    return *std::find_if(std::begin(kPageNames), std::end(kPageNames),
                         [page](const TPageName& name) { return name.page == page; });
}

}  // namespace

std::string SourceOf(const std::string& disk, EDiskPage page) { return "/dev/" + disk + ' ' + NameOf(page).name; }

TFact<std::string> ReadRecordedPage(const TSystemRoot& root, const std::string& disk, EDiskPage page) {
    TFact<std::string> bytes = root.ReadFile("/.kyr/health/" + disk + '-' + NameOf(page).file, kMostBytes);
    bytes.source = SourceOf(disk, page);
    return bytes;
}

std::optional<uint64_t> BigEndianAt(std::string_view page, size_t offset, size_t length) {
    if (offset > page.size() || page.size() - offset < length) return std::nullopt;
    uint64_t number = 0;
    for (const char c : page.substr(offset, length)) number = number << 8 | static_cast<unsigned char>(c);
    return number;
}

std::optional<uint64_t> LittleEndianAt(std::string_view page, size_t offset, size_t length) {
    if (offset > page.size() || page.size() - offset < length) return std::nullopt;
    const std::string_view bytes = page.substr(offset, length);
    return BigEndianAt(std::string(bytes.rbegin(), bytes.rend()), 0, length);
}

TFact<std::string> TDiskPages::Ask(EDiskPage page) {
    if (fFailure) return TFact<std::string>::Missing(*fFailure, SourceOf(fDisk, page));
    TFact<std::string> bytes = fAsk(fDisk, page);
    if (IsUnreadable(bytes)) fFailure = bytes.absence;
    return bytes;
}
