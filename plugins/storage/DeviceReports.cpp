#include "DataPlugin.h"
#include "StorageReports.h"

namespace {

constexpr const char* kClasses[] = {kDisk, kPartition, kVolume, kDiskPath};  // by EDeviceKind
// Declared by the plugin "memory", which may be missing.
constexpr const char* kSwapArea = "MOLTA_SwapArea";

void SetIfAny(TInstanceReport& report, const char* property, const std::string& text) {
    if (!text.empty()) report.Set(property, text);
}

void AddDevice(const TBlockDevice& device, TInstanceReport& report) {
    report.Set("Name", device.name);
    report.Add("DeviceNumber", device.number);
    report.Add("Size", device.size);
    report.Add("ReadOnly", device.readOnly);
    report.Add("ContentType", device.content.type);
    report.Add("ContentLabel", device.content.label);
    report.Add("ContentUUID", device.content.uuid);
}

void AddPartitionTable(const TContent& content, TInstanceReport& report) {
    report.Add("PartitionTable", content.partitionTable);
    report.Add("PartitionTableUUID", content.partitionTableUuid);
}

kyrStatusCode ReportDisk(kyrIOHandle handle, const TDisk& disk) {
    TInstanceReport report(handle, PathOf({EDeviceKind::eDisk, disk.path}));
    report.Set("Caption", disk.model.ValueOr(disk.path));
    AddDevice(disk, report);
    report.Set("DriveType", static_cast<uint16_t>(disk.driveType));
    report.Set("BusType", static_cast<uint16_t>(disk.busType));
    report.Add("Manufacturer", disk.manufacturer);
    report.Add("Model", disk.model);
    report.Add("SerialNumber", disk.serialNumber);
    report.Add("FirmwareRevision", disk.firmware);
    report.Add("FirmwareIDs", disk.firmwareIds);
    report.Add("WWN", disk.wwn);
    report.Add("Bay", disk.bay);
    report.Add("State", disk.state);
    report.Add("Rotational", disk.rotational);
    report.Add("RotationRate", disk.rotationRate);
    report.Add("Removable", disk.removable);
    report.Add("LogicalBlockSize", disk.logicalBlockSize);
    report.Add("PhysicalBlockSize", disk.physicalBlockSize);
    AddPartitionTable(disk.content, report);
    return report.Finish();
}

kyrStatusCode ReportDiskPath(kyrIOHandle handle, const TDiskPath& path) {
    TInstanceReport report(handle, DevicePath(kDiskPath, path.name));
    report.Set("Name", path.name);
    report.Add("Controller", path.controller);
    report.Add("Transport", path.transport);
    report.Add("Address", path.address);
    report.Add("State", path.state);
    report.Add("AccessState", path.accessState);
    return report.Finish();
}

kyrStatusCode ReportPartition(kyrIOHandle handle, const TPartition& partition) {
    TInstanceReport report(handle, PathOf({EDeviceKind::ePartition, partition.path}));
    report.Set("Caption", partition.partitionName.ValueOr(partition.path));
    AddDevice(partition, report);
    report.Add("PartitionNumber", partition.number);
    report.Add("StartingOffset", partition.offset);
    report.Add("PartitionType", partition.type);
    report.Add("PartitionTypeName", partition.typeName);
    report.Add("PartitionName", partition.partitionName);
    report.Add("PartitionUUID", partition.uuid);
    return report.Finish();
}

kyrStatusCode ReportVolume(kyrIOHandle handle, const TVolume& volume) {
    TInstanceReport report(handle, PathOf({EDeviceKind::eVolume, volume.path}));
    report.Set("Caption", volume.path);
    AddDevice(volume, report);
    report.Set("VolumeType", static_cast<uint16_t>(volume.type));
    report.Add("Identifier", volume.identifier);
    SetIfAny(report, "VolumeGroup", volume.volumeGroup);
    SetIfAny(report, "LogicalVolume", volume.logicalVolume);
    SetIfAny(report, "EncryptionFormat", volume.encryption);
    report.Add("RAIDLevel", volume.raidLevel);
    report.Add("RAIDDevices", volume.raidDevices);
    report.Add("MissingDevices", volume.missingDevices);
    report.Add("ArrayState", volume.arrayState);
    report.Add("BackingFile", volume.backingFile);
    report.Add("LogicalBlockSize", volume.logicalBlockSize);
    AddPartitionTable(volume.content, report);
    return report.Finish();
}

// An association to a device that is not reported would refer to nothing, so it is left out.
kyrStatusCode ReportBasedOn(kyrIOHandle handle, const char* className, const TStorage& storage,
                            const std::string& antecedent, const TInstancePath& dependent) {
    const auto found = storage.devices.find(antecedent);
    if (found == storage.devices.end()) return kyrStatusOK;
    return ReportAssociation(handle, className, "Antecedent", PathOf(found->second), "Dependent", dependent);
}

}  // namespace

