#include <algorithm>

#include "BlockDevices.h"

namespace {

struct TBusPattern {
    std::string_view part;  ///< of the sysfs path
    EBusType type;
};

// The first match counts: a disk behind a USB bridge is on a SCSI target as well.
constexpr TBusPattern kBusPatterns[] = {
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

// From udev, or else from the first file that has a value.
TFact<std::string> FindOrRead(const TSystemRoot& root, const TDeviceEntry& entry, const char* key,
                              std::initializer_list<const char*> names) {
    TFact<std::string> known = entry.udev.Find(key);
    return known ? known : Otherwise(known, ReadFirst(root, entry.folder, names));
}

// Without the "ATA" that the SCSI layer has for all ATA disks, and the number of the virtio bus.
TFact<std::string> ReadManufacturer(const TSystemRoot& root, const TDeviceEntry& entry) {
    TFact<std::string> fact = FindOrRead(root, entry, "ID_VENDOR_ENC", {"device/vendor"});
    if (fact && (*fact == "ATA" || fact->substr(0, 2) == "0x")) fact.value.reset();
    return fact;
}

// SCSI vital product data page 0x80: a header of four bytes, then the serial number.
TFact<std::string> ReadSerialPage(const TSystemRoot& root, const TDeviceEntry& entry) {
    TFact<std::string> page = root.ReadFile(entry.folder + "device/vpd_pg80", 260);
    if (page) page.value = std::string(Trim(page->substr(std::min<size_t>(4, page->size()))));
    if (page && page->empty()) page.value.reset();
    return page;
}

// The page comes before ID_SERIAL_SHORT, which is the WWN for a SCSI device.
TFact<std::string> ReadSerialNumber(const TSystemRoot& root, const TDeviceEntry& entry) {
    TFact<std::string> known = entry.udev.Find("ID_SCSI_SERIAL");
    if (known) return known;
    TFact<std::string> page = Otherwise(known, ReadSerialPage(root, entry));
    return page ? page : Otherwise(page, FindOrRead(root, entry, "ID_SERIAL_SHORT", {"device/serial", "serial"}));
}

// sysfs has "naa.5000c500a1b2c3d4" for what udev and tools write as "0x5000c500a1b2c3d4". Other formats are kept.
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

// Only for a device that is known to rotate.
TFact<uint32_t> RotationRateOf(const TUdevRecord& udev) {
    TFact<uint32_t> rate = udev.FindOptional("ID_ATA_ROTATION_RATE_RPM").Map([](const std::string& text) {
        return ParseNumber<uint32_t>(text);
    });
    if (rate && *rate == 0) rate = {};
    return rate;
}

}  // namespace

TDisk ReadDisk(const TSystemRoot& root, TDeviceEntry& entry) {
    TDisk disk;
    ReadBlockDevice(root, entry, disk);
    disk.driveType = DriveTypeOf(entry.name);
    disk.controller = FindBusDevice(root, entry.sysfsPath);
    disk.busType = BusTypeOf(entry.sysfsPath, entry.udev);
    ReadIdentity(root, entry, disk);
    disk.state = OptionalFact(root.ReadText(entry.folder + "device/state"));
    disk.rotational = root.ReadFlag(entry.folder + "queue/rotational");
    disk.removable = root.ReadFlag(entry.folder + "removable");
    disk.rotationRate = RotationRateOf(entry.udev);
    disk.logicalBlockSize = root.ReadNumber<uint32_t>(entry.folder + "queue/logical_block_size");
    disk.bay = ReadBay(root, entry);
    disk.firmwareIds = ReadFirmwareIds(root, disk);
    disk.physicalBlockSize = root.ReadNumber<uint32_t>(entry.folder + "queue/physical_block_size");
    return disk;
}

TDiskPath ReadDiskPath(const TSystemRoot& root, const TDeviceEntry& entry) {
    TDiskPath path;
    path.name = entry.name;
    path.disk = DiskOfPath(entry.name);
    path.controllerDevice = FindBusDevice(root, entry.sysfsPath);
    path.controller = root.ReadLinkName(entry.folder + "device");
    path.transport = root.ReadText(entry.folder + "device/transport");
    path.address = root.ReadText(entry.folder + "device/address");
    path.state = root.ReadText(entry.folder + "device/state");
    path.accessState = root.ReadText(entry.folder + "ana_state");
    return path;
}

EBusType BusTypeOf(std::string_view sysfsPath, const TUdevRecord& udev) {
    for (const TBusPattern& entry : kBusPatterns) {
        if (sysfsPath.find(entry.part) == std::string_view::npos) continue;
        return entry.type == EBusType::eAta && udev.Has("ID_ATA_SATA", "1") ? EBusType::eSata : entry.type;
    }
    return EBusType::eUnknown;
}
