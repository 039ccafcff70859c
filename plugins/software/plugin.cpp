#include <algorithm>

#include "DataPlugin.h"
#include "InstanceReport.h"
#include "SoftwareFacts.h"

namespace {

constexpr const char* kPackage = "MOLTA_Package";
constexpr const char* kLanguagePackage = "MOLTA_LanguagePackage";
constexpr const char* kRepository = "MOLTA_Repository";
constexpr const char* kPendingUpdate = "MOLTA_PendingUpdate";
constexpr const char* kUpdateState = "MOLTA_UpdateState";
constexpr const char* kInstalledPackage = "MOLTA_InstalledPackage";
constexpr const char* kSystemRepository = "MOLTA_SystemRepository";
constexpr const char* kModule = "MOLTA_KernelModule";
constexpr const char* kService = "MOLTA_Service";

TInstancePath PathOf(const TPackage& package) {
    return {kPackage, {{"Name", package.name}, {"SoftwareElementID", package.id}}};
}

// The same package can be installed in several folders.
TInstancePath PathOf(const TLanguagePackage& package) {
    return {kLanguagePackage, {{"Name", package.name}, {"SoftwareElementID", package.folder}}};
}

TInstancePath PathOf(const TRepository& repository) { return {kRepository, {{"Name", repository.name}}}; }

TInstancePath PathOf(const TPendingUpdate& update) {
    return {kPendingUpdate, {{"Name", update.name}, {"SoftwareElementID", update.architecture}}};
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
    report.Add("Essential", package.essential);
    report.Set("PackageFormat", package.format);
    report.Add("InstallDate", TimestampOf(package.installDate));
}

void AddTo(TInstanceReport& report, const TLanguagePackage& package) {
    report.Add("Version", package.version);
    report.Add("Manufacturer", package.author);
    report.Add("Description", package.summary);
    report.Set("PackageFormat", package.format);
}

void SetIfAny(TInstanceReport& report, const char* property, const std::string& value, const std::string& source) {
    if (!value.empty()) report.Add(property, TFact<std::string>::Of(value, source));
}

void SetIfAny(TInstanceReport& report, const char* property, const std::vector<std::string>& value,
              const std::string& source) {
    if (!value.empty()) report.Add(property, TFact<std::vector<std::string>>::Of(value, source));
}

void AddTo(TInstanceReport& report, const TRepository& repository) {
    SetIfAny(report, "ElementName", repository.title, repository.file);
    report.Set("PackageFormat", repository.format);
    SetIfAny(report, "URLs", repository.urls, repository.file);
    SetIfAny(report, "Distribution", repository.distribution, repository.file);
    SetIfAny(report, "Components", repository.components, repository.file);
    report.Add("Enabled", TFact<bool>::Of(repository.isEnabled, repository.file));
    report.Set("SourcePackages", repository.hasSources);
    if (repository.checksSignatures)
        report.Add("SignatureCheck", TFact<bool>::Of(*repository.checksSignatures, repository.file));
    SetIfAny(report, "SignedBy", repository.signedBy, repository.file);
    report.Set("ConfigurationFile", repository.file);
}

void AddTo(TInstanceReport& report, const TPendingUpdate& update) {
    report.Set("InstalledVersion", update.installed);
    report.Add("Version", TFact<std::string>::Of(update.candidate, update.source));
    SetIfAny(report, "Archive", update.archive, update.source);
    report.Add("Security", TFact<bool>::Of(update.isSecurity, update.source));
    report.Set("Held", update.isHeld);
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

kyrStatusCode ReportMissing(kyrIOHandle handle, const char* className, const std::vector<TListing>& missing) {
    return ReportEach(missing, [&](const TListing& source) { return ReportMissingSource(handle, className, source); });
}

template <typename T>
kyrStatusCode ReportFound(kyrIOHandle handle, const char* className, const TFound<T>& found) {
    const kyrStatusCode status = ReportMissing(handle, className, found.missing);
    return status == kyrStatusOK ? ReportAll(handle, found.items) : status;
}

kyrStatusCode ReportPackages(kyrIOHandle handle, const TSoftware& software) {
    return ReportFound(handle, kPackage, software.packages);
}

kyrStatusCode ReportLanguagePackages(kyrIOHandle handle, const TSoftware& software) {
    return ReportFound(handle, kLanguagePackage, software.languagePackages);
}

kyrStatusCode ReportRepositories(kyrIOHandle handle, const TSoftware& software) {
    return ReportFound(handle, kRepository, software.repositories);
}

const TPendingUpdates& UpdatesOf(const TSoftware& software) {
    if (!software.updates)
        software.updates = ReadPendingUpdates(TSystemRoot::FromEnvironment(), software.packages.items);
    return *software.updates;
}

kyrStatusCode ReportPendingUpdates(kyrIOHandle handle, const TSoftware& software) {
    return ReportAll(handle, UpdatesOf(software).updates);
}

kyrStatusCode ReportUpdateState(kyrIOHandle handle, const TSoftware& software) {
    if (!software.updateState) return kyrStatusOK;
    const TUpdateState& state = *software.updateState;
    TInstanceReport report(handle, {kUpdateState, {{"Name", "apt"}}});
    report.Add("ListDate", TimestampOf(state.listDate));
    report.Add("RebootRequired", state.rebootRequired);
    if (state.rebootPackages) report.Add("RebootPackages", state.rebootPackages);
    return report.Finish();
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

template <typename T>
kyrStatusCode ReportParts(kyrIOHandle handle, const char* className, const TFound<T>& found) {
    const kyrStatusCode status = ReportMissing(handle, className, found.missing);
    if (status != kyrStatusOK) return status;
    return ReportEach(found.items, [&](const T& item) {
        return ReportAssociation(handle, className, "GroupComponent", ComputerSystem(), "PartComponent", PathOf(item));
    });
}

kyrStatusCode ReportInstalledPackages(kyrIOHandle handle, const TSoftware& software) {
    const kyrStatusCode status = ReportParts(handle, kInstalledPackage, software.packages);
    return status == kyrStatusOK ? ReportParts(handle, kInstalledPackage, software.languagePackages) : status;
}

kyrStatusCode ReportSystemRepositories(kyrIOHandle handle, const TSoftware& software) {
    return ReportParts(handle, kSystemRepository, software.repositories);
}

TListing Updates(const TSoftware& software) { return UpdatesOf(software).listing; }
TListing Modules(const TSoftware& software) { return ListingOf(software.modules); }
TListing Services(const TSoftware& software) { return software.serviceListing; }

const TDataPlugin<TSoftware> gPlugin("software", ReadSoftware,
                                     {{kPackage, ReportPackages, {}},
                                      {kLanguagePackage, ReportLanguagePackages, {}},
                                      {kRepository, ReportRepositories, {}},
                                      {kPendingUpdate, ReportPendingUpdates, {Updates}},
                                      {kUpdateState, ReportUpdateState, {}},
                                      {kModule, ReportModules, {Modules}},
                                      {kService, ReportServices, {Services}},
                                      {"MOLTA_ModuleDependency", ReportModuleDependencies, {Modules}},
                                      {"MOLTA_HostedService", ReportHostedServices, {Services}},
                                      {kInstalledPackage, ReportInstalledPackages, {}},
                                      {kSystemRepository, ReportSystemRepositories, {}}});

}  // namespace
