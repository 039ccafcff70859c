#include <algorithm>

#include "OsRelease.h"
#include "SoftwareFacts.h"

namespace {

constexpr const char* kPackages = "/var/lib/dpkg/status";
constexpr const char* kModules = "/proc/modules";
constexpr size_t kMostPackageText = 256 << 20;

// Whether the distribution is Debian, or derived from it. One that does not say what it is may be.
bool HasDebianPackages(const TFact<std::string>& osRelease) {
    const TFact<std::string> id = FindOsReleaseValue(osRelease, "ID");
    const std::string family = id.ValueOr("debian") + ' ' + FindOsReleaseValue(osRelease, "ID_LIKE").ValueOr("");
    const std::vector<std::string_view> names = Split(family, ' ');
    return std::find(names.begin(), names.end(), "debian") != names.end();
}

// Of a distribution with packages of another kind, those of dpkg are not all.
TListing ReadPackageListing(const TSystemRoot& root, const TFact<std::vector<TPackage>>& packages) {
    const TFact<std::string> osRelease = ReadOsReleaseFile(root);
    if (HasDebianPackages(osRelease)) return ListingOf(NeverEmpty(packages));
    return TListing::Missing(EAbsence::eNotSupported, "packages of " + *FindOsReleaseValue(osRelease, "ID"));
}

// A kernel without support for modules has no program to load them either.
TFact<std::vector<TKernelModule>> ReadModules(const TSystemRoot& root) {
    const TFact<std::string> text = root.ReadFile(kModules);
    if (!text && text.absence == EAbsence::eNotPresent && root.LacksKind("/proc/sys/kernel/modprobe"))
        return TFact<std::vector<TKernelModule>>::Of({}, kModules);
    TFact<std::vector<TKernelModule>> modules =
        text.Map([](const std::string& lines) { return std::optional(ParseModules(lines, kModules)); });
    if (modules)
        for (TKernelModule& module : *modules.value)
            module.version = root.ReadText("/sys/module/" + module.name + "/version");
    return modules;
}

}  // namespace

TSoftware ReadSoftware(const TSystemRoot& root) {
    TSoftware software;
    software.packages = root.ReadFile(kPackages, kMostPackageText).Map([](const std::string& text) {
        return std::optional(ParsePackages(text, kPackages));
    });
    software.packageListing = ReadPackageListing(root, software.packages);
    software.modules = ReadModules(root);
    software.services = ReadServices(root);
    software.serviceListing = ReadServiceListing(root);
    return software;
}
