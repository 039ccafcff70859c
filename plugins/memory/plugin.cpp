#include <algorithm>
#include <iterator>

#include "DataPlugin.h"
#include "InstanceReport.h"
#include "MemoryFacts.h"

namespace {

constexpr const char* kSystemMemory = "MOLTA_SystemMemory";
constexpr const char* kSwapArea = "MOLTA_SwapArea";
constexpr const char* kMemoryArray = "MOLTA_MemoryArray";
constexpr const char* kPhysicalMemory = "MOLTA_PhysicalMemory";
constexpr const char* kSystemMemoryDevice = "MOLTA_SystemMemoryDevice";
constexpr const char* kSystemMemoryHardware = "MOLTA_SystemMemoryHardware";
constexpr const char* kMemoryArrayModule = "MOLTA_MemoryArrayModule";

TInstancePath SystemMemoryPath() { return DevicePath(kSystemMemory, "memory"); }
TInstancePath SwapAreaPath(const TSwapArea& area) { return DevicePath(kSwapArea, area.path); }

TInstancePath HardwarePath(const char* className, const std::string& tag) {
    return {className, {{"CreationClassName", className}, {"Tag", tag}}};
}

TInstancePath ArrayPath(const TMemoryArray& array) { return HardwarePath(kMemoryArray, array.tag); }
TInstancePath ModulePath(const TMemoryModule& module) { return HardwarePath(kPhysicalMemory, module.tag); }

struct TUsageProperty {
    const char* name;
    TFact<uint64_t> TMemoryUsage::*fact;
};

constexpr TUsageProperty kUsageProperties[] = {
    {"TotalSize", &TMemoryUsage::total},
    {"FreeSize", &TMemoryUsage::free},
    {"AvailableSize", &TMemoryUsage::available},
    {"BufferSize", &TMemoryUsage::buffers},
    {"CachedSize", &TMemoryUsage::cached},
    {"ReclaimableSize", &TMemoryUsage::reclaimable},
    {"SharedSize", &TMemoryUsage::shared},
    {"SwapTotalSize", &TMemoryUsage::swapTotal},
    {"SwapFreeSize", &TMemoryUsage::swapFree},
    {"HugePages", &TMemoryUsage::hugePages},
    {"FreeHugePages", &TMemoryUsage::hugePagesFree},
    {"HugePageSize", &TMemoryUsage::hugePageSize},
};

bool HasMemory(const TMemoryFacts& facts) {
    return facts.hardware.installedModules ||
           std::any_of(std::begin(kUsageProperties), std::end(kUsageProperties),
                       [&](const TUsageProperty& property) { return bool(facts.usage.*property.fact); });
}

kyrStatusCode ReportSystemMemory(kyrIOHandle handle, const TMemoryFacts& facts) {
    if (!HasMemory(facts)) return kyrStatusOK;
    TInstanceReport report(handle, SystemMemoryPath());
    report.Set("Caption", "Memory of the system");
    for (const TUsageProperty& property : kUsageProperties) report.Add(property.name, facts.usage.*property.fact);
    report.Add("InstalledSize", facts.hardware.installedSize);
    report.Add("InstalledModules", facts.hardware.installedModules);
    return report.Finish();
}

kyrStatusCode ReportSwapArea(kyrIOHandle handle, const TSwapArea& area) {
    TInstanceReport report(handle, SwapAreaPath(area));
    report.Set("Caption", "Swap area " + area.path);
    report.Add("Kind", area.kind);
    report.Add("Size", area.size);
    report.Add("UsedSize", area.used);
    report.Add("Priority", area.priority);
    report.Add("Deleted", area.isDeleted);
    return report.Finish();
}

kyrStatusCode ReportArray(kyrIOHandle handle, const TMemoryArray& array) {
    TInstanceReport report(handle, ArrayPath(array));
    report.Set("Caption", "Memory array " + array.tag);
    report.Add("Location", array.location);
    report.Add("Use", array.use);
    report.Add("ErrorCorrection", array.errorCorrection);
    report.Add("MaximumCapacity", array.maximumCapacity);
    report.Add("Slots", array.slotCount);
    if (!array.emptySlots.empty()) report.Set("EmptySlots", array.emptySlots);
    return report.Finish();
}

void AddIdentity(TInstanceReport& report, const TMemoryModule& module) {
    report.Add("DeviceLocator", module.deviceLocator);
    report.Add("BankLocator", module.bankLocator);
    report.Add("Manufacturer", module.manufacturer);
    report.Add("PartNumber", module.partNumber);
    report.Add("SerialNumber", module.serialNumber);
    report.Add("AssetTag", module.assetTag);
    report.Add("FirmwareVersion", module.firmwareVersion);
}

void AddKind(TInstanceReport& report, const TMemoryModule& module) {
    report.Add("FormFactor", module.formFactor);
    report.Add("MemoryType", module.memoryType);
    report.Add("TypeDetail", module.typeDetail);
    report.Add("Technology", module.technology);
    report.Add("Ranks", module.rank);
}

void AddMeasures(TInstanceReport& report, const TMemoryModule& module) {
    report.Add("Capacity", module.capacity);
    report.Add("VolatileCapacity", module.volatileSize);
    report.Add("NonVolatileCapacity", module.nonVolatileSize);
    report.Add("TotalWidth", module.totalWidth);
    report.Add("DataWidth", module.dataWidth);
    report.Add("Speed", module.speed);
    report.Add("ConfiguredSpeed", module.configuredSpeed);
    report.Add("MinimumVoltage", module.minimumVoltage);
    report.Add("MaximumVoltage", module.maximumVoltage);
    report.Add("ConfiguredVoltage", module.configuredVoltage);
}

kyrStatusCode ReportModule(kyrIOHandle handle, const TMemoryModule& module) {
    TInstanceReport report(handle, ModulePath(module));
    report.Set("Caption", "Memory module " + SlotName(module));
    AddIdentity(report, module);
    AddKind(report, module);
    AddMeasures(report, module);
    return report.Finish();
}

kyrStatusCode ReportSwapAreas(kyrIOHandle handle, const TMemoryFacts& facts) {
    return ReportEach(handle, facts.swapAreas, ReportSwapArea);
}

kyrStatusCode ReportArrays(kyrIOHandle handle, const TMemoryFacts& facts) {
    return ReportEach(handle, facts.hardware.arrays, ReportArray);
}

kyrStatusCode ReportModules(kyrIOHandle handle, const TMemoryFacts& facts) {
    return ReportEach(handle, facts.hardware.modules, ReportModule);
}

kyrStatusCode ReportSystemMemoryDevices(kyrIOHandle handle, const TMemoryFacts& facts) {
    const kyrStatusCode status = ReportSystemDevices(handle, kSystemMemoryDevice, facts.swapAreas, SwapAreaPath);
    if (status != kyrStatusOK || !HasMemory(facts)) return status;
    return ReportSystemDevice(handle, kSystemMemoryDevice, SystemMemoryPath());
}

kyrStatusCode ReportSystemMemoryHardware(kyrIOHandle handle, const TMemoryFacts& facts) {
    const kyrStatusCode status = ReportSystemDevices(handle, kSystemMemoryHardware, facts.hardware.arrays, ArrayPath);
    if (status != kyrStatusOK) return status;
    return ReportSystemDevices(handle, kSystemMemoryHardware, facts.hardware.modules, ModulePath);
}

kyrStatusCode ReportArrayModules(kyrIOHandle handle, const TMemoryFacts& facts) {
    return ReportEach(facts.hardware.modules, [&](const TMemoryModule& module) {
        if (module.arrayTag.empty()) return kyrStatusOK;
        return ReportAssociation(handle, kMemoryArrayModule, "GroupComponent",
                                 HardwarePath(kMemoryArray, module.arrayTag), "PartComponent", ModulePath(module));
    });
}

TListing Usage(const TMemoryFacts& facts) { return ListingOf(facts.usage.total); }
TListing Swaps(const TMemoryFacts& facts) { return facts.swapListing; }
TListing Smbios(const TMemoryFacts& facts) { return facts.smbiosListing; }

const TDataPlugin<TMemoryFacts> gPlugin("memory", ReadMemory,
                                        {{kSystemMemory, ReportSystemMemory, {Usage}},
                                         {kSwapArea, ReportSwapAreas, {Swaps}},
                                         {kMemoryArray, ReportArrays, {Smbios}},
                                         {kPhysicalMemory, ReportModules, {Smbios}},
                                         {kSystemMemoryDevice, ReportSystemMemoryDevices, {Usage, Swaps}},
                                         {kSystemMemoryHardware, ReportSystemMemoryHardware, {Smbios}},
                                         {kMemoryArrayModule, ReportArrayModules, {Smbios}}});

}  // namespace
