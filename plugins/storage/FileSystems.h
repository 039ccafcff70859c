#ifndef KYR_PLUGINS_STORAGE_FILESYSTEMS_H
#define KYR_PLUGINS_STORAGE_FILESYSTEMS_H

#include "StorageFacts.h"

/// Lists the file systems: those on block devices, mounted or not, and those mounted from elsewhere. Sets the file
/// system of each mount.
void ReadFileSystems(const TSystemRoot& root, TStorage& storage);
/// The swap areas on block devices.
void ReadSwaps(const TSystemRoot& root, TStorage& storage);

/// All devices that can hold a file system.
std::vector<const TBlockDevice*> EnumerateDevices(const TStorage& storage);

#endif
