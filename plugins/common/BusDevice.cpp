#include "BusDevice.h"

#include "SystemRoot.h"

namespace {

bool IsPciAddress(std::string_view name) {
    const size_t length = name.size();
    return length >= 12 && name[length - 2] == '.' && name[length - 5] == ':' && name[length - 8] == ':';
}

// A device such as "1-1.2", not its interface "1-1.2:1.0".
bool IsUsbId(std::string_view name) {
    return name.find('-') != std::string_view::npos && name.find_first_not_of("0123456789-.") == std::string_view::npos;
}

}  // namespace

TBusDevice ParseBusDevice(std::string_view link) {
    const std::vector<std::string_view> parts = Split(link.substr(0, link.rfind('/')), '/');
    for (auto part = parts.rbegin(); part != parts.rend(); ++part) {
        if (IsUsbId(*part)) return {"", std::string(*part)};
        if (IsPciAddress(*part)) return {std::string(*part), ""};
    }
    return {};
}

TBusDevice FindBusDevice(const TSystemRoot& root, std::string_view link) {
    const TBusDevice device = ParseBusDevice(link);
    const std::string bus = device.usbId.empty() ? "pci" : "usb";
    return root.Exists("/sys/bus/" + bus + "/devices/" + device.pciAddress + device.usbId) ? device : TBusDevice();
}

TListing ReadBusListing(const TSystemRoot& root) {
    for (const std::string bus : {"/sys/bus/pci", "/sys/bus/usb"}) {
        const TListing listing = root.CheckEntries(bus + "/devices", root.ListKind(bus + "/devices", bus));
        if (!listing) return listing;
    }
    return TListing::Of(true, "/sys/bus");
}

std::string ParentName(std::string_view link) {
    const size_t end = link.rfind('/');
    if (end == std::string_view::npos) return "";
    link = link.substr(0, end);
    return std::string(link.substr(link.rfind('/') + 1));
}
