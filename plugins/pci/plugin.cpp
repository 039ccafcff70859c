// The plugin "pci": the functions on the PCI buses.
#include "DataPlugin.h"
#include "InstanceReport.h"
#include "PciFacts.h"

namespace {

constexpr const char* kDevice = "MOLTA_PCIDevice";
constexpr const char* kSystemDevice = "MOLTA_SystemPCIDevice";
constexpr const char* kBridgeDevice = "MOLTA_PCIBridgeDevice";

TInstancePath PciDevicePath(const TPciFunction& function) { return DevicePath(kDevice, function.address); }

// "Ethernet controller: Intel Corporation 82540EM Gigabit Ethernet Controller"
std::string Caption(const TPciIdentity& identity) {
    std::string caption = identity.className.ValueOr("PCI device");
    if (identity.vendorName) caption += ": " + *identity.vendorName;
    if (identity.deviceName) caption += (identity.vendorName ? " " : ": ") + *identity.deviceName;
    return caption;
}

void AddIdentity(TInstanceReport& report, const TPciIdentity& identity) {
    const auto byteOf = [&identity](int shift) {
        return identity.classCode.Map([shift](uint32_t code) { return std::optional<uint8_t>(code >> shift & 0xff); });
    };
    report.Set("Caption", Caption(identity));
    report.Add("VendorID", identity.vendor);
    report.Add("VendorName", identity.vendorName);
    report.Add("PCIDeviceID", identity.device);
    report.Add("DeviceName", identity.deviceName);
    report.Add("ClassCode", byteOf(16));
    report.Add("SubclassCode", byteOf(8));
    report.Add("ProgrammingInterface", byteOf(0));
    report.Add("ClassName", identity.className);
}

void AddSubsystem(TInstanceReport& report, const TPciIdentity& identity) {
    report.Add("SubsystemVendorID", identity.subsystemVendor);
    report.Add("SubsystemVendorName", identity.subsystemVendorName);
    report.Add("SubsystemID", identity.subsystem);
    report.Add("SubsystemName", identity.subsystemName);
}

void AddLink(TInstanceReport& report, const TPciLink& link) {
    report.Add("MaxLinkSpeed", link.maxSpeed);
    report.Add("CurrentLinkSpeed", link.currentSpeed);
    report.Add("MaxLinkWidth", link.maxWidth);
    report.Add("CurrentLinkWidth", link.currentWidth);
}

kyrStatusCode ReportDevice(kyrIOHandle handle, const TPciFunction& function) {
    TInstanceReport report(handle, PciDevicePath(function));
    report.Set("Name", function.address);
    AddIdentity(report, function.identity);
    if (function.identity.HasSubsystem()) AddSubsystem(report, function.identity);
    report.Add("RevisionID", function.revision);
    report.Add("Driver", function.driver);
    report.Add("Interrupt", function.interrupt);
    report.Add("NUMANode", function.numaNode);
    report.Add("FirmwareIDs", function.firmwareIds);
    if (function.link) AddLink(report, *function.link);
    return report.Finish();
}

kyrStatusCode ReportDevices(kyrIOHandle handle, const TPciFacts& facts) {
    return ReportEach(handle, facts.functions, ReportDevice);
}

kyrStatusCode ReportSystemPciDevices(kyrIOHandle handle, const TPciFacts& facts) {
    return ReportSystemDevices(handle, kSystemDevice, facts.functions, PciDevicePath);
}

kyrStatusCode ReportBridgeDevices(kyrIOHandle handle, const TPciFacts& facts) {
    return ReportEach(facts.functions, [handle](const TPciFunction& function) {
        if (function.bridge.empty()) return kyrStatusOK;
        return ReportAssociation(handle, kBridgeDevice, "Antecedent", DevicePath(kDevice, function.bridge), "Dependent",
                                 PciDevicePath(function));
    });
}

TListing Devices(const TPciFacts& facts) { return facts.listing; }

const TDataPlugin<TPciFacts> gPlugin("pci", ReadPci,
                                     {{kDevice, ReportDevices, {Devices}},
                                      {kSystemDevice, ReportSystemPciDevices, {Devices}},
                                      {kBridgeDevice, ReportBridgeDevices, {Devices}}});

}  // namespace
