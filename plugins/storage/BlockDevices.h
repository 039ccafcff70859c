#ifndef KYR_PLUGINS_STORAGE_BLOCKDEVICES_H
#define KYR_PLUGINS_STORAGE_BLOCKDEVICES_H

#include <initializer_list>
#include <string_view>

#include "StorageFacts.h"
#include "Udev.h"

/// An entry of /sys/class/block, before its kind is known.
struct TDeviceEntry {
    std::string name;
    std::string folder;     ///< "/sys/class/block/<name>/"
    std::string sysfsPath;  ///< the target of the link: the path through buses and controllers
    TUdevRecord udev;
};

/// Adds all devices, each to the list of its kind and to the map.
void ReadBlockDevices(const TSystemRoot& root, TStorage& storage);

/// Reads what all kinds of device have, and the udev record into the entry.
void ReadBlockDevice(const TSystemRoot& root, TDeviceEntry& entry, TBlockDevice& device);
TDisk ReadDisk(const TSystemRoot& root, TDeviceEntry& entry);
/// The bay of an enclosure that the disk is in.
TFact<std::string> ReadBay(const TSystemRoot& root, const TDeviceEntry& entry);
/// Of an NVMe drive: after its model and controller.
TFact<std::vector<std::string>> ReadFirmwareIds(const TSystemRoot& root, const TDisk& disk);
TDiskPath ReadDiskPath(const TSystemRoot& root, const TDeviceEntry& entry);
TPartition ReadPartition(const TSystemRoot& root, TDeviceEntry& entry, TFact<uint32_t> number);
TVolume ReadVolume(const TSystemRoot& root, TDeviceEntry& entry, EVolumeType type);

/// The content of the first file that has any, or why none has.
TFact<std::string> ReadFirst(const TSystemRoot& root, const std::string& folder,
                             std::initializer_list<const char*> names);
/// For a value that only some devices have: removes the source if it is not present, so that its absence is not
/// reported.
template <typename T>
TFact<T> OptionalFact(TFact<T> fact) {
    return fact || fact.absence != EAbsence::eNotPresent ? fact : TFact<T>();
}
/// A number of sectors as bytes; the kernel counts in sectors of 512 bytes on every device.
TFact<uint64_t> ReadSectors(const TSystemRoot& root, const std::string& path);

/// The type of volume by the kernel name; none for a disk, or a RAM disk.
std::optional<EVolumeType> VolumeTypeOf(std::string_view name);
/// "nvme0n1" for a path such as "nvme0c1n1"; empty if the name is not that of a path.
std::string DiskOfPath(std::string_view name);
EBusType BusTypeOf(std::string_view sysfsPath, const TUdevRecord& udev);
/// Volume group and logical volume of a name such as "vg--0-root": a single hyphen separates them, double ones are
/// escaped.
struct TVolumeNames {
    std::string group, volume;
};
TVolumeNames ParseVolumeNames(std::string_view name);
/// The name of a partition type, which is a GUID or a number such as 0x83; null if it is unknown.
const char* FindPartitionTypeName(std::string_view type);

#endif
