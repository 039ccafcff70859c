#include "SoftwareFacts.h"

namespace {

constexpr const char* kPackages = "/var/lib/dpkg/status";
constexpr const char* kModules = "/proc/modules";
constexpr size_t kMostPackageText = 256 << 20;

}  // namespace

TSoftware ReadSoftware(const TSystemRoot& root) {
    TSoftware software;
    software.packages = root.ReadFile(kPackages, kMostPackageText).Map([](const std::string& text) {
        return std::optional(ParsePackages(text, kPackages));
    });
    software.modules = root.ReadFile(kModules).Map(
        [](const std::string& text) { return std::optional(ParseModules(text, kModules)); });
    if (software.modules)
        for (TKernelModule& module : *software.modules.value)
            module.version = root.ReadText("/sys/module/" + module.name + "/version");
    software.services = ReadServices(root);
    return software;
}
