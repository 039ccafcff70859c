#include "FileSystems.h"

#include <algorithm>

#include "FileSystemTypes.h"
#include "Mounts.h"
#include "Space.h"

namespace {

class TFileSystemList {
public:
    TFileSystemList(const std::vector<const TBlockDevice*>& devices, std::vector<TFileSystem>& list);

    /// The file system of a mount; valid until the next call. Null if it has no user files.
    TFileSystem* FindOrAdd(const TMount& mount);

private:
    TFileSystem& FindOrAddDevice(const TBlockDevice& device);
    TFileSystem& FindOrAddMounted(const TMount& mount, EStorageKind kind);
    /// The file system with the id, or a new one with a name like this.
    TFileSystem& FindOrAddById(const std::string& id, const std::string& name);
    const TBlockDevice* FindDevice(const TMount& mount) const;
    std::vector<std::string> DevicesOfPool(const std::string& pool) const;

    const std::vector<const TBlockDevice*>& fDevices;
    std::vector<TFileSystem>& fList;
    TUniqueNames fNames;
    std::map<std::string, const TBlockDevice*> fByNumber, fByPath;
    std::map<std::string, size_t> fIndices;  ///< into the list; by kernel name, UUID or device number
};

TFileSystemList::TFileSystemList(const std::vector<const TBlockDevice*>& devices, std::vector<TFileSystem>& list)
    : fDevices(devices), fList(list) {
    for (const TBlockDevice* const device : devices) {
        if (device->number) fByNumber.emplace(*device->number, device);
        for (const std::string& path : device->paths) fByPath.emplace(path, device);
        if (device->content.usage == "filesystem") FindOrAddDevice(*device);
    }
}

TFileSystem* TFileSystemList::FindOrAdd(const TMount& mount) {
    const EStorageKind kind = StorageKindOf(mount.type, IsOnDevice(mount));
    if (kind == EStorageKind::eNone) return nullptr;
    const TBlockDevice* const device = FindDevice(mount);
    TFileSystem& fileSystem = device == nullptr ? FindOrAddMounted(mount, kind) : FindOrAddDevice(*device);
    fileSystem.kind = kind;
    if (!fileSystem.type) fileSystem.type = TFact<std::string>::Of(mount.type, kMounts);
    return &fileSystem;
}

// The devices of one btrfs file system share its UUID.
TFileSystem& TFileSystemList::FindOrAddDevice(const TBlockDevice& device) {
    const TContent& content = device.content;
    const bool isShared = content.type.ValueOr("") == "btrfs" && content.uuid;
    TFileSystem& fileSystem = FindOrAddById(isShared ? *content.uuid : device.name, device.path);
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

// The device number of a file system without a device changes at each boot, so the name is made from source or mount
// point.
TFileSystem& TFileSystemList::FindOrAddMounted(const TMount& mount, EStorageKind kind) {
    const bool isPool = mount.type == "zfs";
    const bool isNamed = isPool || kind == EStorageKind::eNetwork;
    TFileSystem& fileSystem = FindOrAddById(mount.number, isNamed ? mount.source : mount.type + " " + mount.point);
    if (isPool) fileSystem.devices = DevicesOfPool(mount.source.substr(0, mount.source.find('/')));
    return fileSystem;
}

TFileSystem& TFileSystemList::FindOrAddById(const std::string& id, const std::string& name) {
    const auto [entry, isNew] = fIndices.emplace(id, fList.size());
    if (!isNew) return fList[entry->second];
    fList.emplace_back().name = fNames.MakeUnique(name);
    return fList.back();
}

// btrfs has an anonymous device number, so its device is found by the source of the mount. For other file systems
// without a device the source may be any text.
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

// Takes the space from the first mount that may be asked; if none may, keeps the reason of the first.
void AddSpace(const TSpaceReader& reader, const TMount& mount, TFileSystem& fileSystem) {
    if (fileSystem.space) return;
    TFact<TSpace> space = reader.Ask(mount);
    if (space || fileSystem.space.source.empty()) fileSystem.space = std::move(space);
}

void ReadMounted(const TSystemRoot& root, TFileSystemList& list, TStorage& storage) {
    const TSpaceReader space(root, *storage.mounts);
    for (TMount& mount : *storage.mounts.value) {
        TFileSystem* const fileSystem = list.FindOrAdd(mount);
        if (fileSystem == nullptr) continue;
        mount.fileSystem = fileSystem->name;
        AddSpace(space, mount, *fileSystem);
    }
}

// Only a mounted file system has its space read.
void ExplainMissingSpace(TStorage& storage) {
    for (TFileSystem& fileSystem : storage.fileSystems)
        if (fileSystem.space.source.empty()) fileSystem.space = TFact<TSpace>::Missing(storage.mounts.absence, kMounts);
}

}  // namespace

void ReadFileSystems(const TSystemRoot& root, TStorage& storage) {
    const std::vector<const TBlockDevice*> devices = EnumerateDevices(storage);
    TFileSystemList list(devices, storage.fileSystems);
    storage.mounts = ReadMounts(root);
    if (storage.mounts) ReadMounted(root, list, storage);
    ExplainMissingSpace(storage);
}
