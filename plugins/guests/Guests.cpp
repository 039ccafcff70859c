#include "GuestFacts.h"

namespace {

// Every system has something in these folders. Where they are empty, no engine can be looked for.
TListing ListingOfFolder(const TSystemRoot& root, const char* folder) {
    return ListingOf(NeverEmpty(root.List(folder)));
}

}  // namespace

TGuestFacts ReadGuests(const TSystemRoot& root) {
    return {{ReadLibvirt(root), ReadProxmoxMachines(root)},
            {ReadDocker(root), ReadPodman(root), ReadContainerd(root), ReadLxc(root), ReadProxmoxContainers(root),
             ReadNspawn(root)},
            ListingOfFolder(root, "/etc"),
            ListingOfFolder(root, "/var/lib")};
}
