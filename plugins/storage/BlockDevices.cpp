#include "BlockDevices.h"

#include <algorithm>

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

struct TNamePrefix {
    std::string_view prefix;
    EVolumeType type;
};

constexpr TNamePrefix kVolumeNames[] = {
    {"dm-", EVolumeType::eOther},    {"md", EVolumeType::eSoftwareRaid},
    {"loop", EVolumeType::eLoop},    {"zram", EVolumeType::eCompressedMemory},
    {"bcache", EVolumeType::eCache}, {"nbd", EVolumeType::eNetwork},
    {"rbd", EVolumeType::eNetwork},  {"drbd", EVolumeType::eNetwork},
    {"zd", EVolumeType::eZfsVolume},
};

// Loop devices, zram and the like exist in advance and have the size 0 until they are used. RAM disks have a size from
// the start, so that a used one cannot be recognised.
bool IsUnused(const TSystemRoot& root, const TDeviceEntry& entry, std::optional<EVolumeType> type) {
    if (StartsWith(entry.name, "ram")) return true;
    if (!type || StartsWith(entry.name, "dm-") || *type == EVolumeType::eSoftwareRaid) return false;
    return root.ReadNumber<uint64_t>(entry.folder + "size").ValueOr(0) == 0;
}

// The kernel writes '!' for the '/' in names such as cciss/c0d0.
std::string DevicePathOf(std::string name) {
    std::replace(name.begin(), name.end(), '!', '/');
    return "/dev/" + name;
}

TContent ContentOf(const TUdevRecord& udev) {
    TContent content;
    content.type = udev.FindOptional("ID_FS_TYPE");
    content.version = udev.FindOptional("ID_FS_VERSION");
    content.label = udev.FindOptional("ID_FS_LABEL_ENC");
    content.uuid = udev.FindOptional("ID_FS_UUID_ENC");
    content.usage = udev.Find("ID_FS_USAGE").ValueOr("");
    content.partitionTable = udev.FindOptional("ID_PART_TABLE_TYPE");
    content.partitionTableUuid = udev.FindOptional("ID_PART_TABLE_UUID");
    return content;
}

template <typename T>
void Add(T device, EDeviceKind kind, std::vector<T>& list, TStorage& storage) {
    storage.devices[device.name] = {kind, device.path};
    list.push_back(std::move(device));
}

// "1" of "sda1", "2" of "nvme0n1p2".
std::string_view LastNumber(std::string_view name) {
    return name.substr(std::min(name.find_last_not_of("0123456789") + 1, name.size()));
}

// The folder of a disk lies in one named "block", that of a partition in the folder of its disk.
bool MayBePartition(const TDeviceEntry& entry) { return ParentName(entry.sysfsPath) != "block"; }

// From the file of that name, or else, where the kernel only tells that it is a partition, from its name.
TFact<uint32_t> ReadPartitionNumber(const TSystemRoot& root, const TDeviceEntry& entry) {
    TFact<uint32_t> number = root.ReadNumber<uint32_t>(entry.folder + "partition");
    if (number || !MayBePartition(entry)) return number;
    const TFact<std::string> event = root.ReadText(entry.folder + "uevent");
    if (UeventValue(event.ValueOr(""), "DEVTYPE") != "partition") return number;
    const auto found =
        ParseNumber<uint32_t>(UeventValue(*event, "PARTN").value_or(std::string(LastNumber(entry.name))));
    return found ? TFact<uint32_t>::Of(*found, event.source) : number;
}

void ReadEntry(const TSystemRoot& root, TDeviceEntry entry, TStorage& storage) {
    const TFact<uint32_t> partition = ReadPartitionNumber(root, entry);
    if (partition)
        return Add(ReadPartition(root, entry, partition), EDeviceKind::ePartition, storage.partitions, storage);
    if (!DiskOfPath(entry.name).empty()) {
        storage.devices[entry.name] = {EDeviceKind::ePath, entry.name};
        storage.diskPaths.push_back(ReadDiskPath(root, entry));
        return;
    }
    const std::optional<EVolumeType> volume = VolumeTypeOf(entry.name);
    if (IsUnused(root, entry, volume)) return;
    if (volume) return Add(ReadVolume(root, entry, *volume), EDeviceKind::eVolume, storage.volumes, storage);
    Add(ReadDisk(root, entry), EDeviceKind::eDisk, storage.disks, storage);
}

}  // namespace

void ReadBlockDevices(const TSystemRoot& root, TStorage& storage) {
    const std::string folder = "/sys/class/block";
    const TFact<std::vector<std::string>> names = root.ListKind(folder);
    storage.deviceListing = root.CheckEntries(folder, names);
    for (const std::string& name : names.ValueOr({})) {
        const std::string link = folder + '/' + name;
        ReadEntry(root, {name, link + "/", root.ReadLink(link).ValueOr(""), TUdevRecord()}, storage);
    }
}

void ReadBlockDevice(const TSystemRoot& root, TDeviceEntry& entry, TBlockDevice& device) {
    device.name = entry.name;
    device.path = DevicePathOf(entry.name);
    device.number = root.ReadText(entry.folder + "dev");
    device.size = ReadSectors(root, entry.folder + "size");
    device.readOnly = root.ReadFlag(entry.folder + "ro");
    entry.udev = ReadUdevRecord(root, device.number.ValueOr(""));
    device.paths = entry.udev.Links();
    device.paths.push_back(device.path);
    device.content = ContentOf(entry.udev);
}

TFact<std::string> ReadFirst(const TSystemRoot& root, const std::string& folder,
                             std::initializer_list<const char*> names) {
    TFact<std::string> none;
    for (const char* const name : names) {
        TFact<std::string> fact = root.ReadText(folder + name);
        if (fact) return fact;
        if (none.source.empty() || fact.absence != EAbsence::eNotPresent) none = std::move(fact);
    }
    return none;
}

TFact<uint64_t> ReadSectors(const TSystemRoot& root, const std::string& path) {
    return root.ReadNumber<uint64_t>(path).Map(
        [](uint64_t sectors) { return sectors > UINT64_MAX / 512 ? std::nullopt : std::optional(sectors * 512); });
}

std::optional<EVolumeType> VolumeTypeOf(std::string_view name) {
    for (const TNamePrefix& entry : kVolumeNames)
        if (StartsWith(name, entry.prefix)) return entry.type;
    return std::nullopt;
}

std::string DiskOfPath(std::string_view name) {
    const size_t controller = name.find('c'), space = name.rfind('n');
    if (!StartsWith(name, "nvme") || controller == std::string_view::npos || space < controller) return "";
    if (controller + 1 >= name.size() || !IsDigit(name[controller + 1])) return "";
    return std::string(name.substr(0, controller)) + std::string(name.substr(space));
}
