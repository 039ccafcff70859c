#include <algorithm>

#include "EngineFiles.h"
#include "JsonText.h"
#include "OsRelease.h"

namespace {

using TText = TFact<std::string>;

constexpr const char* kLxc = "/var/lib/lxc";
constexpr const char *kImages = "/var/lib/machines", *kMachines = "/run/systemd/machines";

std::optional<bool> ParseFlag(const std::string& text) { return text == "1"; }

// "512M" or "512m"; without a unit in bytes.
std::optional<uint64_t> ParseMemory(const std::string& text) {
    constexpr std::string_view kUnits = "KMGTkmgt";
    const size_t unit = kUnits.find(text.back());
    const bool hasUnit = unit != std::string_view::npos;
    const std::optional<uint64_t> number = ParseNumber<uint64_t>(text.substr(0, text.size() - (hasUnit ? 1 : 0)));
    const size_t shift = hasUnit ? 10 * (unit % 4 + 1) : 0;
    return number && *number <= UINT64_MAX >> shift ? std::optional(*number << shift) : std::nullopt;
}

THostedContainer LxcContainer(const TSystemRoot& root, const std::string& name, const TText& file) {
    THostedContainer container{"lxc", name};
    const TText unified = FindSetting(file, "lxc.cgroup2.memory.max", '='),
                limit = unified ? unified : FindSetting(file, "lxc.cgroup.memory.limit_in_bytes", '=');
    const TFact<bool> isStarted = FindSetting(file, "lxc.start.auto", '=').Map(ParseFlag);
    container.memory = limit.Map(ParseMemory);
    container.isAutoStarted = isStarted ? isStarted : TFact<bool>::Of(false, file.source);
    container.isRunning = IsLxcRunning(root, name);
    return container;
}

// Machines of other engines are listed as well.
bool IsNspawn(const TText& file) { return FindOsReleaseValue(file, "SERVICE").ValueOr("") == "systemd-nspawn"; }

TFact<bool> IsLed(const TSystemRoot& root, const std::string& name, const TText& file) {
    if (!file && file.absence == EAbsence::eNotPresent && !root.Exists("/run"))
        return TFact<bool>::Missing(file.absence, kMachines);
    if (IsUnreadable(file)) return TFact<bool>::Missing(file.absence, file.source);
    const uint32_t leader = ParseNumber<uint32_t>(FindOsReleaseValue(file, "LEADER").ValueOr("")).value_or(0);
    return IsAlive(root, leader, std::string(kMachines) + '/' + name);
}

// The folders and images that are there, and what runs from elsewhere.
std::vector<std::string> NspawnNames(const TSystemRoot& root, TEngineContainers& engine) {
    std::vector<std::string> names;
    for (const std::string& name : ListGuests(root, kImages, engine)) {
        const std::string image = WithoutEnding(name, ".raw");
        if (name[0] != '.' && name != "lost+found") names.push_back(image.empty() ? name : image);
    }
    for (const std::string& name : ListGuests(root, kMachines, engine))
        if (name.find(':') == std::string::npos && IsNspawn(root.ReadFile(std::string(kMachines) + '/' + name)))
            names.push_back(name);
    std::sort(names.begin(), names.end(), NaturalLess);
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

}  // namespace

TEngineContainers ReadLxc(const TSystemRoot& root) {
    TEngineContainers engine;
    for (const std::string& name : ListGuests(root, kLxc, engine)) {
        // Proxmox makes these files for containers of its own.
        if (root.Exists("/etc/pve/lxc/" + name + ".conf")) continue;
        const TText file = root.ReadFile(std::string(kLxc) + '/' + name + "/config", kFileLimit);
        engine.MissUnreadable(file);
        if (file) engine.guests.push_back(LxcContainer(root, name, file));
    }
    return engine;
}

TEngineContainers ReadNspawn(const TSystemRoot& root) {
    TEngineContainers engine;
    for (const std::string& name : NspawnNames(root, engine)) {
        const TText state = root.ReadFile(std::string(kMachines) + '/' + name, kFileLimit);
        THostedContainer container{"systemd-nspawn", name};
        container.isRunning = IsLed(root, name, state);
        engine.guests.push_back(std::move(container));
    }
    return engine;
}
