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

// The first that there is.
std::string FirstOf(const TFact<std::string>& first, const TFact<std::string>& second) {
    return first.ValueOr(second.ValueOr(""));
}

std::string Caption(const TUsbDevice& device) {
    const std::string maker = FirstOf(device.manufacturerText, device.vendorName);
    const std::string product = FirstOf(device.productText, device.productName);
    if (maker.empty() && product.empty()) return "USB device " + device.id;
    return maker.empty() || product.empty() ? maker + product : maker + ' ' + product;
}

// What there is of a fact of the interfaces, each value once; or why the first has none.
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
    TInstanceReport report(handle, DevicePath(kDevice, device.id));
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

kyrStatusCode TieToSystem(kyrIOHandle handle, const TUsbDevice& device) {
    return ReportSystemDevice(handle, kSystemDevice, DevicePath(kDevice, device.id));
}

kyrStatusCode TieToHub(kyrIOHandle handle, const TUsbDevice& device) {
    if (device.hub.empty()) return kyrStatusOK;
    return ReportTie(handle, kHubDevice, "Antecedent", DevicePath(kDevice, device.hub), "Dependent",
                     DevicePath(kDevice, device.id));
}

kyrStatusCode TieToController(kyrIOHandle handle, const TUsbDevice& device) {
    if (device.controller.empty() || !IsKnownClass(handle, kPciDevice)) return kyrStatusOK;
    return ReportTie(handle, kControllerHub, "Antecedent", DevicePath(kPciDevice, device.controller), "Dependent",
                     DevicePath(kDevice, device.id));
}

const TDataPlugin<TUsbFacts> gPlugin("usb", ReadUsb,
                                     {{kDevice, ForEach<&TUsbFacts::devices, ReportDevice>, &TUsbFacts::listing},
                                      {kSystemDevice, ForEach<&TUsbFacts::devices, TieToSystem>},
                                      {kHubDevice, ForEach<&TUsbFacts::devices, TieToHub>},
                                      {kControllerHub, ForEach<&TUsbFacts::devices, TieToController>}});

}  // namespace
