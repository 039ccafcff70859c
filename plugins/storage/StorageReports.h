#ifndef KYR_PLUGINS_STORAGE_STORAGEREPORTS_H
#define KYR_PLUGINS_STORAGE_STORAGEREPORTS_H

#include "InstanceReport.h"
#include "StorageFacts.h"

inline constexpr const char* kDisk = "MOLTA_DiskDrive";
inline constexpr const char* kDiskPath = "MOLTA_DiskPath";
inline constexpr const char* kPartition = "MOLTA_DiskPartition";
inline constexpr const char* kVolume = "MOLTA_StorageVolume";
inline constexpr const char* kFileSystem = "MOLTA_FileSystem";
inline constexpr const char* kMount = "MOLTA_Mount";
inline constexpr const char* kSystemStorage = "MOLTA_SystemStorage";
inline constexpr const char* kHostedFileSystem = "MOLTA_HostedFileSystem";
inline constexpr const char* kPartitionBasedOn = "MOLTA_PartitionBasedOn";
inline constexpr const char* kVolumeBasedOn = "MOLTA_VolumeBasedOn";
inline constexpr const char* kDiskReachedBy = "MOLTA_DiskReachedBy";
inline constexpr const char* kResidesOn = "MOLTA_ResidesOnExtent";
inline constexpr const char* kMounted = "MOLTA_MountedFileSystem";
inline constexpr const char* kSwapResidesOn = "MOLTA_SwapResidesOnExtent";
inline constexpr const char* kController = "MOLTA_StorageController";

TInstancePath PathOf(const TDeviceKey& device);

kyrStatusCode ReportDisks(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportDiskPaths(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportPartitions(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportVolumes(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportFileSystems(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportMounts(kyrIOHandle handle, const TStorage& storage);

kyrStatusCode ReportSystemStorage(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportHostedFileSystems(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportPartitionAssociations(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportVolumeAssociations(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportDiskPathAssociations(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportFileSystemAssociations(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportMountAssociations(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportSwapAssociations(kyrIOHandle handle, const TStorage& storage);
kyrStatusCode ReportControllerAssociations(kyrIOHandle handle, const TStorage& storage);

#endif
