#include "SoftwareFacts.h"

namespace {

constexpr const char* kModules = "/proc/modules";

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
    software.packages = ReadPackages(root);
    software.languagePackages = ReadLanguagePackages(root);
    software.repositories = ReadRepositories(root);
    software.updateState = ReadUpdateState(root, software.packages.items);
    software.modules = ReadModules(root);
    software.services = ReadServices(root);
    software.serviceListing = ReadServiceListing(root);
    return software;
}
