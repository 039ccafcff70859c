#include <map>

#include "DomainXml.h"
#include "EngineFiles.h"

namespace {

using TText = TFact<std::string>;
using TMachines = std::map<std::string, TVirtualMachine>;

/// Where libvirt has the documents of one hypervisor: of what is defined, and of what runs.
struct TFolders {
    const char* defined;
    const char* running;
};

constexpr TFolders kFolders[] = {{"/etc/libvirt/qemu", "/run/libvirt/qemu"},
                                 {"/etc/libvirt/libxl", "/run/libvirt/libxl"}};

TText TextOf(const std::string& text, const std::string& source) {
    return text.empty() ? TText::Missing(EAbsence::eNotPresent, source) : TText::Of(std::string(Trim(text)), source);
}

TVirtualMachine MachineOf(const TFact<TDomain>& domain) {
    const TText processors = TextOf(domain->processors, domain.source);
    return {"libvirt",
            domain->name,
            TextOf(domain->uuid, domain.source),
            TextOf(domain->type, domain.source),
            TextOf(domain->architecture, domain.source),
            domain.Map(MemoryOf),
            processors.Map([](const std::string& text) { return ParseNumber<uint32_t>(text); }),
            {},
            {}};
}

std::vector<TFact<TDomain>> ReadDomains(const TSystemRoot& root, const std::string& folder, TEngineMachines& engine) {
    std::vector<TFact<TDomain>> domains;
    for (const std::string& name : ListGuests(root, folder, engine)) {
        if (WithoutEnding(name, ".xml").empty()) continue;
        TFact<TDomain> domain = root.ReadFile(folder + '/' + name, kFileLimit).Map(ParseDomain);
        engine.MissUnreadable(domain);
        if (domain) domains.push_back(std::move(domain));
    }
    return domains;
}

// What libvirt does not list as running does not run, if its folder can be read.
TFact<bool> NotListed(const TSystemRoot& root, const std::string& folder) {
    const TListing listing = ListingOf(root.List(folder));
    const bool isAbsent = !listing && listing.absence == EAbsence::eNotPresent && root.Exists("/run");
    return listing || isAbsent ? TFact<bool>::Of(false, folder) : listing;
}

TFact<bool> IsRunning(const TSystemRoot& root, const TFact<TDomain>& domain) {
    const uint32_t process = ParseNumber<uint32_t>(domain->process).value_or(0);
    return IsAlive(root, process, domain.source);
}

void ReadHypervisor(const TSystemRoot& root, const TFolders& folders, TEngineMachines& engine) {
    TMachines machines;
    for (const TFact<TDomain>& domain : ReadDomains(root, folders.defined, engine)) {
        TVirtualMachine& machine = machines[domain->name] = MachineOf(domain);
        const std::string link = std::string(folders.defined) + "/autostart/" + domain->name + ".xml";
        machine.isAutoStarted = TFact<bool>::Of(root.ReadLink(link) || root.Exists(link), link);
        machine.isRunning = NotListed(root, folders.running);
    }
    for (const TFact<TDomain>& domain : ReadDomains(root, folders.running, engine)) {
        const auto [found, isNew] = machines.emplace(domain->name, MachineOf(domain));
        found->second.isRunning = IsRunning(root, domain);
    }
    for (auto& [name, machine] : machines) engine.guests.push_back(std::move(machine));
}

}  // namespace

TEngineMachines ReadLibvirt(const TSystemRoot& root) {
    TEngineMachines engine;
    for (const TFolders& folders : kFolders) ReadHypervisor(root, folders, engine);
    return engine;
}
