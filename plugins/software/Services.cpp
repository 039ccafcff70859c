#include <algorithm>
#include <map>
#include <set>

#include "SoftwareFacts.h"
#include "UnitFiles.h"

namespace {

constexpr const char* kEnablingFolders[] = {kAdministratorUnits, "/run/systemd/system", "/run/systemd/generator",
                                            "/run/systemd/generator.late"};
constexpr const char* kSlice = "/sys/fs/cgroup/system.slice";
constexpr const char* kOldSlice = "/sys/fs/cgroup/systemd/system.slice";

constexpr const char* kInit = "/sbin/init";

// Whether systemd starts the system.
bool IsSystemd(const TSystemRoot& root) {
    if (root.ReadLinkName(kInit).ValueOr("") == "systemd") return true;
    return root.Exists("/usr/lib/systemd/systemd") || root.Exists("/lib/systemd/systemd");
}

bool IsService(std::string_view name) { return EndsWith(name, ".service") && !EndsWith(name, "@.service"); }

// "getty@.service" for "getty@tty1.service"; the name itself if it is no instance.
std::string TemplateOf(const std::string& name) {
    const size_t at = name.find('@');
    return at == std::string::npos ? name : name.substr(0, at + 1) + ".service";
}

// "tty1" of "getty@tty1.service"; empty if it is no instance.
std::string InstanceOf(const std::string& name) {
    const size_t at = std::min(name.find('@'), name.size() - 1) + 1;
    return name.substr(at, name.rfind('.') - at);
}

// The service that the name is an alias of, by the link to its unit; empty if it is no alias.
std::string RealNameOf(const TSystemRoot& root, const std::string& path, const std::string& name) {
    const std::string target = root.ReadLinkName(path).ValueOr("");
    return IsService(target) && target != name ? target : "";
}

// The services that are enabled: wanted or required by another unit, or having an alias.
std::set<std::string> FindEnabled(const TSystemRoot& root) {
    std::set<std::string> enabled;
    for (const std::string folder : kEnablingFolders)
        for (const std::string& entry : root.Names(folder)) {
            const std::string path = folder + "/" + entry;
            if (EndsWith(entry, ".wants") || EndsWith(entry, ".requires") || EndsWith(entry, ".upholds"))
                for (std::string& unit : root.Names(path)) enabled.insert(std::move(unit));
            if (std::string service = RealNameOf(root, path, entry); !service.empty())
                enabled.insert(std::move(service));
        }
    return enabled;
}

// The file of the unit or, for an instance without one, that of its template.
TFact<std::string> ReadUnit(const TSystemRoot& root, const std::string& name, std::string path) {
    if (path.empty()) path = FindUnitFile(root, TemplateOf(name));
    if (path.empty()) path = std::string(kVendorUnits) + "/" + TemplateOf(name);
    return root.ReadFile(path, 1 << 20);
}

std::optional<std::string> FindSetting(std::string_view unit, std::string_view name) {
    for (const std::string_view line : Lines(unit)) {
        const size_t equals = line.find('=');
        if (equals != std::string_view::npos && Trim(line.substr(0, equals)) == name)
            return std::string(Trim(line.substr(equals + 1)));
    }
    return std::nullopt;
}

// Expands "%i" and "%I".
std::string WithInstance(std::string text, const std::string& instance) {
    for (size_t at = 0; (at = text.find('%', at)) != std::string::npos; ++at)
        if (const char c = text[at + 1]; c == 'i' || c == 'I') {
            text.replace(at, 2, instance);
            at += instance.size() - 1;
        }
    return text;
}

uint16_t StartModeOf(const std::string& unit, bool enabled) {
    if (enabled) return eEnabled;
    const bool canBeEnabled = unit.find("\n[Install]") != std::string::npos || unit.rfind("[Install]", 0) == 0;
    return canBeEnabled ? eDisabled : eStatic;
}

// The control group below system.slice. Instances of a template have a slice: "system-getty.slice/getty@tty1.service".
std::string GroupOf(const std::string& name) {
    const size_t at = name.find('@');
    if (at == std::string::npos) return name;
    std::string slice;
    for (const char c : name.substr(0, at)) slice += c == '-' ? "\\x2d" : std::string(1, c);
    return "system-" + slice + ".slice/" + name;
}

// A service runs while its control group or one below it has processes. Control groups v1 only list those directly in
// it.
TFact<bool> FindRunning(const TSystemRoot& root, const std::string& name) {
    const std::string slice = root.Exists(kSlice) ? kSlice : kOldSlice;
    if (!root.Exists(slice)) return TFact<bool>::Missing(EAbsence::eNotPresent, slice);
    const std::string folder = slice + "/" + GroupOf(name);
    const TFact<std::string> events = root.ReadFile(folder + "/cgroup.events");
    if (events) return TFact<bool>::Of(events->find("populated 1") != std::string::npos, events.source);
    const TFact<std::string> processes = root.ReadFile(folder + "/cgroup.procs");
    return TFact<bool>::Of(!processes.ValueOr("").empty(), processes.source);
}

TService MakeService(const TSystemRoot& root, const std::string& name, const std::string& path, bool enabled) {
    TService service;
    service.name = name;
    service.running = FindRunning(root, name);
    if (root.ReadLinkName(path).ValueOr("") == "null") {
        service.startMode = TFact<uint16_t>::Of(eMasked, path);
        return service;
    }
    const TFact<std::string> unit = ReadUnit(root, name, path);
    service.description =
        unit.Map([](const std::string& text) { return FindSetting(text, "Description"); })
            .Map([&](const std::string& text) { return std::optional(WithInstance(text, InstanceOf(name))); });
    service.startMode =
        unit.Map([enabled](const std::string& text) { return std::optional<uint16_t>(StartModeOf(text, enabled)); });
    return service;
}

}  // namespace

std::vector<TService> ReadServices(const TSystemRoot& root) {
    const std::set<std::string> enabled = FindEnabled(root);
    std::set<std::string> names = enabled;
    for (const char* folder : kUnitFolders)
        for (std::string& name : root.Names(folder)) names.insert(std::move(name));
    std::vector<TService> services;
    for (const std::string& name : names) {
        if (!IsService(name)) continue;
        const std::string path = FindUnitFile(root, name);
        if (RealNameOf(root, path, name).empty())
            services.push_back(MakeService(root, name, path, enabled.count(name) != 0));
    }
    return services;
}

TListing ReadServiceListing(const TSystemRoot& root) {
    TFact<std::vector<std::string>> units = root.List(kVendorUnits);
    if (!units && units.absence == EAbsence::eNotPresent) units = root.List(kOldVendorUnits);
    if (IsSystemd(root) && units && !units->empty()) units = root.List(kAdministratorUnits);
    if (IsSystemd(root) || units || units.absence != EAbsence::eNotPresent) return ListingOf(NeverEmpty(units));
    if (root.Exists(kInit)) return TListing::Missing(EAbsence::eNotSupported, std::string("services of ") + kInit);
    // A container often has no service manager at all.
    const bool hasNone = root.Exists("/usr/lib") || root.Exists("/usr/share");
    return hasNone ? TListing::Of(true, kVendorUnits) : TListing::Missing(EAbsence::eNotPresent, kVendorUnits);
}
