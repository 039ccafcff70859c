#ifndef KYR_PLUGINS_STORAGE_FILESYSTEMTYPES_H
#define KYR_PLUGINS_STORAGE_FILESYSTEMTYPES_H

#include <string_view>

#include "StorageFacts.h"

/// Where the files of a type of file system are kept; eNone for those that hold none of users. A type that is not
/// known is eBlockDevice if it is mounted from one, else eOther.
EStorageKind StorageKindOf(std::string_view type, bool isOnDevice);

/// Whether a look at such a file system, or on the way through it, may wait for a server or a program, which may never
/// answer. What is not known may.
bool MayWait(std::string_view type, EStorageKind kind);

#endif
