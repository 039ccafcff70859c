#include "DataPlugin.h"
#include "StorageReports.h"

namespace {

TDataPlugin<TStorage> gStorage("storage", ReadStorage,
                               {{kDisk, ReportDisks},
                                {kDiskPath, ReportDiskPaths},
                                {kPartition, ReportPartitions},
                                {kVolume, ReportVolumes},
                                {kFileSystem, ReportFileSystems},
                                {kMount, ReportMounts},
                                {kSystemStorage, ReportSystemStorage},
                                {kHostedFileSystem, ReportHostedFileSystems},
                                {kPartitionBasedOn, ReportPartitionTies},
                                {kVolumeBasedOn, ReportVolumeTies},
                                {kDiskReachedBy, ReportDiskPathTies},
                                {kResidesOn, ReportFileSystemTies},
                                {kMounted, ReportMountTies},
                                {kSwapResidesOn, ReportSwapTies},
                                {kController, ReportControllerTies}});

}  // namespace
