#include <algorithm>

#include "BusDevice.h"
#include "FirmwareIds.h"
#include "HardwareIds.h"
#include "UsbFacts.h"

namespace {

const std::string kDevices = "/sys/bus/usb/devices/";

// The interfaces of "1-1.2" are named "1-1.2:1.0" and so on, those of the root hub "usb1" are "1-0:1.0" and so on.
std::string InterfacePrefix(const std::string& id) {
    return (id.compare(0, 3, "usb") == 0 ? id.substr(3) + "-0" : id) + ':';
}

TUsbClass ReadClass(const TSystemRoot& root, const std::string& prefix) {
    TUsbClass usbClass;
    usbClass.code = root.ReadNumber<uint8_t>(prefix + "Class", 16);
    usbClass.subclass = root.ReadNumber<uint8_t>(prefix + "SubClass", 16);
    usbClass.protocol = root.ReadNumber<uint8_t>(prefix + "Protocol", 16);
    return usbClass;
}

std::vector<TUsbInterface> ReadInterfaces(const TSystemRoot& root, const std::string& device,
                                          const std::vector<std::string>& names) {
    const std::string prefix = InterfacePrefix(device);
    std::vector<TUsbInterface> interfaces;
    for (const std::string& name : names)
        if (name.compare(0, prefix.size(), prefix) == 0)
            interfaces.push_back(
                {ReadClass(root, kDevices + name + "/bInterface"), root.ReadLinkName(kDevices + name + "/driver")});
    return interfaces;
}

std::string ControllerOf(const TSystemRoot& root, const std::string& rootHub) {
    const std::string parent = ParentName(root.ReadLink(kDevices + rootHub).ValueOr(""));
    return !parent.empty() && root.Exists("/sys/bus/pci/devices/" + parent) ? parent : "";
}

// "USB\VID_0A5C&PID_6412", and with the release. Derived from fields that tell their own sources.
TFact<std::vector<std::string>> FirmwareIdsOf(const TUsbDevice& device, const TFact<uint16_t>& release) {
    using TIds = TFact<std::vector<std::string>>;
    const TFact<uint16_t>& last = device.vendor ? device.product : device.vendor;
    if (!last) return TIds::Missing(last.absence, last.source);
    const std::string plain = "USB\\VID_" + UpperHex(4, *device.vendor) + "&PID_" + UpperHex(4, *device.product);
    std::vector<std::string> instances = {plain};
    if (release) instances.push_back(plain + "&REV_" + UpperHex(4, *release));
    return TIds::Of(FirmwareIds(instances), "");
}

void ReadIdentity(const TSystemRoot& root, const std::string& folder, TUsbDevice& device) {
    device.vendor = root.ReadNumber<uint16_t>(folder + "idVendor", 16);
    device.product = root.ReadNumber<uint16_t>(folder + "idProduct", 16);
    device.manufacturerText = root.ReadText(folder + "manufacturer");
    device.productText = root.ReadText(folder + "product");
    device.serialNumber = root.ReadText(folder + "serial");
    device.release = root.ReadText(folder + "bcdDevice").Map(ParseRelease);
    device.usbClass = ReadClass(root, folder + "bDevice");
    device.firmwareIds = FirmwareIdsOf(device, root.ReadNumber<uint16_t>(folder + "bcdDevice", 16));
}

TUsbDevice ReadDevice(const TSystemRoot& root, const std::string& id, const std::vector<std::string>& names) {
    const std::string folder = kDevices + id + '/';
    TUsbDevice device;
    device.id = id;
    if (const std::string hub = HubOf(id); hub.empty())
        device.controller = ControllerOf(root, id);
    else if (std::find(names.begin(), names.end(), hub) != names.end())
        device.hub = hub;
    ReadIdentity(root, folder, device);
    device.version = root.ReadText(folder + "version");
    device.speed = root.ReadText(folder + "speed").Map(ParseUsbSpeed);
    device.maxPower = root.ReadText(folder + "bMaxPower").Map(ParseMilliAmperes);
    device.bus = root.ReadNumber<uint16_t>(folder + "busnum");
    device.number = root.ReadNumber<uint16_t>(folder + "devnum");
    device.ports = root.ReadNumber<uint8_t>(folder + "maxchild");
    device.interfaces = ReadInterfaces(root, id, names);
    return device;
}

// The ids as they are written in usb.ids.
std::string VendorId(const TUsbDevice& device) { return HexText(4, device.vendor.ValueOr(0)); }
std::string ProductId(const TUsbDevice& device) {
    return VendorId(device) + '/' + HexText(4, device.product.ValueOr(0));
}
std::string ClassId(const TUsbClass& usbClass) { return "C " + HexText(2, usbClass.code.ValueOr(0)); }

void WantNames(THardwareIds& names, const TUsbDevice& device) {
    names.Want(ProductId(device));
    names.Want(ClassId(device.usbClass));
    for (const TUsbInterface& interface : device.interfaces) names.Want(ClassId(interface.usbClass));
}

void FillNames(const THardwareIds& names, TUsbDevice& device) {
    device.vendorName = NameOf(device.vendor, names.Name(VendorId(device)));
    device.productName = NameOf(device.product, names.Name(ProductId(device)));
    device.usbClass.name = NameOf(device.usbClass.code, names.Name(ClassId(device.usbClass)));
    for (TUsbInterface& interface : device.interfaces)
        interface.usbClass.name = NameOf(interface.usbClass.code, names.Name(ClassId(interface.usbClass)));
}

}  // namespace

TUsbFacts ReadUsb(const TSystemRoot& root) {
    const TFact<std::vector<std::string>> list = root.ListKind("/sys/bus/usb/devices", "/sys/bus/usb");
    const std::vector<std::string> entries = list.ValueOr({});
    TUsbFacts facts;
    facts.listing = root.CheckEntries("/sys/bus/usb/devices", list);
    facts.busListing = ReadBusListing(root);
    THardwareIds names;
    for (const std::string& entry : entries) {
        if (entry.find(':') != std::string::npos) continue;
        facts.devices.push_back(ReadDevice(root, entry, entries));
        WantNames(names, facts.devices.back());
    }
    names.Read(root, "usb.ids");
    for (TUsbDevice& device : facts.devices) FillNames(names, device);
    return facts;
}

std::string HubOf(const std::string& id) {
    const size_t dash = id.find('-');
    if (dash == std::string::npos) return "";
    const size_t point = id.rfind('.');
    return point == std::string::npos ? "usb" + id.substr(0, dash) : id.substr(0, point);
}

std::optional<uint64_t> ParseUsbSpeed(std::string_view text) {
    if (text == "1.5") return 1'500'000;
    const std::optional<uint32_t> millions = ParseNumber<uint32_t>(text);
    if (!millions) return std::nullopt;
    return *millions * 1'000'000ull;
}

std::optional<uint32_t> ParseMilliAmperes(std::string_view text) {
    if (text.size() < 2 || text.substr(text.size() - 2) != "mA") return std::nullopt;
    return ParseNumber<uint32_t>(text.substr(0, text.size() - 2));
}

std::optional<std::string> ParseRelease(std::string_view text) {
    if (text.size() != 4 || !ParseNumber<uint16_t>(text, 16)) return std::nullopt;
    const size_t start = text[0] == '0' ? 1 : 0;
    return std::string(text.substr(start, 2 - start)) + '.' + std::string(text.substr(2));
}
