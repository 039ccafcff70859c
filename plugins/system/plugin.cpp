#include <algorithm>
#include <ctime>
#include <iterator>

#include "DataPlugin.h"
#include "InstanceReport.h"
#include "SystemFacts.h"

namespace {

constexpr const char* kComputerSystem = "MOLTA_ComputerSystem";
constexpr const char* kOperatingSystem = "MOLTA_OperatingSystem";
constexpr const char* kBiosElement = "MOLTA_SystemBIOSElement";
constexpr const char* kBaseBoard = "MOLTA_BaseBoard";
constexpr const char* kProduct = "MOLTA_ORQProduct";
constexpr const char* kInstalledOs = "MOLTA_InstalledOS";
constexpr const char* kSystemBoard = "MOLTA_SystemBaseBoard";
constexpr const char* kSecurity = "MOLTA_SystemSecurity";
constexpr const char* kSecurityOfSystem = "MOLTA_SecurityOfSystem";
constexpr const char* kTpm = "MOLTA_TPM";
constexpr const char* kSystemTpm = "MOLTA_SystemTPM";

constexpr uint16_t kOSTypeLinux = 36;

struct TTextProperty {
    const char* name;
    TFact<std::string> TSystemFacts::*fact;
};

constexpr TTextProperty kComputerTexts[] = {
    {"Name", &TSystemFacts::hostName},
    {"Manufacturer", &TSystemFacts::manufacturer},
    {"ProductName", &TSystemFacts::productName},
    {"ProductVersion", &TSystemFacts::productVersion},
    {"ProductFamily", &TSystemFacts::productFamily},
    {"SKUNumber", &TSystemFacts::skuNumber},
    {"SerialNumber", &TSystemFacts::serialNumber},
    {"UUID", &TSystemFacts::uuid},
    {"MachineID", &TSystemFacts::machineId},
    {"AssetTag", &TSystemFacts::assetTag},
    {"Hypervisor", &TSystemFacts::hypervisor},
    {"Container", &TSystemFacts::container},
    {"StaticHostName", &TSystemFacts::staticHostName},
    {"FullHostName", &TSystemFacts::fullHostName},
    {"PrettyHostName", &TSystemFacts::prettyHostName},
    {"Deployment", &TSystemFacts::deployment},
    {"Location", &TSystemFacts::location},
};

constexpr TTextProperty kOperatingSystemTexts[] = {
    {"CSName", &TSystemFacts::hostName},
    {"Name", &TSystemFacts::osName},
    {"Caption", &TSystemFacts::osPrettyName},
    {"Version", &TSystemFacts::osVersion},
    {"DistributionID", &TSystemFacts::osId},
    {"PointRelease", &TSystemFacts::pointRelease},
    {"Codename", &TSystemFacts::codename},
    {"Variant", &TSystemFacts::variant},
    {"VariantID", &TSystemFacts::variantId},
    {"TimeZone", &TSystemFacts::timeZone},
    {"Locale", &TSystemFacts::locale},
    {"InitSystem", &TSystemFacts::initSystem},
    {"DefaultTarget", &TSystemFacts::defaultTarget},
    {"KernelCommandLine", &TSystemFacts::kernelCommandLine},
    {"KernelRelease", &TSystemFacts::kernelRelease},
    {"KernelVersion", &TSystemFacts::kernelVersion},
    {"Architecture", &TSystemFacts::architecture},
};

constexpr TTextProperty kBiosTexts[] = {
    {"Manufacturer", &TSystemFacts::biosVendor},
    {"Version", &TSystemFacts::biosVersion},
    {"FirmwareRelease", &TSystemFacts::biosRelease},
    {"MachineTypeModel", &TSystemFacts::machineTypeModel},
};

constexpr TTextProperty kBoardTexts[] = {
    {"Manufacturer", &TSystemFacts::boardVendor}, {"Model", &TSystemFacts::boardName},
    {"Version", &TSystemFacts::boardVersion},     {"SerialNumber", &TSystemFacts::boardSerialNumber},
    {"AssetTag", &TSystemFacts::boardAssetTag},
};

// A key must have a value, even where the machine names none.
TInstancePath ComputerPath(const TSystemFacts& facts) {
    return {kComputerSystem, {{"CreationClassName", kComputerSystem}, {"Name", facts.hostName.ValueOr("localhost")}}};
}

TInstancePath OperatingSystemPath(const TSystemFacts& facts) {
    return {kOperatingSystem,
            {{"CSCreationClassName", kComputerSystem},
             {"CSName", facts.hostName.ValueOr("localhost")},
             {"CreationClassName", kOperatingSystem},
             {"Name", facts.osName.ValueOr("Linux")}}};
}

TInstancePath SecurityPath() { return {kSecurity, {{"InstanceID", "Security"}}}; }
TInstancePath TpmPath(const TTpm& tpm) { return DevicePath(kTpm, tpm.name); }
TInstancePath BoardPath() { return {kBaseBoard, {{"CreationClassName", kBaseBoard}, {"Tag", "Base board"}}}; }

template <size_t N>
bool HasAny(const TTextProperty (&properties)[N], const TSystemFacts& facts) {
    return std::any_of(std::begin(properties), std::end(properties),
                       [&](const TTextProperty& property) { return bool(facts.*property.fact); });
}

bool HasOperatingSystem(const TSystemFacts& facts) { return HasAny(kOperatingSystemTexts, facts); }
bool HasBios(const TSystemFacts& facts) { return HasAny(kBiosTexts, facts) || facts.biosDate; }
// Many virtual machines describe no board.
bool HasBoard(const TSystemFacts& facts) { return HasAny(kBoardTexts, facts); }

template <size_t N>
void AddTexts(TInstanceReport& report, const TTextProperty (&properties)[N], const TSystemFacts& facts) {
    for (const TTextProperty& property : properties) report.Add(property.name, facts.*property.fact);
}

TTimestamp LocalTime() {
    const time_t now = time(nullptr);
    struct tm local {};
    localtime_r(&now, &local);
    return {now, static_cast<int32_t>(local.tm_gmtoff / 60)};
}

kyrStatusCode ReportComputerSystem(kyrIOHandle handle, const TSystemFacts& facts) {
    TInstanceReport report(handle, ComputerPath(facts));
    report.Add("Name", facts.hostName);
    AddTexts(report, kComputerTexts, facts);
    report.Add("ChassisType", facts.chassisType);
    report.Add("ContainerMemoryLimit", facts.limits.memory);
    report.Add("ContainerProcessorLimit", facts.limits.processors);
    report.Add("ContainerProcessorSet", facts.limits.processorSet);
    report.Add("ContainerProcessLimit", facts.limits.processes);
    report.Add("FirmwareIDs", facts.firmwareIds);
    return report.Finish();
}

kyrStatusCode ReportOperatingSystem(kyrIOHandle handle, const TSystemFacts& facts) {
    if (!HasOperatingSystem(facts)) return kyrStatusOK;
    TInstanceReport report(handle, OperatingSystemPath(facts));
    AddTexts(report, kOperatingSystemTexts, facts);
    report.Add("BootFirmware", facts.bootFirmware);
    report.Set("OSType", kOSTypeLinux);
    report.Add("SystemUpTime", facts.upTime);
    report.Add("LastBootUpTime", TimestampOf(facts.bootTime));
    report.Add("InstallDate", TimestampOf(facts.installDate));
    report.Add("CurrentTimeZone", facts.currentTimeZone);
    if (facts.isRunning) report.Set("LocalDateTime", LocalTime());
    return report.Finish();
}

kyrStatusCode ReportBios(kyrIOHandle handle, const TSystemFacts& facts) {
    if (!HasBios(facts)) return kyrStatusOK;
    TInstanceReport report(handle, {kBiosElement, {{"Name", "System firmware"}, {"SoftwareElementID", "0"}}});
    AddTexts(report, kBiosTexts, facts);
    report.Add("ReleaseDate", TimestampOf(facts.biosDate));
    return report.Finish();
}

// "Example Systems ES-2200"
std::string BoardCaption(const TSystemFacts& facts) {
    return std::string(Trim(facts.boardVendor.ValueOr("") + ' ' + facts.boardName.ValueOr("Base board")));
}

kyrStatusCode ReportBoard(kyrIOHandle handle, const TSystemFacts& facts) {
    if (!HasBoard(facts)) return kyrStatusOK;
    TInstanceReport report(handle, BoardPath());
    report.Set("Caption", BoardCaption(facts));
    AddTexts(report, kBoardTexts, facts);
    return report.Finish();
}

kyrStatusCode ReportSecurity(kyrIOHandle handle, const TSystemFacts& facts) {
    const TSecurityFacts& security = facts.security;
    if (!security.listing) return kyrStatusOK;
    TInstanceReport report(handle, SecurityPath());
    report.Add("SecureBoot", security.secureBoot);
    report.Add("Lockdown", security.lockdown);
    report.Add("ActiveModules", security.modules);
    report.Add("SELinuxMode", security.selinuxMode);
    report.Add("SELinuxConfiguredMode", security.selinuxConfiguredMode);
    report.Add("SELinuxPolicy", security.selinuxPolicy);
    report.Add("AppArmorEnabled", security.isAppArmorEnabled);
    report.Add("AppArmorProfiles", security.appArmorProfiles);
    report.Add("AppArmorEnforcedProfiles", security.appArmorEnforced);
    report.Add("FIPSMode", security.isFips);
    report.Add("KernelTaint", security.taint);
    return report.Finish();
}

kyrStatusCode ReportTpm(kyrIOHandle handle, const TTpm& tpm) {
    TInstanceReport report(handle, TpmPath(tpm));
    report.Set("Caption", "TPM " + tpm.version.ValueOr("") + (tpm.version ? " " : "") + "(" + tpm.name + ")");
    report.Add("SpecificationVersion", tpm.version);
    report.Add("Driver", tpm.driver);
    return report.Finish();
}

kyrStatusCode ReportTpms(kyrIOHandle handle, const TSystemFacts& facts) {
    return ReportEach(handle, facts.tpms, ReportTpm);
}

kyrStatusCode ReportProduct(kyrIOHandle handle, const TSystemFacts&) {
    return TInstanceReport(
               handle,
               {kProduct,
                {{"Name", "kyrcore"}, {"IdentifyingNumber", "0"}, {"Vendor", "kyrcore"}, {"Version", KYRCORE_VERSION}}})
        .Finish();
}

kyrStatusCode ReportInstalledOs(kyrIOHandle handle, const TSystemFacts& facts) {
    if (!HasOperatingSystem(facts)) return kyrStatusOK;
    return ReportAssociation(handle, kInstalledOs, "GroupComponent", ComputerPath(facts), "PartComponent",
                             OperatingSystemPath(facts));
}

kyrStatusCode ReportSystemBoard(kyrIOHandle handle, const TSystemFacts& facts) {
    if (!HasBoard(facts)) return kyrStatusOK;
    return ReportAssociation(handle, kSystemBoard, "GroupComponent", ComputerPath(facts), "PartComponent", BoardPath());
}

kyrStatusCode ReportSecurityOfSystem(kyrIOHandle handle, const TSystemFacts& facts) {
    if (!facts.security.listing) return kyrStatusOK;
    return ReportAssociation(handle, kSecurityOfSystem, "GroupComponent", ComputerPath(facts), "PartComponent",
                             SecurityPath());
}

kyrStatusCode ReportSystemTpms(kyrIOHandle handle, const TSystemFacts& facts) {
    return ReportSystemDevices(handle, kSystemTpm, facts.tpms, TpmPath);
}

TListing Dmi(const TSystemFacts& facts) { return facts.dmiListing; }
TListing Bios(const TSystemFacts& facts) { return UnlessUnreadable(facts.biosVendor); }
TListing Board(const TSystemFacts& facts) { return UnlessUnreadable(facts.boardVendor); }
TListing OsRelease(const TSystemFacts& facts) { return facts.osReleaseListing; }
TListing Security(const TSystemFacts& facts) { return facts.security.listing; }
TListing Tpms(const TSystemFacts& facts) { return facts.tpmListing; }
TListing KernelStatistics(const TSystemFacts& facts) { return facts.kernelListing; }

const TDataPlugin<TSystemFacts> gPlugin("system", ReadSystem,
                                        {{kComputerSystem, ReportComputerSystem, {Dmi}},
                                         {kOperatingSystem, ReportOperatingSystem, {OsRelease, KernelStatistics}},
                                         {kBiosElement, ReportBios, {Dmi, Bios}},
                                         {kBaseBoard, ReportBoard, {Dmi, Board}},
                                         {kSecurity, ReportSecurity, {Security}},
                                         {kTpm, ReportTpms, {Tpms}},
                                         {kProduct, ReportProduct, {}},
                                         {kInstalledOs, ReportInstalledOs, {OsRelease, KernelStatistics}},
                                         {kSystemBoard, ReportSystemBoard, {Dmi, Board}},
                                         {kSecurityOfSystem, ReportSecurityOfSystem, {Security}},
                                         {kSystemTpm, ReportSystemTpms, {Tpms}}});

}  // namespace
