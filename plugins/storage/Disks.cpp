#include <algorithm>

#include "BlockDevices.h"

namespace {

struct TBusPlace {
    std::string_view part;  ///< of the way to the device
    EBusType type;
};

// The first that fits counts: a disk behind a USB bridge is on a SCSI target too.
constexpr TBusPlace kBusPlaces[] = {
    {"/usb", EBusType::eUsb},         {"/mmc_host/", EBusType::eMmc},       {"/nvme", EBusType::eNvme},
    {"/end_device-", EBusType::eSas}, {"/rport-", EBusType::eFibreChannel}, {"/session", EBusType::eIscsi},
    {"/ata", EBusType::eAta},         {"/fw", EBusType::eFireWire},         {"/vbd-", EBusType::eXen},
    {"/VMBUS", EBusType::eHyperV},    {"/virtio", EBusType::eVirtio},       {"/target", EBusType::eScsi},
};

struct TDriveName {
    std::string_view prefix;
    EDriveType type;
};

constexpr TDriveName kDriveNames[] = {
    {"sr", EDriveType::eOptical}, {"fd", EDriveType::eFloppy}, {"mmcblk", EDriveType::eCard}};

EDriveType DriveTypeOf(std::string_view name) {
    for (const TDriveName& entry : kDriveNames)
        if (name.substr(0, entry.prefix.size()) == entry.prefix) return entry.type;
    return EDriveType::eDisk;
}

// What the device manager knows, or else what the first of the files tells.
TFact<std::string> FindOrRead(const TSystemRoot& root, const TDeviceEntry& entry, const char* key,
                              std::initializer_list<const char*> names) {
    TFact<std::string> known = entry.udev.Find(key);
    return known ? known : ReadFirst(root, entry.folder, names);
}

// The kernel's SCSI layer writes "ATA" for the maker of any ATA disk, and the virtio bus has a number there.
TFact<std::string> ReadManufacturer(const TSystemRoot& root, const TDeviceEntry& entry) {
    TFact<std::string> fact = FindOrRead(root, entry, "ID_VENDOR_ENC", {"device/vendor"});
    if (fact && (*fact == "ATA" || fact->substr(0, 2) == "0x")) fact.value.reset();
    return fact;
}

// Page 0x80 of a SCSI device's vital product data: four bytes, then the serial number.
TFact<std::string> ReadSerialPage(const TSystemRoot& root, const TDeviceEntry& entry) {
    TFact<std::string> page = root.ReadFile(entry.folder + "device/vpd_pg80", 260);
    if (page) page.value = std::string(Trim(page->substr(std::min<size_t>(4, page->size()))));
    if (page && page->empty()) page.value.reset();
    return page;
}

// ID_SERIAL_SHORT of a SCSI device is rather its name in the world, so the page stands before it.
TFact<std::string> ReadSerialNumber(const TSystemRoot& root, const TDeviceEntry& entry) {
    TFact<std::string> known = entry.udev.Find("ID_SCSI_SERIAL");
    if (known) return known;
    TFact<std::string> page = ReadSerialPage(root, entry);
    return page ? page : FindOrRead(root, entry, "ID_SERIAL_SHORT", {"device/serial", "serial"});
}

// "naa.5000c500a1b2c3d4" in sysfs is "0x5000c500a1b2c3d4" elsewhere; names of other kinds stay as they are.
std::string NormalizeName(const std::string& name) {
    return name.substr(0, 4) == "naa." ? "0x" + name.substr(4) : name;
}

TFact<std::string> ReadWorldWideName(const TSystemRoot& root, const TDeviceEntry& entry) {
    TFact<std::string> known = entry.udev.Find("ID_WWN_WITH_EXTENSION");
    if (known) return known;
    return FindOrRead(root, entry, "ID_WWN", {"device/wwid", "wwid"}).Map([](const std::string& name) {
        return std::optional(NormalizeName(name));
    });
}

void ReadIdentity(const TSystemRoot& root, const TDeviceEntry& entry, TDisk& disk) {
    disk.manufacturer = ReadManufacturer(root, entry);
    disk.model = FindOrRead(root, entry, "ID_MODEL_ENC", {"device/model", "device/name"});
    disk.serialNumber = ReadSerialNumber(root, entry);
    disk.firmware = FindOrRead(root, entry, "ID_REVISION", {"device/firmware_rev", "device/rev", "device/fwrev"});
    disk.wwn = ReadWorldWideName(root, entry);
}

// Only a device that is known to turn has a rate.
TFact<uint32_t> RotationRateOf(const TUdevRecord& udev) {
    TFact<uint32_t> rate = udev.FindIfAny("ID_ATA_ROTATION_RATE_RPM").Map([](const std::string& text) {
        return ParseNumber<uint32_t>(text);
    });
    if (!rate || *rate == 0) rate = {};
    return rate;
}

}  // namespace

TDisk ReadDisk(const TSystemRoot& root, TDeviceEntry& entry) {
    TDisk disk;
    ReadBlockDevice(root, entry, disk);
    disk.driveType = DriveTypeOf(entry.name);
    disk.controller = FindBusDevice(root, entry.place);
    disk.busType = BusTypeOf(entry.place, entry.udev);
    ReadIdentity(root, entry, disk);
    disk.state = IfAny(root.ReadText(entry.folder + "device/state"));
    disk.rotational = root.ReadFlag(entry.folder + "queue/rotational");
    disk.removable = root.ReadFlag(entry.folder + "removable");
    disk.rotationRate = RotationRateOf(entry.udev);
    disk.logicalBlockSize = root.ReadNumber<uint32_t>(entry.folder + "queue/logical_block_size");
    disk.physicalBlockSize = root.ReadNumber<uint32_t>(entry.folder + "queue/physical_block_size");
    return disk;
}

TDiskPath ReadDiskPath(const TSystemRoot& root, const TDeviceEntry& entry) {
    TDiskPath path;
    path.name = entry.name;
    path.disk = DiskOfPath(entry.name);
    path.controllerDevice = FindBusDevice(root, entry.place);
    path.controller = root.ReadLinkName(entry.folder + "device");
    path.transport = root.ReadText(entry.folder + "device/transport");
    path.address = root.ReadText(entry.folder + "device/address");
    path.state = root.ReadText(entry.folder + "device/state");
    path.accessState = root.ReadText(entry.folder + "ana_state");
    return path;
}

EBusType BusTypeOf(std::string_view place, const TUdevRecord& udev) {
    for (const TBusPlace& entry : kBusPlaces) {
        if (place.find(entry.part) == std::string_view::npos) continue;
        return entry.type == EBusType::eAta && udev.Has("ID_ATA_SATA", "1") ? EBusType::eSata : entry.type;
    }
    return EBusType::eUnknown;
}
