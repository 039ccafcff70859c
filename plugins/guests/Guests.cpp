#include "EngineFiles.h"

namespace {

// Every system has something in these folders. Where they are empty, no engine can be looked for.
TListing ListingOfFolder(const TSystemRoot& root, const char* folder) {
    return ListingOf(NeverEmpty(root.List(folder)));
}

/// Where engines have their containers whose descriptions are not understood.
constexpr const char* kOthers[] = {"/var/lib/lxd/containers", "/var/lib/incus/containers",
                                   "/var/snap/lxd/common/lxd/containers", "/etc/libvirt/lxc",
                                   "/var/snap/docker/common/var-lib-docker/containers"};

TEngineContainers MissOthers(const TSystemRoot& root) {
    TEngineContainers others;
    for (const char* folder : kOthers)
        if (!ListGuests(root, folder, others).empty()) others.Miss(TListing::Missing(EAbsence::eNotSupported, folder));
    return others;
}

}  // namespace

TGuestFacts ReadGuests(const TSystemRoot& root) {
    return {{ReadLibvirt(root), ReadProxmoxMachines(root)},
            {ReadDocker(root), ReadPodman(root), ReadContainerd(root), ReadLxc(root), ReadProxmoxContainers(root),
             ReadNspawn(root), MissOthers(root)},
            ListingOfFolder(root, "/etc"),
            ListingOfFolder(root, "/var/lib")};
}
