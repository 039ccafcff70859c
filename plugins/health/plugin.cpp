#include "DataPlugin.h"
#include "HealthFacts.h"
#include "InstanceReport.h"

namespace {

constexpr const char* kHealth = "MOLTA_DiskHealth";
constexpr const char* kAttribute = "MOLTA_SMARTAttribute";
constexpr const char* kHealthOfDisk = "MOLTA_DiskDriveHealth";
constexpr const char* kAttributeOfDisk = "MOLTA_DiskHealthAttribute";
// Declared by the plugin "storage", which may be missing.
constexpr const char* kDisk = "MOLTA_DiskDrive";

std::string FileOf(const TDiskHealth& disk) { return "/dev/" + disk.name; }

TInstancePath PathOf(const TDiskHealth& disk) { return {kHealth, {{"InstanceID", FileOf(disk)}}}; }
TInstancePath PathOf(const TDiskHealth& disk, const TSmartAttribute& attribute) {
    return {kAttribute, {{"InstanceID", FileOf(disk) + ' ' + std::to_string(attribute.id)}}};
}

template <typename E>
TFact<uint16_t> NumberOf(const TFact<E>& fact) {
    return fact.Map([](E value) { return std::optional(static_cast<uint16_t>(value)); });
}

void AddCounts(TInstanceReport& report, const TDiskHealth& disk) {
    const std::pair<const char*, const TFact<uint64_t>&> counts[] = {
        {"PowerOnTime", disk.powerOnHours},
        {"PowerCycles", disk.powerCycles},
        {"UnsafeShutdowns", disk.unsafeShutdowns},
        {"ReallocatedSectors", disk.reallocatedSectors},
        {"PendingSectors", disk.pendingSectors},
        {"UncorrectableSectors", disk.uncorrectableSectors},
        {"MediaErrors", disk.mediaErrors},
        {"ErrorLogEntries", disk.errorLogEntries},
        {"BytesRead", disk.bytesRead},
        {"BytesWritten", disk.bytesWritten},
        {"ReadCommands", disk.readCommands},
        {"WriteCommands", disk.writeCommands},
    };
    for (const auto& [property, count] : counts) report.Add(property, count);
}

kyrStatusCode ReportDisk(kyrIOHandle handle, const TDiskHealth& disk) {
    TInstanceReport report(handle, PathOf(disk));
    report.Set("Caption", "Health of " + FileOf(disk));
    report.Add("SelfAssessment", NumberOf(disk.assessment));
    report.Add("Warnings", disk.warnings);
    report.Add("Asleep", disk.isAsleep);
    report.Add("SMARTEnabled", disk.isSmartEnabled);
    report.Add("PercentageUsed", disk.percentageUsed);
    report.Add("AvailableSpare", disk.spare);
    report.Add("SpareThreshold", disk.spareThreshold);
    report.Add("Temperature", disk.temperature);
    report.Add("WarningTemperature", disk.warningTemperature);
    report.Add("CriticalTemperature", disk.criticalTemperature);
    report.Add("LastSelfTest", disk.selfTest);
    AddCounts(report, disk);
    return report.Finish();
}

kyrStatusCode ReportAttribute(kyrIOHandle handle, const TDiskHealth& disk, const TSmartAttribute& attribute) {
    TInstanceReport report(handle, PathOf(disk, attribute));
    const char* const name = FindAttributeName(attribute.id);
    report.Set("Disk", FileOf(disk));
    report.Add("AttributeID", TFact<uint8_t>::Of(attribute.id, disk.attributeListing.source));
    if (name != nullptr) report.Set("AttributeName", name);
    report.Set("CurrentValue", attribute.current);
    report.Set("WorstValue", attribute.worst);
    if (attribute.threshold) report.Set("Threshold", *attribute.threshold);
    if (const auto state = attribute.State()) report.Set("State", static_cast<uint16_t>(*state));
    report.Set("RawValue", attribute.raw);
    report.Set("Flags", attribute.flags);
    report.Set("PredictsFailure", attribute.IsPrefailure());
    return report.Finish();
}

kyrStatusCode ReportDisks(kyrIOHandle handle, const THealthFacts& facts) {
    return ReportEach(handle, facts.disks, ReportDisk);
}

kyrStatusCode ReportAttributes(kyrIOHandle handle, const THealthFacts& facts) {
    return ReportEach(facts.disks, [&](const TDiskHealth& disk) {
        return ReportEach(disk.attributes,
                          [&](const TSmartAttribute& attribute) { return ReportAttribute(handle, disk, attribute); });
    });
}

kyrStatusCode ReportHealthOfDisks(kyrIOHandle handle, const THealthFacts& facts) {
    if (!IsKnownClass(handle, kDisk)) return kyrStatusOK;
    return ReportEach(facts.disks, [&](const TDiskHealth& disk) {
        return ReportAssociation(handle, kHealthOfDisk, "Antecedent", DevicePath(kDisk, FileOf(disk)), "Dependent",
                                 PathOf(disk));
    });
}

kyrStatusCode ReportAttributesOfDisks(kyrIOHandle handle, const THealthFacts& facts) {
    return ReportEach(facts.disks, [&](const TDiskHealth& disk) {
        return ReportEach(disk.attributes, [&](const TSmartAttribute& attribute) {
            return ReportAssociation(handle, kAttributeOfDisk, "GroupComponent", PathOf(disk), "PartComponent",
                                     PathOf(disk, attribute));
        });
    });
}

TListing Disks(const THealthFacts& facts) { return facts.listing; }

TListing Attributes(const THealthFacts& facts) {
    for (const TDiskHealth& disk : facts.disks)
        if (!disk.attributeListing) return disk.attributeListing;
    return facts.listing;
}

const TDataPlugin<THealthFacts> gPlugin("health", ReadHealth,
                                        {{kHealth, ReportDisks, {Disks}},
                                         {kAttribute, ReportAttributes, {Attributes}},
                                         {kHealthOfDisk, ReportHealthOfDisks, {Disks}},
                                         {kAttributeOfDisk, ReportAttributesOfDisks, {Attributes}}});

}  // namespace
