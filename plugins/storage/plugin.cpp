#include "DataPlugin.h"
#include "StorageReports.h"

namespace {

const TDataPlugin<TStorage> gPlugin("storage", ReadStorage,
                                    {{kDisk, ReportDisks},
                                     {kDiskPath, ReportDiskPaths},
                                     {kPartition, ReportPartitions},
                                     {kVolume, ReportVolumes},
                                     {kFileSystem, ReportFileSystems},
                                     {kMount, ReportMounts},
                                     {kSystemStorage, ReportSystemStorage},
                                     {kHostedFileSystem, ReportHostedFileSystems},
                                     {kPartitionBasedOn, ReportPartitionAssociations},
                                     {kVolumeBasedOn, ReportVolumeAssociations},
                                     {kDiskReachedBy, ReportDiskPathAssociations},
                                     {kResidesOn, ReportFileSystemAssociations},
                                     {kMounted, ReportMountAssociations},
                                     {kSwapResidesOn, ReportSwapAssociations},
                                     {kController, ReportControllerAssociations}});

}  // namespace
