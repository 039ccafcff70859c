#include "FileSystems.h"

#include <algorithm>

#include "FileSystemTypes.h"
#include "Mounts.h"
#include "Space.h"

namespace {

class TFileSystemList {
public:
    TFileSystemList(const std::vector<const TBlockDevice*>& devices, std::vector<TFileSystem>& list);

    /// The file system that is mounted, entered if it is a new one; good until the next call. Null if it is none that
    /// holds files of users.
    TFileSystem* Take(const TMount& mount);

private:
    TFileSystem& TakeDevice(const TBlockDevice& device);
    TFileSystem& TakeMounted(const TMount& mount, EStorageKind kind);
    /// The one known by the id, or a new one of the name.
    TFileSystem& Enter(const std::string& id, const std::string& name);
    const TBlockDevice* FindDevice(const TMount& mount) const;
    std::vector<std::string> DevicesOfPool(const std::string& pool) const;

    const std::vector<const TBlockDevice*>& fDevices;
    std::vector<TFileSystem>& fList;
    TUniqueNames fNames;
    std::map<std::string, const TBlockDevice*> fByNumber, fByPath;
    std::map<std::string, size_t> fPlaces;  ///< in the list; by kernel name, by UUID or by number
};

TFileSystemList::TFileSystemList(const std::vector<const TBlockDevice*>& devices, std::vector<TFileSystem>& list)
    : fDevices(devices), fList(list) {
    for (const TBlockDevice* const device : devices) {
        if (!device->number.empty()) fByNumber.emplace(device->number, device);
        for (const std::string& path : device->paths) fByPath.emplace(path, device);
        if (device->content.usage == "filesystem") TakeDevice(*device);
    }
}

TFileSystem* TFileSystemList::Take(const TMount& mount) {
    const EStorageKind kind = StorageKindOf(mount.type, IsOnDevice(mount));
    if (kind == EStorageKind::eNone) return nullptr;
    const TBlockDevice* const device = FindDevice(mount);
    TFileSystem& fileSystem = device == nullptr ? TakeMounted(mount, kind) : TakeDevice(*device);
    fileSystem.kind = kind;
    if (!fileSystem.type) fileSystem.type = TFact<std::string>::Of(mount.type, kMounts);
    return &fileSystem;
}

// The devices of one btrfs tell the same UUID.
TFileSystem& TFileSystemList::TakeDevice(const TBlockDevice& device) {
    const TContent& content = device.content;
    const bool isShared = content.type.ValueOr("") == "btrfs" && content.uuid;
    TFileSystem& fileSystem = Enter(isShared ? *content.uuid : device.name, device.path);
    std::vector<std::string>& devices = fileSystem.devices;
    if (devices.empty()) {
        fileSystem.kind = EStorageKind::eBlockDevice;
        fileSystem.type = content.type;
        fileSystem.version = content.version;
        fileSystem.label = content.label;
        fileSystem.uuid = content.uuid;
    }
    if (std::find(devices.begin(), devices.end(), device.name) == devices.end()) devices.push_back(device.name);
    return fileSystem;
}

// A file system without a device is known by a number that the kernel gives anew at each start: its name is made of
// what lasts.
TFileSystem& TFileSystemList::TakeMounted(const TMount& mount, EStorageKind kind) {
    const bool isPool = mount.type == "zfs";
    const bool isNamed = isPool || kind == EStorageKind::eNetwork;
    TFileSystem& fileSystem = Enter(mount.number, isNamed ? mount.source : mount.type + " " + mount.point);
    if (isPool) fileSystem.devices = DevicesOfPool(mount.source.substr(0, mount.source.find('/')));
    return fileSystem;
}

TFileSystem& TFileSystemList::Enter(const std::string& id, const std::string& name) {
    const auto [place, isNew] = fPlaces.emplace(id, fList.size());
    if (!isNew) return fList[place->second];
    fList.emplace_back().name = fNames.Give(name);
    return fList.back();
}

// btrfs has a device number of its own, so that only the source tells where it is. The sources of other file systems
// without a device are any text.
const TBlockDevice* TFileSystemList::FindDevice(const TMount& mount) const {
    if (const auto found = fByNumber.find(mount.number); found != fByNumber.end()) return found->second;
    if (mount.type != "btrfs") return nullptr;
    const auto found = fByPath.find(mount.source);
    return found == fByPath.end() ? nullptr : found->second;
}

std::vector<std::string> TFileSystemList::DevicesOfPool(const std::string& pool) const {
    std::vector<std::string> names;
    for (const TBlockDevice* const device : fDevices)
        if (device->content.type.ValueOr("") == "zfs_member" && device->content.label.ValueOr("") == pool)
            names.push_back(device->name);
    return names;
}

// The mount that may be asked, or else the reason of the first that may not.
void AddSpace(const TSpaceReader& reader, const TMount& mount, TFileSystem& fileSystem) {
    if (fileSystem.space) return;
    TFact<TSpace> space = reader.Ask(mount);
    if (space || fileSystem.space.source.empty()) fileSystem.space = std::move(space);
}

void ReadMounted(const TSystemRoot& root, TFileSystemList& list, TStorage& storage) {
    const TSpaceReader space(root, *storage.mounts);
    for (TMount& mount : *storage.mounts.value) {
        TFileSystem* const fileSystem = list.Take(mount);
        if (fileSystem == nullptr) continue;
        mount.fileSystem = fileSystem->name;
        AddSpace(space, mount, *fileSystem);
    }
}

// Only what is mounted can be asked.
void ExplainUnasked(TStorage& storage) {
    for (TFileSystem& fileSystem : storage.fileSystems)
        if (fileSystem.space.source.empty()) fileSystem.space = TFact<TSpace>::Missing(storage.mounts.absence, kMounts);
}

}  // namespace

void ReadFileSystems(const TSystemRoot& root, TStorage& storage) {
    const std::vector<const TBlockDevice*> devices = EnumerateDevices(storage);
    TFileSystemList list(devices, storage.fileSystems);
    storage.mounts = ReadMounts(root);
    if (storage.mounts) ReadMounted(root, list, storage);
    ExplainUnasked(storage);
}
