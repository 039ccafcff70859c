#ifndef KYR_PLUGINS_GUESTS_GUESTFACTS_H
#define KYR_PLUGINS_GUESTS_GUESTFACTS_H

#include <array>
#include <string>
#include <vector>

#include "SystemRoot.h"

/// A virtual machine that this computer hosts, whether or not it runs.
struct TVirtualMachine {
    std::string engine;
    std::string name;  ///< unique for the engine
    TFact<std::string> uuid;
    TFact<std::string> hypervisor;
    TFact<std::string> architecture;
    TFact<uint64_t> memory;  ///< in bytes
    TFact<uint32_t> processors;
    TFact<bool> isAutoStarted;
    TFact<bool> isRunning;
};

/// A container that this computer hosts, whether or not it runs.
struct THostedContainer {
    std::string engine;
    std::string name;  ///< unique for the engine
    TFact<std::string> id = {};
    TFact<std::string> image = {};
    TFact<std::string> pod = {};  ///< "namespace/name"
    TFact<int64_t> created = {};  ///< seconds since 1970
    TFact<uint64_t> memory = {};  ///< the limit in bytes
    TFact<bool> isAutoStarted = {};
    TFact<bool> isRunning = {};
};

/// What one engine hosts, and whether its files could be read; an engine that is not installed hosts nothing.
template <typename TGuest>
struct TEngineGuests {
    std::vector<TGuest> guests;
    TListing listing = TListing::Of(true, "");

    /// Notes that a file should have told of guests and does not.
    template <typename T>
    void Miss(const TFact<T>& file) {
        if (listing && !file) listing = ListingOf(file);
    }
    /// The same, unless there is no such file.
    template <typename T>
    void MissUnreadable(const TFact<T>& file) {
        if (IsUnreadable(file) || file.absence == EAbsence::eNotSupported) Miss(file);
    }
};

using TEngineMachines = TEngineGuests<TVirtualMachine>;
using TEngineContainers = TEngineGuests<THostedContainer>;

struct TGuestFacts {
    /// In the order of libvirt, Proxmox.
    std::array<TEngineMachines, 2> machines;
    /// In the order of Docker, Podman, containerd, LXC, Proxmox, systemd-nspawn, others.
    std::array<TEngineContainers, 7> containers;
    /// Whether the folders can be seen at all in which the engines have theirs.
    TListing settings;
    TListing states;
};

TGuestFacts ReadGuests(const TSystemRoot& root);

// The engines.
TEngineMachines ReadLibvirt(const TSystemRoot& root);
TEngineMachines ReadProxmoxMachines(const TSystemRoot& root);
TEngineContainers ReadDocker(const TSystemRoot& root);
TEngineContainers ReadPodman(const TSystemRoot& root);
TEngineContainers ReadContainerd(const TSystemRoot& root);
TEngineContainers ReadLxc(const TSystemRoot& root);
TEngineContainers ReadProxmoxContainers(const TSystemRoot& root);
TEngineContainers ReadNspawn(const TSystemRoot& root);

#endif
