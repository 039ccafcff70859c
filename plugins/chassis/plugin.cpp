// The plugin "chassis": the housing of the computer and what it has room for: sockets, slots, bays; and what manages
// it.
#include "ChassisFacts.h"
#include "DataPlugin.h"
#include "InstanceReport.h"

namespace {

constexpr char kChassis[] = "MOLTA_Chassis";
constexpr char kSocket[] = "MOLTA_ProcessorSocket";
constexpr char kCache[] = "MOLTA_CacheChip";
constexpr char kSlot[] = "MOLTA_Slot";
constexpr char kOnboardDevice[] = "MOLTA_OnboardDevice";
constexpr char kConnector[] = "MOLTA_PortConnector";
constexpr char kPowerSupply[] = "MOLTA_PowerSupplyUnit";
constexpr char kEnclosure[] = "MOLTA_StorageEnclosure";
constexpr char kBay[] = "MOLTA_DriveBay";
constexpr char kController[] = "MOLTA_ManagementController";
constexpr char kHostInterface[] = "MOLTA_RedfishHostInterface";
constexpr char kFirmware[] = "MOLTA_FirmwareResource";

constexpr char kSystemHardware[] = "MOLTA_SystemHardware";
constexpr char kSocketProcessor[] = "MOLTA_ProcessorInSocket";
constexpr char kSocketCache[] = "MOLTA_CacheOfSocket";
constexpr char kSlotDevice[] = "MOLTA_PCIDeviceInSlot";
constexpr char kBoardDevice[] = "MOLTA_PCIDeviceOnBoard";
constexpr char kEnclosureBay[] = "MOLTA_BayOfEnclosure";
constexpr char kBayDisk[] = "MOLTA_DiskInBay";

// Declared by other plugins, which may be missing.
constexpr char kPciDevice[] = "MOLTA_PCIDevice";
constexpr char kProcessor[] = "MOLTA_Processor";
constexpr char kDisk[] = "MOLTA_DiskDrive";

TInstancePath PathOf(const char* className, const std::string& tag) {
    if (className == kController) return DevicePath(className, tag);
    if (className == kHostInterface) return ScopedPath(className, tag);
    if (className == kFirmware) return {className, {{"InstanceID", tag}}};
    return {className, {{"CreationClassName", className}, {"Tag", tag}}};
}

using TList = THardwareList TChassisFacts::*;

struct TKind {
    const char* className;
    TList list;
};

constexpr TKind kKinds[] = {
    {kChassis, &TChassisFacts::chassis},
    {kSocket, &TChassisFacts::sockets},
    {kCache, &TChassisFacts::caches},
    {kSlot, &TChassisFacts::slots},
    {kOnboardDevice, &TChassisFacts::onboardDevices},
    {kConnector, &TChassisFacts::connectors},
    {kPowerSupply, &TChassisFacts::powerSupplies},
    {kEnclosure, &TChassisFacts::enclosures},
    {kBay, &TChassisFacts::bays},
    {kController, &TChassisFacts::controllers},
    {kHostInterface, &TChassisFacts::hostInterfaces},
    {kFirmware, &TChassisFacts::firmware},
};

template <const char* kClass, TList kList>
kyrStatusCode ReportHardware(kyrIOHandle handle, const TChassisFacts& facts) {
    return ReportEach(facts.*kList, [&](const THardware& hardware) {
        TInstanceReport report(handle, PathOf(kClass, hardware.tag));
        report.Set("Caption", hardware.caption);
        for (const THardwareProperty& property : hardware.properties)
            std::visit([&](const auto& fact) { report.Add(property.name, fact); }, property.fact);
        return report.Finish();
    });
}

kyrStatusCode ReportSystemHardware(kyrIOHandle handle, const TChassisFacts& facts) {
    return ReportEach(kKinds, [&](const TKind& kind) {
        return ReportSystemDevices(handle, kSystemHardware, facts.*kind.list,
                                   [&](const THardware& hardware) { return PathOf(kind.className, hardware.tag); });
    });
}

/// Ties hardware to the devices that it holds.
template <const char* kTie, const char* kClass, TList kList, const char* kDevice>
kyrStatusCode ReportDevices(kyrIOHandle handle, const TChassisFacts& facts) {
    if (!IsKnownClass(handle, kDevice)) return kyrStatusOK;
    return ReportEach(facts.*kList, [&](const THardware& hardware) {
        return ReportEach(hardware.devices, [&](const std::string& device) {
            return ReportAssociation(handle, kTie, "Antecedent", PathOf(kClass, hardware.tag), "Dependent",
                                     DevicePath(kDevice, device));
        });
    });
}

/// Ties hardware to what it belongs to.
template <const char* kTie, const char* kOwner, const char* kClass, TList kList>
kyrStatusCode ReportParts(kyrIOHandle handle, const TChassisFacts& facts) {
    return ReportEach(facts.*kList, [&](const THardware& hardware) {
        if (hardware.owner.empty()) return kyrStatusOK;
        return ReportAssociation(handle, kTie, "GroupComponent", PathOf(kOwner, hardware.owner), "PartComponent",
                                 PathOf(kClass, hardware.tag));
    });
}

template <TListing TChassisFacts::*kListing>
TListing Source(const TChassisFacts& facts) {
    return facts.*kListing;
}

constexpr auto kSmbios = Source<&TChassisFacts::smbiosListing>;
constexpr auto kSlots = Source<&TChassisFacts::slotListing>;
constexpr auto kEnclosures = Source<&TChassisFacts::enclosureListing>;
constexpr auto kIpmi = Source<&TChassisFacts::ipmiListing>;
constexpr auto kResources = Source<&TChassisFacts::firmwareListing>;
constexpr auto kProcessors = Source<&TChassisFacts::processorListing>;
constexpr auto kPci = Source<&TChassisFacts::pciListing>;
constexpr auto kDisks = Source<&TChassisFacts::diskListing>;

using TFacts = TChassisFacts;

const TDataPlugin<TChassisFacts> gPlugin(
    "chassis", ReadChassis,
    {{kChassis, ReportHardware<kChassis, &TFacts::chassis>, {kSmbios}},
     {kSocket, ReportHardware<kSocket, &TFacts::sockets>, {kSmbios}},
     {kCache, ReportHardware<kCache, &TFacts::caches>, {kSmbios}},
     {kSlot, ReportHardware<kSlot, &TFacts::slots>, {kSmbios, kSlots}},
     {kOnboardDevice, ReportHardware<kOnboardDevice, &TFacts::onboardDevices>, {kSmbios}},
     {kConnector, ReportHardware<kConnector, &TFacts::connectors>, {kSmbios}},
     {kPowerSupply, ReportHardware<kPowerSupply, &TFacts::powerSupplies>, {kSmbios}},
     {kEnclosure, ReportHardware<kEnclosure, &TFacts::enclosures>, {kEnclosures}},
     {kBay, ReportHardware<kBay, &TFacts::bays>, {kEnclosures}},
     {kController, ReportHardware<kController, &TFacts::controllers>, {kSmbios, kIpmi}},
     {kHostInterface, ReportHardware<kHostInterface, &TFacts::hostInterfaces>, {kSmbios}},
     {kFirmware, ReportHardware<kFirmware, &TFacts::firmware>, {kResources}},
     {kSystemHardware, ReportSystemHardware, {kSmbios, kSlots, kEnclosures, kIpmi, kResources}},
     {kSocketProcessor, ReportDevices<kSocketProcessor, kSocket, &TFacts::sockets, kProcessor>, {kSmbios, kProcessors}},
     {kSocketCache, ReportParts<kSocketCache, kSocket, kCache, &TFacts::caches>, {kSmbios}},
     {kSlotDevice, ReportDevices<kSlotDevice, kSlot, &TFacts::slots, kPciDevice>, {kSmbios, kSlots, kPci}},
     {kBoardDevice, ReportDevices<kBoardDevice, kOnboardDevice, &TFacts::onboardDevices, kPciDevice>, {kSmbios, kPci}},
     {kEnclosureBay, ReportParts<kEnclosureBay, kEnclosure, kBay, &TFacts::bays>, {kEnclosures}},
     {kBayDisk, ReportDevices<kBayDisk, kBay, &TFacts::bays, kDisk>, {kEnclosures, kDisks}}});

}  // namespace
