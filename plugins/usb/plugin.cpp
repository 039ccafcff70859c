// The plugin "usb": the devices on the USB buses.
#include <algorithm>

#include "DataPlugin.h"
#include "InstanceReport.h"
#include "UsbFacts.h"

namespace {

constexpr const char* kDevice = "MOLTA_USBDevice";
constexpr const char* kPciDevice = "MOLTA_PCIDevice";
constexpr const char* kSystemDevice = "MOLTA_SystemUSBDevice";
constexpr const char* kHubDevice = "MOLTA_USBHubDevice";
constexpr const char* kControllerHub = "MOLTA_USBControllerHub";

TInstancePath UsbDevicePath(const TUsbDevice& device) { return DevicePath(kDevice, device.id); }

// The first of the two that has a value, or an empty text.
std::string FirstOf(const TFact<std::string>& first, const TFact<std::string>& second) {
    return first.ValueOr(second.ValueOr(""));
}

std::string Caption(const TUsbDevice& device) {
    const std::string maker = FirstOf(device.manufacturerText, device.vendorName);
    const std::string product = FirstOf(device.productText, device.productName);
    if (maker.empty() && product.empty()) return "USB device " + device.id;
    return maker.empty() || product.empty() ? maker + product : maker + ' ' + product;
}

// Sets the property to the distinct values of the interfaces; if none has one, notes why the first has none.
template <typename F>
void AddInterfaceTexts(TInstanceReport& report, const char* property, const TUsbDevice& device, F factOf) {
    std::vector<std::string> texts;
    for (const TUsbInterface& interface : device.interfaces)
        if (const TFact<std::string>& fact = factOf(interface);
            fact && std::find(texts.begin(), texts.end(), *fact) == texts.end())
            texts.push_back(*fact);
    if (!texts.empty())
        report.Set(property, texts);
    else if (!device.interfaces.empty())
        report.Add(property, factOf(device.interfaces.front()));
}

void AddIdentity(TInstanceReport& report, const TUsbDevice& device) {
    report.Set("Caption", Caption(device));
    if (const std::string name = FirstOf(device.productText, device.productName); !name.empty())
        report.Set("ElementName", name);
    report.Add("VendorID", device.vendor);
    report.Add("VendorName", device.vendorName);
    report.Add("ProductID", device.product);
    report.Add("ProductName", device.productName);
    report.Add("Manufacturer", device.manufacturerText);
    report.Add("Product", device.productText);
    report.Add("SerialNumber", device.serialNumber);
    report.Add("DeviceRelease", device.release);
    report.Add("FirmwareIDs", device.firmwareIds);
}

void AddClasses(TInstanceReport& report, const TUsbDevice& device) {
    report.Add("ClassCode", device.usbClass.code);
    report.Add("SubclassCode", device.usbClass.subclass);
    report.Add("ProtocolCode", device.usbClass.protocol);
    report.Add("ClassName", device.usbClass.name);
    const auto className = [](const TUsbInterface& interface) { return interface.usbClass.name; };
    const auto driver = [](const TUsbInterface& interface) { return interface.driver; };
    AddInterfaceTexts(report, "InterfaceClasses", device, className);
    AddInterfaceTexts(report, "Drivers", device, driver);
}

kyrStatusCode ReportDevice(kyrIOHandle handle, const TUsbDevice& device) {
    TInstanceReport report(handle, UsbDevicePath(device));
    report.Set("Name", device.id);
    AddIdentity(report, device);
    AddClasses(report, device);
    report.Add("USBVersion", device.version);
    report.Add("Speed", device.speed);
    report.Add("MaxPower", device.maxPower);
    report.Add("BusNumber", device.bus);
    report.Add("DeviceNumber", device.number);
    report.Add("NumberOfPorts", device.ports);
    return report.Finish();
}

kyrStatusCode ReportDevices(kyrIOHandle handle, const TUsbFacts& facts) {
    return ReportEach(handle, facts.devices, ReportDevice);
}

kyrStatusCode ReportSystemUsbDevices(kyrIOHandle handle, const TUsbFacts& facts) {
    return ReportSystemDevices(handle, kSystemDevice, facts.devices, UsbDevicePath);
}

kyrStatusCode ReportHubDevices(kyrIOHandle handle, const TUsbFacts& facts) {
    return ReportEach(facts.devices, [handle](const TUsbDevice& device) {
        if (device.hub.empty()) return kyrStatusOK;
        return ReportAssociation(handle, kHubDevice, "Antecedent", DevicePath(kDevice, device.hub), "Dependent",
                                 UsbDevicePath(device));
    });
}

kyrStatusCode ReportControllerHubs(kyrIOHandle handle, const TUsbFacts& facts) {
    return ReportEach(facts.devices, [handle](const TUsbDevice& device) {
        if (device.controller.empty() || !IsKnownClass(handle, kPciDevice)) return kyrStatusOK;
        return ReportAssociation(handle, kControllerHub, "Antecedent", DevicePath(kPciDevice, device.controller),
                                 "Dependent", UsbDevicePath(device));
    });
}

TListing Devices(const TUsbFacts& facts) { return facts.listing; }
TListing Buses(const TUsbFacts& facts) { return facts.busListing; }

const TDataPlugin<TUsbFacts> gPlugin("usb", ReadUsb,
                                     {{kDevice, ReportDevices, {Devices}},
                                      {kSystemDevice, ReportSystemUsbDevices, {Devices}},
                                      {kHubDevice, ReportHubDevices, {Devices}},
                                      {kControllerHub, ReportControllerHubs, {Devices, Buses}}});

}  // namespace
