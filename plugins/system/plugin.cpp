#include <ctime>

#include "DataPlugin.h"
#include "InstanceReport.h"
#include "SystemFacts.h"

namespace {

constexpr const char* kComputerSystem = "MOLTA_ComputerSystem";
constexpr const char* kOperatingSystem = "MOLTA_OperatingSystem";
constexpr const char* kBiosElement = "MOLTA_SystemBIOSElement";
constexpr const char* kProduct = "MOLTA_ORQProduct";
constexpr const char* kInstalledOs = "MOLTA_InstalledOS";

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
    {"AssetTag", &TSystemFacts::assetTag},
};

constexpr TTextProperty kOperatingSystemTexts[] = {
    {"CSName", &TSystemFacts::hostName},
    {"Name", &TSystemFacts::osName},
    {"Caption", &TSystemFacts::osPrettyName},
    {"Version", &TSystemFacts::osVersion},
    {"DistributionID", &TSystemFacts::osId},
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

// Keys need a value even on a machine that tells none.
TPath ComputerPath(const TSystemFacts& facts) {
    return {kComputerSystem, {{"CreationClassName", kComputerSystem}, {"Name", facts.hostName.ValueOr("localhost")}}};
}

TPath OperatingSystemPath(const TSystemFacts& facts) {
    return {kOperatingSystem,
            {{"CSCreationClassName", kComputerSystem},
             {"CSName", facts.hostName.ValueOr("localhost")},
             {"CreationClassName", kOperatingSystem},
             {"Name", facts.osName.ValueOr("Linux")}}};
}

template <size_t N>
void AddTexts(TInstanceReport& report, const TTextProperty (&properties)[N], const TSystemFacts& facts) {
    for (const TTextProperty& property : properties) report.Add(property.name, facts.*property.fact);
}

void AddMoment(TInstanceReport& report, const char* property, const TFact<int64_t>& seconds) {
    report.Add(property, seconds.Map([](int64_t value) { return std::optional<TMoment>({value}); }));
}

TMoment LocalTime() {
    const time_t now = time(nullptr);
    struct tm local {};
    localtime_r(&now, &local);
    return {now, static_cast<int32_t>(local.tm_gmtoff / 60)};
}

kyrStatusCode ReportComputerSystem(kyrIOHandle handle, const TSystemFacts& facts) {
    TInstanceReport report(handle, ComputerPath(facts));
    AddTexts(report, kComputerTexts, facts);
    report.Add("ChassisType", facts.chassisType);
    return report.Finish();
}

kyrStatusCode ReportOperatingSystem(kyrIOHandle handle, const TSystemFacts& facts) {
    TInstanceReport report(handle, OperatingSystemPath(facts));
    AddTexts(report, kOperatingSystemTexts, facts);
    report.Set("OSType", kOSTypeLinux);
    report.Add("SystemUpTime", facts.upTime);
    AddMoment(report, "LastBootUpTime", facts.bootTime);
    if (facts.isRunning) report.Set("LocalDateTime", LocalTime());
    return report.Finish();
}

kyrStatusCode ReportBios(kyrIOHandle handle, const TSystemFacts& facts) {
    TInstanceReport report(handle, {kBiosElement, {{"Name", "System firmware"}, {"SoftwareElementID", "0"}}});
    AddTexts(report, kBiosTexts, facts);
    AddMoment(report, "ReleaseDate", facts.biosDate);
    return report.Finish();
}

kyrStatusCode ReportProduct(kyrIOHandle handle, const TSystemFacts&) {
    return TInstanceReport(
               handle,
               {kProduct,
                {{"Name", "kyrcore"}, {"IdentifyingNumber", "0"}, {"Vendor", "kyrcore"}, {"Version", KYRCORE_VERSION}}})
        .Finish();
}

kyrStatusCode ReportInstalledOs(kyrIOHandle handle, const TSystemFacts& facts) {
    return ReportTie(handle, kInstalledOs, "GroupComponent", ComputerPath(facts), "PartComponent",
                     OperatingSystemPath(facts));
}

const TDataPlugin<TSystemFacts> kPlugin("system", ReadSystem,
                                        {{kComputerSystem, ReportComputerSystem},
                                         {kOperatingSystem, ReportOperatingSystem},
                                         {kBiosElement, ReportBios},
                                         {kProduct, ReportProduct},
                                         {kInstalledOs, ReportInstalledOs}});

}  // namespace
