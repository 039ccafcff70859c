#include <algorithm>

#include "BlockDevices.h"

namespace {

struct TMappedKind {
    std::string_view prefix;  ///< of the device-mapper UUID, which names the program that made the volume
    EVolumeType type;
};

// The first match counts. dm-verity and dm-integrity protect data from changes, but do not encrypt it.
constexpr TMappedKind kMappedKinds[] = {
    {"LVM-", EVolumeType::eLogicalVolume},     {"CRYPT-VERITY-", EVolumeType::eOther},
    {"CRYPT-INTEGRITY-", EVolumeType::eOther}, {"CRYPT-", EVolumeType::eEncrypted},
    {"mpath-", EVolumeType::eMultipath},       {"part", EVolumeType::ePartition},
    {"DMRAID-", EVolumeType::eFirmwareRaid}};

EVolumeType MappedTypeOf(std::string_view identifier) {
    for (const TMappedKind& entry : kMappedKinds)
        if (identifier.substr(0, entry.prefix.size()) == entry.prefix) return entry.type;
    return EVolumeType::eOther;
}

// "LUKS2" of "CRYPT-LUKS2-<uuid>-<name>".
std::string EncryptionOf(std::string_view identifier) {
    identifier.remove_prefix(std::min<size_t>(6, identifier.size()));
    return std::string(identifier.substr(0, identifier.find('-')));
}

void ReadMapped(const TSystemRoot& root, const std::string& folder, TVolume& volume) {
    const std::string name = root.ReadText(folder + "dm/name").ValueOr("");
    if (!name.empty()) volume.path = "/dev/mapper/" + name;
    volume.paths.push_back(volume.path);
    volume.identifier = root.ReadText(folder + "dm/uuid");
    volume.type = MappedTypeOf(volume.identifier.ValueOr(""));
    if (volume.type == EVolumeType::eEncrypted) volume.encryption = EncryptionOf(*volume.identifier);
    if (volume.type != EVolumeType::eLogicalVolume) return;
    TVolumeNames names = ParseVolumeNames(name);
    volume.volumeGroup = std::move(names.group);
    volume.logicalVolume = std::move(names.volume);
}

// Arrays without redundancy have no md/degraded.
void ReadArray(const TSystemRoot& root, const TDeviceEntry& entry, TVolume& volume) {
    volume.identifier = entry.udev.Find("MD_UUID");
    volume.raidLevel = root.ReadText(entry.folder + "md/level");
    volume.arrayState = root.ReadText(entry.folder + "md/array_state");
    volume.raidDevices = root.ReadNumber<uint32_t>(entry.folder + "md/raid_disks");
    volume.missingDevices = OptionalFact(root.ReadNumber<uint32_t>(entry.folder + "md/degraded"));
}

}  // namespace

TVolume ReadVolume(const TSystemRoot& root, TDeviceEntry& entry, EVolumeType type) {
    TVolume volume;
    ReadBlockDevice(root, entry, volume);
    volume.type = type;
    volume.components = root.Names(entry.folder + "slaves");
    volume.logicalBlockSize = root.ReadNumber<uint32_t>(entry.folder + "queue/logical_block_size");
    if (type == EVolumeType::eOther) ReadMapped(root, entry.folder, volume);
    if (type == EVolumeType::eSoftwareRaid) ReadArray(root, entry, volume);
    if (type == EVolumeType::eLoop) volume.backingFile = root.ReadText(entry.folder + "loop/backing_file");
    return volume;
}

TVolumeNames ParseVolumeNames(std::string_view name) {
    TVolumeNames names;
    std::string* part = &names.group;
    for (size_t i = 0; i < name.size(); ++i) {
        const bool isDouble = name.substr(i, 2) == "--";
        if (name[i] == '-' && !isDouble && part == &names.group)
            part = &names.volume;
        else
            *part += name[i];
        if (isDouble) ++i;
    }
    return names;
}
