#include "FileSystemTypes.h"

namespace {

struct TTypeName {
    std::string_view name;
    EStorageKind kind;
};

// Cluster file systems count as network file systems, because they wait for other nodes.
constexpr TTypeName kTypes[] = {
    {"9p", EStorageKind::eNetwork},
    {"acfs", EStorageKind::eNetwork},
    {"afs", EStorageKind::eNetwork},
    {"beegfs", EStorageKind::eNetwork},
    {"ceph", EStorageKind::eNetwork},
    {"cifs", EStorageKind::eNetwork},
    {"coda", EStorageKind::eNetwork},
    {"gfs2", EStorageKind::eNetwork},
    {"gpfs", EStorageKind::eNetwork},
    {"lustre", EStorageKind::eNetwork},
    {"ncpfs", EStorageKind::eNetwork},
    {"nfs", EStorageKind::eNetwork},
    {"nfs4", EStorageKind::eNetwork},
    {"ocfs2", EStorageKind::eNetwork},
    {"orangefs", EStorageKind::eNetwork},
    {"prl_fs", EStorageKind::eNetwork},
    {"pvfs2", EStorageKind::eNetwork},
    {"smb3", EStorageKind::eNetwork},
    {"smbfs", EStorageKind::eNetwork},
    {"vboxsf", EStorageKind::eNetwork},
    {"virtiofs", EStorageKind::eNetwork},
    {"vmhgfs", EStorageKind::eNetwork},
    {"fuse", EStorageKind::eProgram},
    {"fuseblk", EStorageKind::eProgram},
    {"btrfs", EStorageKind::eBlockDevice},
    {"zfs", EStorageKind::eBlockDevice},
    {"overlay", EStorageKind::eLayers},
    {"devtmpfs", EStorageKind::eMemory},
    {"ramfs", EStorageKind::eMemory},
    {"tmpfs", EStorageKind::eMemory},
    {"autofs", EStorageKind::eNone},
    {"binfmt_misc", EStorageKind::eNone},
    {"bpf", EStorageKind::eNone},
    {"cgroup", EStorageKind::eNone},
    {"cgroup2", EStorageKind::eNone},
    {"configfs", EStorageKind::eNone},
    {"cpuset", EStorageKind::eNone},
    {"debugfs", EStorageKind::eNone},
    {"devpts", EStorageKind::eNone},
    {"dlmfs", EStorageKind::eNone},
    {"efivarfs", EStorageKind::eNone},
    {"functionfs", EStorageKind::eNone},
    {"fuse.gvfsd-fuse", EStorageKind::eNone},
    {"fuse.lxcfs", EStorageKind::eNone},
    {"fuse.portal", EStorageKind::eNone},
    {"fusectl", EStorageKind::eNone},
    {"hugetlbfs", EStorageKind::eNone},
    {"mqueue", EStorageKind::eNone},
    {"nfsd", EStorageKind::eNone},
    {"nsfs", EStorageKind::eNone},
    {"proc", EStorageKind::eNone},
    {"pstore", EStorageKind::eNone},
    {"resctrl", EStorageKind::eNone},
    {"rootfs", EStorageKind::eNone},
    {"rpc_pipefs", EStorageKind::eNone},
    {"securityfs", EStorageKind::eNone},
    {"selinuxfs", EStorageKind::eNone},
    {"smackfs", EStorageKind::eNone},
    {"sysfs", EStorageKind::eNone},
    {"tracefs", EStorageKind::eNone},
};

}  // namespace

EStorageKind StorageKindOf(std::string_view type, bool isOnDevice) {
    for (const TTypeName& entry : kTypes)
        if (entry.name == type) return entry.kind;
    if (type.substr(0, 5) == "fuse.") return EStorageKind::eProgram;
    return isOnDevice ? EStorageKind::eBlockDevice : EStorageKind::eOther;
}

bool MayBlock(std::string_view type, EStorageKind kind) {
    if (type == "autofs" || type.substr(0, 5) == "fuse.") return true;
    return kind == EStorageKind::eNetwork || kind == EStorageKind::eProgram || kind == EStorageKind::eOther;
}
