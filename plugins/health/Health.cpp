#include <string_view>

#include "DiskCommands.h"
#include "HealthFacts.h"
#include "NvmePages.h"
#include "ScsiPages.h"

namespace {

const std::string kFolder = "/sys/class/block";

EAssessment NvmeAssessment(uint8_t criticalWarning) {
    if (criticalWarning == 0) return EAssessment::ePassed;
    return IsNvmeFailing(criticalWarning) ? EAssessment::eFailing : EAssessment::eWarning;
}

void ReadNvmeHealth(TDiskPages& pages, TDiskHealth& disk) {
    const TFact<TNvmeHealth> health = pages.Ask(EDiskPage::eNvmeHealth).Map(ParseNvmeHealth);
    const TFact<TNvmeLimits> limits = pages.Ask(EDiskPage::eNvmeIdentify).Map(ParseNvmeIdentify);
    const auto told = [&health](auto member) {
        return ToldBy(health, [member](const TNvmeHealth& page) { return std::optional(page.*member); });
    };
    const auto counted = [&health](std::optional<uint64_t> TNvmeHealth::*member) {
        return ToldBy(health, [member](const TNvmeHealth& page) { return page.*member; });
    };
    disk.assessment =
        health.Map([](const TNvmeHealth& page) { return std::optional(NvmeAssessment(page.criticalWarning)); });
    disk.warnings = WarningsTold(
        ToldBy(health, [](const TNvmeHealth& page) { return std::optional(NvmeWarnings(page.criticalWarning)); }));
    disk.temperature = ToldBy(health, [](const TNvmeHealth& page) { return page.temperature; });
    disk.warningTemperature = ToldBy(limits, [](const TNvmeLimits& page) { return page.warning; });
    disk.criticalTemperature = ToldBy(limits, [](const TNvmeLimits& page) { return page.critical; });
    disk.percentageUsed = told(&TNvmeHealth::used);
    disk.spare = told(&TNvmeHealth::spare);
    disk.spareThreshold = told(&TNvmeHealth::spareThreshold);
    disk.powerOnHours = counted(&TNvmeHealth::powerOnHours);
    disk.powerCycles = counted(&TNvmeHealth::powerCycles);
    disk.unsafeShutdowns = counted(&TNvmeHealth::unsafeShutdowns);
    disk.mediaErrors = counted(&TNvmeHealth::mediaErrors);
    disk.errorLogEntries = counted(&TNvmeHealth::errorLogEntries);
    disk.bytesRead = counted(&TNvmeHealth::bytesRead);
    disk.bytesWritten = counted(&TNvmeHealth::bytesWritten);
    disk.readCommands = counted(&TNvmeHealth::readCommands);
    disk.writeCommands = counted(&TNvmeHealth::writeCommands);
}

EAssessment ScsiAssessment(EScsiException exception) {
    if (exception == EScsiException::eFailure) return EAssessment::eFailing;
    return exception == EScsiException::eWarning ? EAssessment::eWarning : EAssessment::ePassed;
}

// Only the pages that the disk lists.
void ReadScsiHealth(TDiskPages& pages, TDiskHealth& disk) {
    const TFact<std::string> list = pages.Ask(EDiskPage::eScsiLogPages);
    const auto ask = [&](EDiskPage page, uint8_t number) {
        if (!list) return TFact<std::string>::Missing(list.absence, list.source);
        return HasScsiLogPage(*list, number) ? pages.Ask(page)
                                             : TFact<std::string>::Missing(EAbsence::eNotSupported, list.source);
    };
    const TFact<std::string> temperatures = ask(EDiskPage::eScsiTemperature, 0x0d);
    disk.assessment = ask(EDiskPage::eScsiExceptions, 0x2f).Map(ParseScsiExceptions).Map([](EScsiException exception) {
        return std::optional(ScsiAssessment(exception));
    });
    disk.temperature = ToldBy(temperatures, ScsiTemperature);
    disk.warningTemperature = ToldBy(temperatures, ScsiReferenceTemperature);
    disk.percentageUsed = ToldBy(ask(EDiskPage::eScsiSolidState, 0x11), ScsiPercentageUsed);
    disk.powerOnHours = ToldBy(ask(EDiskPage::eScsiBackgroundScan, 0x15), ScsiPowerOnHours);
}

/// How a disk can be asked. One behind a bridge or a controller of volumes cannot: cheap bridges hang for good when
/// they get a command that they do not know.
enum class EKind { eNvme, eAta, eSas, eUnknown };

EKind KindOf(const TSystemRoot& root, const std::string& name) {
    if (StartsWith(name, "nvme")) return EKind::eNvme;
    const std::string path = root.ReadLink(kFolder + '/' + name).ValueOr("");
    if (path.find("/usb") != std::string::npos) return EKind::eUnknown;
    if (root.ReadText(kFolder + '/' + name + "/device/vendor").ValueOr("") == "ATA") return EKind::eAta;
    return path.find("/end_device-") != std::string::npos ? EKind::eSas : EKind::eUnknown;
}

void AskKind(EKind kind, TDiskPages& pages, TDiskHealth& disk) {
    switch (kind) {
        case EKind::eNvme:
            return ReadNvmeHealth(pages, disk);
        case EKind::eAta:
            return ReadAtaHealth(pages, disk);
        case EKind::eSas:
            return ReadScsiHealth(pages, disk);
        case EKind::eUnknown:
            disk.assessment = TFact<EAssessment>::Missing(EAbsence::eNotSupported, "/dev/" + disk.name);
    }
}

// To open a disk that the kernel has suspended wakes it.
TDiskHealth ReadDisk(const TSystemRoot& root, const std::string& name, const TAskDisk& ask) {
    TDiskHealth disk{};
    disk.name = name;
    disk.attributeListing = TListing::Of(true, kFolder);
    const EKind kind = KindOf(root, name);
    const TFact<std::string> power = root.ReadText(kFolder + '/' + name + "/device/power/runtime_status");
    if (power.ValueOr("") == "suspended") {
        disk.isAsleep = TFact<bool>::Of(true, power.source);
        if (kind == EKind::eAta) LeaveAsleep(disk);
        return disk;
    }
    TDiskPages pages(name, ask);
    AskKind(kind, pages, disk);
    return disk;
}

// Of the kinds of which some can be asked: no partition, and no path such as "nvme0c0n1" to a disk that has several.
bool IsDisk(const TSystemRoot& root, const std::string& name) {
    if (!StartsWith(name, "sd") && !StartsWith(name, "nvme")) return false;
    if (StartsWith(name, "nvme") && name.find('c') != std::string::npos) return false;
    return !root.Exists(kFolder + '/' + name + "/partition");
}

}  // namespace

THealthFacts ReadHealth(const TSystemRoot& root) {
    if (root.IsRunningMachine()) return ReadHealth(root, AskDisk);
    return ReadHealth(root,
                      [&root](const std::string& disk, EDiskPage page) { return ReadRecordedPage(root, disk, page); });
}

THealthFacts ReadHealth(const TSystemRoot& root, const TAskDisk& ask) {
    const TFact<std::vector<std::string>> names = root.ListKind(kFolder);
    THealthFacts facts;
    facts.listing = root.CheckEntries(kFolder, names);
    for (const std::string& name : names.ValueOr({}))
        if (IsDisk(root, name)) facts.disks.push_back(ReadDisk(root, name, ask));
    return facts;
}
