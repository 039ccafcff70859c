#ifndef KYR_HOST_RENDER_SUMMARYSTORAGE_H
#define KYR_HOST_RENDER_SUMMARYSTORAGE_H

#include <string>
#include <unordered_map>
#include <vector>

class TCIMInstance;
class TContainer;

/// The associations by which partitions, volumes and file systems stand on disks.
constexpr const char* kStorageAssociations[] = {"MOLTA_PartitionBasedOn", "MOLTA_VolumeBasedOn",
                                                "MOLTA_ResidesOnExtent", "MOLTA_MountedFileSystem",
                                                "MOLTA_SwapResidesOnExtent"};

/// What stands on the disks of a collection.
class TStorageContents {
public:
    explicit TStorageContents(const TContainer& container);

    /// Where the file systems on the disk are mounted, "swap", and the content of what is not in use. In the order in
    /// which associations lead there.
    std::vector<std::string> ContentsOf(const TCIMInstance& disk) const;

private:
    std::unordered_map<const TCIMInstance*, std::vector<const TCIMInstance*>> fDependents;
};

#endif
