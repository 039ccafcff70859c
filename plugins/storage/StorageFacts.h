#ifndef KYR_PLUGINS_STORAGE_STORAGEFACTS_H
#define KYR_PLUGINS_STORAGE_STORAGEFACTS_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "BusDevice.h"
#include "SystemRoot.h"

enum class EDeviceKind { eDisk, ePartition, eVolume, ePath };

/// Kind and path of a device; other facts refer to devices by their kernel names.
struct TDeviceKey {
    EDeviceKind kind;
    std::string path;  ///< its device file
};

/// What udev found on a device. A missing label, UUID or version is a fact without a source, since udev would know it.
struct TContent {
    TFact<std::string> type;  ///< of a file system, or swap, LVM2_member, crypto_LUKS and the like
    TFact<std::string> version;
    TFact<std::string> label;
    TFact<std::string> uuid;
    std::string usage;  ///< "filesystem", "raid", "crypto" or "other"; empty if not known
    TFact<std::string> partitionTable;
    TFact<std::string> partitionTableUuid;
};

struct TBlockDevice {
    std::string name;  ///< the kernel name
    std::string path;
    TFact<std::string> number;       ///< "major:minor"
    std::vector<std::string> paths;  ///< the device file and all links to it
    TFact<uint64_t> size;
    TFact<bool> readOnly;
    TContent content;
};

enum class EDriveType : uint16_t { eDisk = 1, eOptical, eFloppy, eCard };

enum class EBusType : uint16_t {
    eUnknown,
    eAta,
    eSata,
    eSas,
    eScsi,
    eFibreChannel,
    eIscsi,
    eNvme,
    eUsb,
    eMmc,
    eFireWire,
    eVirtio,
    eXen,
    eHyperV
};

struct TDisk : TBlockDevice {
    EDriveType driveType = EDriveType::eDisk;
    EBusType busType = EBusType::eUnknown;
    TFact<std::string> model, manufacturer, serialNumber, firmware, wwn, state;
    TFact<bool> rotational, removable;
    TFact<uint32_t> rotationRate;
    TFact<uint32_t> logicalBlockSize, physicalBlockSize;
    TFact<std::string> bay;
    TFact<std::vector<std::string>> firmwareIds;
    TBusDevice controller;
};

/// One path of a multipath NVMe namespace; the kernel combines the paths into one disk.
struct TDiskPath {
    std::string name;
    std::string disk;
    TBusDevice controllerDevice;
    TFact<std::string> controller, transport, address, accessState, state;
};

struct TPartition : TBlockDevice {
    std::string parent;
    TFact<uint32_t> number;
    TFact<uint64_t> offset;
    TFact<std::string> type, typeName, partitionName, uuid;
};

enum class EVolumeType : uint16_t {
    eOther,
    eLogicalVolume,
    eEncrypted,
    eMultipath,
    eSoftwareRaid,
    eLoop,
    eCompressedMemory,
    eCache,
    eNetwork,
    eZfsVolume,
    ePartition,
    eFirmwareRaid
};

struct TVolume : TBlockDevice {
    EVolumeType type = EVolumeType::eOther;
    std::vector<std::string> components;
    TFact<uint32_t> logicalBlockSize;
    TFact<std::string> identifier;
    std::string volumeGroup, logicalVolume, encryption;
    TFact<std::string> raidLevel, arrayState, backingFile;
    TFact<uint32_t> raidDevices, missingDevices;
};

enum class EStorageKind : uint16_t { eOther, eBlockDevice, eMemory, eLayers, eNetwork, eProgram, eNone };

struct TMount {
    std::string name;  ///< the mount point, with a number if mounts are stacked on it
    std::string id, parentId, number, root, point, options, type, source;
    bool readOnly = false;
    bool covered = false;    ///< another mount is stacked on it
    std::string fileSystem;  ///< by name; empty for one without user files
};

struct TSpace {
    uint64_t size = 0, available = 0, used = 0;
    uint64_t inodes = 0, freeInodes = 0;  ///< 0 if the file system has no fixed number of them
};

struct TFileSystem {
    std::string name;
    EStorageKind kind = EStorageKind::eOther;
    TFact<std::string> type, version, label, uuid;
    std::vector<std::string> devices;
    TFact<TSpace> space;
};

/// A swap area and the device it is on. The plugin "memory" reports its size and use.
struct TSwap {
    std::string path;  ///< as in /proc/swaps
    std::string device;
};

struct TStorage {
    std::vector<TDisk> disks;
    std::vector<TDiskPath> diskPaths;
    std::vector<TPartition> partitions;
    std::vector<TVolume> volumes;
    std::map<std::string, TDeviceKey> devices;  ///< by kernel name
    std::vector<TFileSystem> fileSystems;
    TFact<std::vector<TMount>> mounts;
    std::vector<TSwap> swaps;
    TListing swapListing;
    TListing busListing;  ///< of the devices that disks are reached by
    TListing deviceListing;
};

TStorage ReadStorage(const TSystemRoot& root);

#endif
