#include "BlockDevices.h"
#include "FileSystems.h"

namespace {

template <typename T>
void Append(const std::vector<T>& from, std::vector<const TBlockDevice*>& devices) {
    for (const T& device : from) devices.push_back(&device);
}

}  // namespace

TStorage ReadStorage(const TSystemRoot& root) {
    TStorage storage;
    ReadBlockDevices(root, storage);
    ReadFileSystems(root, storage);
    ReadSwaps(root, storage);
    storage.busListing = ReadBusListing(root);
    return storage;
}

std::vector<const TBlockDevice*> EnumerateDevices(const TStorage& storage) {
    std::vector<const TBlockDevice*> devices;
    Append(storage.disks, devices);
    Append(storage.partitions, devices);
    Append(storage.volumes, devices);
    return devices;
}
