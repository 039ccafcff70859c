#include <algorithm>
#include <map>
#include <set>

#include "SoftwareFacts.h"

namespace {

// What stands in an earlier folder hides the unit of that name in a later one.
constexpr const char* kVendorFolder = "/usr/lib/systemd/system";
constexpr const char* kUnitFolders[] = {"/etc/systemd/system", "/run/systemd/system", "/usr/local/lib/systemd/system",
                                        kVendorFolder, "/lib/systemd/system"};
constexpr const char* kEnablingFolders[] = {"/etc/systemd/system", "/run/systemd/system"};
constexpr const char* kSlice = "/sys/fs/cgroup/system.slice";
constexpr const char* kOldSlice = "/sys/fs/cgroup/systemd/system.slice";

bool IsService(std::string_view name) { return EndsWith(name, ".service") && !EndsWith(name, "@.service"); }

// The services that some other unit wants to have started.
std::set<std::string> FindEnabled(const TSystemRoot& root) {
    std::set<std::string> enabled;
    for (const char* folder : kEnablingFolders)
        for (const std::string& entry : root.Names(folder))
            if (EndsWith(entry, ".wants") || EndsWith(entry, ".requires"))
                for (std::string& unit : root.Names(std::string(folder) + "/" + entry)) enabled.insert(std::move(unit));
    return enabled;
}

// The template of which a unit such as "getty@tty1.service" is made; the name itself for others.
std::string TemplateOf(const std::string& name) {
    const size_t at = name.find('@');
    return at == std::string::npos ? name : name.substr(0, at + 1) + ".service";
}

TFact<std::string> ReadUnit(const TSystemRoot& root, const std::string& name) {
    for (const char* folder : kUnitFolders) {
        const std::string path = std::string(folder) + "/" + TemplateOf(name);
        if (root.Exists(path)) return root.ReadFile(path, 1 << 20);
    }
    return TFact<std::string>::Missing(EAbsence::eNotPresent, std::string(kVendorFolder) + "/" + TemplateOf(name));
}

std::optional<std::string> FindSetting(std::string_view unit, std::string_view name) {
    for (const std::string_view line : Lines(unit)) {
        const size_t equals = line.find('=');
        if (equals != std::string_view::npos && Trim(line.substr(0, equals)) == name)
            return std::string(Trim(line.substr(equals + 1)));
    }
    return std::nullopt;
}

bool IsMasked(const TSystemRoot& root, const std::string& name) {
    for (const char* folder : kEnablingFolders)
        if (root.ReadLinkName(std::string(folder) + "/" + name).ValueOr("") == "null") return true;
    return false;
}

uint16_t StartModeOf(const std::string& unit, bool enabled) {
    if (enabled) return eEnabled;
    const bool canBeEnabled = unit.find("\n[Install]") != std::string::npos || unit.rfind("[Install]", 0) == 0;
    return canBeEnabled ? eDisabled : eStatic;
}

// A service runs while its control group has processes.
TFact<bool> FindRunning(const TSystemRoot& root, const std::string& name) {
    const std::string slice = root.Exists(kSlice) ? kSlice : kOldSlice;
    if (!root.Exists(slice)) return TFact<bool>::Missing(EAbsence::eNotPresent, slice);
    const std::string path = slice + "/" + name + "/cgroup.procs";
    return TFact<bool>::Of(!root.ReadFile(path).ValueOr("").empty(), path);
}

TService MakeService(const TSystemRoot& root, const std::string& name, bool enabled) {
    TService service;
    service.name = name;
    service.running = FindRunning(root, name);
    if (IsMasked(root, name)) {
        service.startMode = TFact<uint16_t>::Of(eMasked, std::string(kUnitFolders[0]) + "/" + name);
        return service;
    }
    const TFact<std::string> unit = ReadUnit(root, name);
    service.description = unit.Map([](const std::string& text) { return FindSetting(text, "Description"); });
    service.startMode =
        unit.Map([enabled](const std::string& text) { return std::optional<uint16_t>(StartModeOf(text, enabled)); });
    return service;
}

}  // namespace

TFact<std::vector<TService>> ReadServices(const TSystemRoot& root) {
    const std::set<std::string> enabled = FindEnabled(root);
    std::set<std::string> names;
    for (const std::string& name : enabled)
        if (IsService(name)) names.insert(name);
    for (const char* folder : kUnitFolders)
        for (const std::string& name : root.Names(folder))
            if (IsService(name)) names.insert(name);
    if (names.empty()) return TFact<std::vector<TService>>::Missing(EAbsence::eNotPresent, kVendorFolder);
    std::vector<TService> services;
    for (const std::string& name : names) services.push_back(MakeService(root, name, enabled.count(name) != 0));
    return TFact<std::vector<TService>>::Of(std::move(services), kVendorFolder);
}
