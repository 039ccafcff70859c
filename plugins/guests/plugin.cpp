#include "DataPlugin.h"
#include "GuestFacts.h"
#include "InstanceReport.h"

namespace {

constexpr const char* kMachine = "MOLTA_VirtualMachine";
constexpr const char* kContainer = "MOLTA_HostedContainer";
constexpr const char* kHostOfMachine = "MOLTA_HostOfVirtualMachine";
constexpr const char* kHostOfContainer = "MOLTA_HostOfContainer";

TInstancePath PathOf(const TVirtualMachine& machine) {
    return {kMachine, {{"Engine", machine.engine}, {"Name", machine.name}}};
}
TInstancePath PathOf(const THostedContainer& container) {
    return {kContainer, {{"Engine", container.engine}, {"Name", container.name}}};
}

kyrStatusCode Report(kyrIOHandle handle, const TVirtualMachine& machine) {
    TInstanceReport report(handle, PathOf(machine));
    report.Add("UUID", machine.uuid);
    report.Add("Hypervisor", machine.hypervisor);
    report.Add("Architecture", machine.architecture);
    report.Add("MemorySize", machine.memory);
    report.Add("NumberOfProcessors", machine.processors);
    report.Add("AutoStart", machine.isAutoStarted);
    report.Add("Running", machine.isRunning);
    return report.Finish();
}

kyrStatusCode Report(kyrIOHandle handle, const THostedContainer& container) {
    TInstanceReport report(handle, PathOf(container));
    report.Add("ContainerID", container.id);
    report.Add("Image", container.image);
    report.Add("Pod", container.pod);
    report.Add("CreationDate", TimestampOf(container.created));
    report.Add("MemoryLimit", container.memory);
    report.Add("AutoStart", container.isAutoStarted);
    report.Add("Running", container.isRunning);
    return report.Finish();
}

/// Calls the function with each guest of all engines.
template <typename TEngines, typename F>
kyrStatusCode ForEachGuest(const TEngines& engines, F report) {
    return ReportEach(engines, [&report](const auto& engine) { return ReportEach(engine.guests, report); });
}

template <typename TEngines>
kyrStatusCode ReportGuests(kyrIOHandle handle, const TEngines& engines) {
    return ForEachGuest(engines, [handle](const auto& guest) { return Report(handle, guest); });
}

template <typename TEngines>
kyrStatusCode ReportHosts(kyrIOHandle handle, const char* className, const TEngines& engines) {
    const TInstancePath host = ComputerSystem();
    if (!IsKnownClass(handle, host.className.c_str())) return kyrStatusOK;
    return ForEachGuest(engines, [&](const auto& guest) {
        return ReportAssociation(handle, className, "Antecedent", host, "Dependent", PathOf(guest));
    });
}

kyrStatusCode ReportMachines(kyrIOHandle handle, const TGuestFacts& facts) {
    return ReportGuests(handle, facts.machines);
}
kyrStatusCode ReportContainers(kyrIOHandle handle, const TGuestFacts& facts) {
    return ReportGuests(handle, facts.containers);
}
kyrStatusCode ReportHostOfMachines(kyrIOHandle handle, const TGuestFacts& facts) {
    return ReportHosts(handle, kHostOfMachine, facts.machines);
}
kyrStatusCode ReportHostOfContainers(kyrIOHandle handle, const TGuestFacts& facts) {
    return ReportHosts(handle, kHostOfContainer, facts.containers);
}

TListing Settings(const TGuestFacts& facts) { return facts.settings; }
TListing States(const TGuestFacts& facts) { return facts.states; }
template <size_t I>
TListing Machines(const TGuestFacts& facts) {
    return facts.machines[I].listing;
}
template <size_t I>
TListing Containers(const TGuestFacts& facts) {
    return facts.containers[I].listing;
}

using TSources = std::vector<TListing (*)(const TGuestFacts&)>;
const TSources kMachineSources = {Settings, Machines<0>, Machines<1>};
const TSources kContainerSources = {Settings,      States,        Containers<0>, Containers<1>, Containers<2>,
                                    Containers<3>, Containers<4>, Containers<5>, Containers<6>};

const TDataPlugin<TGuestFacts> gPlugin("guests", ReadGuests,
                                       {{kMachine, ReportMachines, kMachineSources},
                                        {kContainer, ReportContainers, kContainerSources},
                                        {kHostOfMachine, ReportHostOfMachines, kMachineSources},
                                        {kHostOfContainer, ReportHostOfContainers, kContainerSources}});

}  // namespace
