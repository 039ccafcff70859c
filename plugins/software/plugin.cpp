#include "DataPlugin.h"
#include "InstanceReport.h"
#include "SoftwareFacts.h"

namespace {

constexpr const char* kPackage = "MOLTA_Package";
constexpr const char* kModule = "MOLTA_KernelModule";
constexpr const char* kService = "MOLTA_Service";

TInstancePath PathOf(const TPackage& package) {
    return {kPackage, {{"Name", package.name}, {"SoftwareElementID", package.architecture}}};
}

TInstancePath PathOf(const TKernelModule& module) { return {kModule, {{"Name", module.name}}}; }

TInstancePath PathOf(const TService& service) { return ScopedPath(kService, service.name); }

void AddTo(TInstanceReport& report, const TPackage& package) {
    report.Add("Version", package.version);
    report.Add("Manufacturer", package.maintainer);
    report.Add("Description", package.summary);
    report.Add("Section", package.section);
    if (package.source) report.Add("SourcePackage", package.source);
    report.Add("InstalledSize", package.installedSize);
    report.Add("PackageStatus", package.status);
    report.Set("Essential", package.essential);
}

void AddTo(TInstanceReport& report, const TKernelModule& module) {
    report.Add("Size", module.size);
    report.Add("ReferenceCount", module.referenceCount);
    report.Add("ModuleState", module.state);
    report.Add("Version", module.version);
}

void AddTo(TInstanceReport& report, const TService& service) {
    report.Add("Description", service.description);
    report.Add("StartMode", service.startMode);
    report.Add("Started", service.running);
}

template <typename T>
kyrStatusCode ReportAll(kyrIOHandle handle, const std::vector<T>& list) {
    return ReportEach(list, [handle](const T& item) {
        TInstanceReport report(handle, PathOf(item));
        AddTo(report, item);
        return report.Finish();
    });
}

kyrStatusCode ReportPackages(kyrIOHandle handle, const TSoftware& software) {
    return ReportAll(handle, software.packages.ValueOr({}));
}

kyrStatusCode ReportModules(kyrIOHandle handle, const TSoftware& software) {
    return ReportAll(handle, software.modules.ValueOr({}));
}

kyrStatusCode ReportServices(kyrIOHandle handle, const TSoftware& software) {
    return ReportAll(handle, software.services);
}

kyrStatusCode ReportModuleDependencies(kyrIOHandle handle, const TSoftware& software) {
    return ReportEach(software.modules.ValueOr({}), [handle](const TKernelModule& module) {
        return ReportEach(module.users, [&](const std::string& user) {
            return ReportAssociation(handle, "MOLTA_ModuleDependency", "Antecedent", PathOf(module), "Dependent",
                                     TInstancePath{kModule, {{"Name", user}}});
        });
    });
}

kyrStatusCode ReportHostedServices(kyrIOHandle handle, const TSoftware& software) {
    return ReportEach(software.services, [handle](const TService& service) {
        return ReportAssociation(handle, "MOLTA_HostedService", "Antecedent", ComputerSystem(), "Dependent",
                                 PathOf(service));
    });
}

kyrStatusCode ReportInstalledPackages(kyrIOHandle handle, const TSoftware& software) {
    return ReportEach(software.packages.ValueOr({}), [handle](const TPackage& package) {
        return ReportAssociation(handle, "MOLTA_InstalledPackage", "GroupComponent", ComputerSystem(), "PartComponent",
                                 PathOf(package));
    });
}

TListing Packages(const TSoftware& software) { return software.packageListing; }
TListing Modules(const TSoftware& software) { return ListingOf(software.modules); }
TListing Services(const TSoftware& software) { return software.serviceListing; }

const TDataPlugin<TSoftware> gPlugin("software", ReadSoftware,
                                     {{kPackage, ReportPackages, {Packages}},
                                      {kModule, ReportModules, {Modules}},
                                      {kService, ReportServices, {Services}},
                                      {"MOLTA_ModuleDependency", ReportModuleDependencies, {Modules}},
                                      {"MOLTA_HostedService", ReportHostedServices, {Services}},
                                      {"MOLTA_InstalledPackage", ReportInstalledPackages, {Packages}}});

}  // namespace