TInstancePath PathOf(const TDeviceKey& device) {
    return DevicePath(kClasses[static_cast<int>(device.kind)], device.path);
}

kyrStatusCode ReportDisks(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(handle, storage.disks, ReportDisk);
}

kyrStatusCode ReportDiskPaths(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(handle, storage.diskPaths, ReportDiskPath);
}

kyrStatusCode ReportPartitions(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(handle, storage.partitions, ReportPartition);
}

kyrStatusCode ReportVolumes(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(handle, storage.volumes, ReportVolume);
}

kyrStatusCode ReportSystemStorage(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(storage.devices, [&](const auto& device) {
        return ReportSystemDevice(handle, kSystemStorage, PathOf(device.second));
    });
}

kyrStatusCode ReportPartitionAssociations(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(storage.partitions, [&](const TPartition& partition) {
        return ReportBasedOn(handle, kPartitionBasedOn, storage, partition.parent,
                             PathOf({EDeviceKind::ePartition, partition.path}));
    });
}

kyrStatusCode ReportVolumeAssociations(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(storage.volumes, [&](const TVolume& volume) {
        const TInstancePath path = PathOf({EDeviceKind::eVolume, volume.path});
        return ReportEach(volume.components, [&](const std::string& component) {
            return ReportBasedOn(handle, kVolumeBasedOn, storage, component, path);
        });
    });
}

kyrStatusCode ReportDiskPathAssociations(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(storage.diskPaths, [&](const TDiskPath& path) {
        const auto disk = storage.devices.find(path.disk);
        if (disk == storage.devices.end()) return kyrStatusOK;
        return ReportBasedOn(handle, kDiskReachedBy, storage, path.name, PathOf(disk->second));
    });
}

kyrStatusCode ReportFileSystemAssociations(kyrIOHandle handle, const TStorage& storage) {
    return ReportEach(storage.fileSystems, [&](const TFileSystem& fileSystem) {
        const TInstancePath path = ScopedPath(kFileSystem, fileSystem.name);
        return ReportEach(fileSystem.devices, [&](const std::string& device) {
            return ReportBasedOn(handle, kResidesOn, storage, device, path);
        });
    });
}

kyrStatusCode ReportSwapAssociations(kyrIOHandle handle, const TStorage& storage) {
    if (!IsKnownClass(handle, kSwapArea)) return kyrStatusOK;
    return ReportEach(storage.swaps, [&](const TSwap& swap) {
        return ReportBasedOn(handle, kSwapResidesOn, storage, swap.device, DevicePath(kSwapArea, swap.path));
    });
}

kyrStatusCode ReportControllerAssociations(kyrIOHandle handle, const TStorage& storage) {
    const kyrStatusCode status = ReportEach(storage.disks, [&](const TDisk& disk) {
        return ReportBusDevice(handle, kController, disk.controller, PathOf({EDeviceKind::eDisk, disk.path}));
    });
    if (status != kyrStatusOK) return status;
    return ReportEach(storage.diskPaths, [&](const TDiskPath& path) {
        return ReportBusDevice(handle, kController, path.controllerDevice, PathOf({EDeviceKind::ePath, path.name}));
    });
}
