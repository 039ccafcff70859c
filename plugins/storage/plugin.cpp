#include "DataPlugin.h"
#include "StorageReports.h"

namespace {

TListing Devices(const TStorage& storage) { return storage.deviceListing; }
TListing Mounts(const TStorage& storage) { return ListingOf(storage.mounts); }
TListing Buses(const TStorage& storage) { return storage.busListing; }
TListing Swaps(const TStorage& storage) { return storage.swapListing; }

const TDataPlugin<TStorage> gPlugin("storage", ReadStorage,
                                    {{kDisk, ReportDisks, {Devices}},
                                     {kDiskPath, ReportDiskPaths, {Devices}},
                                     {kPartition, ReportPartitions, {Devices}},
                                     {kVolume, ReportVolumes, {Devices}},
                                     {kFileSystem, ReportFileSystems, {Devices, Mounts}},
                                     {kMount, ReportMounts, {Mounts}},
                                     {kSystemStorage, ReportSystemStorage, {Devices}},
                                     {kHostedFileSystem, ReportHostedFileSystems, {Devices, Mounts}},
                                     {kPartitionBasedOn, ReportPartitionAssociations, {Devices}},
                                     {kVolumeBasedOn, ReportVolumeAssociations, {Devices}},
                                     {kDiskReachedBy, ReportDiskPathAssociations, {Devices}},
                                     {kResidesOn, ReportFileSystemAssociations, {Devices, Mounts}},
                                     {kMounted, ReportMountAssociations, {Devices, Mounts}},
                                     {kSwapResidesOn, ReportSwapAssociations, {Devices, Swaps}},
                                     {kController, ReportControllerAssociations, {Devices, Buses}}});

}  // namespace
