#ifndef KYR_PLUGINS_STORAGE_FILESYSTEMTYPES_H
#define KYR_PLUGINS_STORAGE_FILESYSTEMTYPES_H

#include <string_view>

#include "StorageFacts.h"

/// Where a file system of the type stores its files; eNone for those without user files, such as proc. An unknown type
/// is eBlockDevice if it is mounted from a block device, else eOther.
EStorageKind StorageKindOf(std::string_view type, bool isOnDevice);

/// True if a system call on such a file system, or on a path through it, may block on a server or a user-space program.
/// Unknown types may.
bool MayBlock(std::string_view type, EStorageKind kind);

#endif
