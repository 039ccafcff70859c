#include "BlockDevices.h"
#include "FirmwareIds.h"

namespace {

constexpr std::string_view kEndDevice = "/end_device-";
constexpr std::string_view kEnclosure = "enclosure_device:";

// "end_device-0:1" of the path of a disk behind a SAS adapter; empty for others.
std::string EndDeviceOf(const std::string& sysfsPath) {
    const size_t start = sysfsPath.find(kEndDevice);
    if (start == std::string::npos) return "";
    return sysfsPath.substr(start + 1, sysfsPath.find('/', start + 1) - start - 1);
}

// The kernel links the bay of an enclosure that speaks SES: "enclosure_device:Slot 01".
std::string FindEnclosureLink(const TSystemRoot& root, const std::string& folder) {
    for (const std::string& name : root.Names(folder))
        if (name.compare(0, kEnclosure.size(), kEnclosure) == 0) return name;
    return "";
}

}  // namespace

TFact<std::string> ReadBay(const TSystemRoot& root, const TDeviceEntry& entry) {
    const std::string endDevice = EndDeviceOf(entry.sysfsPath), folder = entry.folder + "device/";
    if (endDevice.empty()) return {};
    if (const std::string link = FindEnclosureLink(root, folder); !link.empty())
        return TFact<std::string>::Of(link.substr(kEnclosure.size()), folder + link);
    const TFact<std::string> bay = root.ReadText("/sys/class/sas_device/" + endDevice + "/bay_identifier");
    return bay ? bay : TFact<std::string>();
}

TFact<std::vector<std::string>> ReadFirmwareIds(const TSystemRoot& root, const TDisk& disk) {
    if (disk.busType != EBusType::eNvme) return {};
    std::vector<std::string> instances;
    const std::string folder = "/sys/bus/pci/devices/" + disk.controller.pciAddress + '/';
    const auto idOf = [&](const char* name) { return root.ReadNumber<uint16_t>(folder + name, 16); };
    const TFact<uint16_t> vendor = idOf("vendor"), device = idOf("device"), subsystemVendor = idOf("subsystem_vendor"),
                          subsystem = idOf("subsystem_device");
    const bool hasSubsystem = subsystemVendor.ValueOr(0) != 0 && subsystem;
    if (vendor && device)
        instances =
            PciInstanceIds("NVME", *vendor, *device,
                           hasSubsystem ? std::optional<TPciSubsystem>({*subsystemVendor, *subsystem}) : std::nullopt,
                           root.ReadNumber<uint8_t>(folder + "revision", 16).value);
    if (disk.model) instances.push_back(*disk.model);
    if (instances.empty()) return {};
    return TFact<std::vector<std::string>>::Of(FirmwareIds(instances), "");
}
