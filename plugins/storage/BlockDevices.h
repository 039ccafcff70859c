#ifndef KYR_PLUGINS_STORAGE_BLOCKDEVICES_H
#define KYR_PLUGINS_STORAGE_BLOCKDEVICES_H

#include <initializer_list>
#include <string_view>

#include "StorageFacts.h"
#include "Udev.h"

/// A name in /sys/class/block, and what every kind of device is told apart by.
struct TDeviceEntry {
    std::string name;
    std::string folder;  ///< "/sys/class/block/<name>/"
    std::string place;   ///< what the name links to: the way through buses and controllers
    TUdevRecord udev;
};

/// All devices, each in the list of its kind and in the map.
void ReadBlockDevices(const TSystemRoot& root, TStorage& storage);

/// What all kinds have, the udev record among it.
void ReadBlockDevice(const TSystemRoot& root, TDeviceEntry& entry, TBlockDevice& device);
TDisk ReadDisk(const TSystemRoot& root, TDeviceEntry& entry);
TDiskPath ReadDiskPath(const TSystemRoot& root, const TDeviceEntry& entry);
TPartition ReadPartition(const TSystemRoot& root, TDeviceEntry& entry, TFact<uint32_t> number);
TVolume ReadVolume(const TSystemRoot& root, TDeviceEntry& entry, EVolumeType type);

/// The first of the files that has something in it, or why none has.
TFact<std::string> ReadFirst(const TSystemRoot& root, const std::string& folder,
                             std::initializer_list<const char*> names);
/// For what only some devices have: if it is not present, there is nothing to tell.
template <typename T>
TFact<T> IfAny(TFact<T> fact) {
    return fact || fact.absence != EAbsence::eNotPresent ? fact : TFact<T>();
}
/// A count of the kernel's sectors, which are 512 bytes on every device.
TFact<uint64_t> ReadSectors(const TSystemRoot& root, const std::string& path);

/// What the kernel name tells: the type of volume; none of a disk. RAM disks have none either, see IsUnused.
std::optional<EVolumeType> VolumeTypeOf(std::string_view name);
/// The disk behind which a path such as nvme0c1n1 is hidden; empty if the name is no path's.
std::string DiskOfPath(std::string_view name);
EBusType BusTypeOf(std::string_view place, const TUdevRecord& udev);
/// Volume group and logical volume in a name such as "vg--0-root": the first single hyphen parts them.
struct TVolumeNames {
    std::string group, volume;
};
TVolumeNames ParseVolumeNames(std::string_view name);
/// What a person calls a partition type, a GUID or a number such as 0x83; null if it is not a known one.
const char* FindPartitionTypeName(std::string_view type);

#endif
