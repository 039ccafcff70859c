#ifndef KYR_PLUGINS_STORAGE_FILESYSTEMS_H
#define KYR_PLUGINS_STORAGE_FILESYSTEMS_H

#include "StorageFacts.h"

/// Joins block devices and mounts to file systems: those that a device holds, mounted or not, and those that are
/// mounted from elsewhere. Tells each mount which one it shows.
void ReadFileSystems(const TSystemRoot& root, TStorage& storage);
/// The devices that are swapped to.
void ReadSwaps(const TSystemRoot& root, TStorage& storage);

/// All that can hold a file system.
std::vector<const TBlockDevice*> EnumerateDevices(const TStorage& storage);

#endif
