#include "EngineFiles.h"

namespace {

using TText = TFact<std::string>;

constexpr const char* kEngine = "proxmox";
constexpr const char *kMachines = "/etc/pve/qemu-server", *kContainers = "/etc/pve/lxc";

TText Find(const TText& file, std::string_view key) { return FindSetting(file, key, ':'); }

std::optional<bool> ParseFlag(const std::string& text) { return text == "1"; }

// Without the setting, it is off.
TFact<bool> IsAutoStarted(const TText& file) {
    const TFact<bool> onBoot = Find(file, "onboot").Map(ParseFlag);
    return onBoot || !file ? onBoot : TFact<bool>::Of(false, file.source);
}

// In MiB; of some versions as "current=4096".
std::optional<uint64_t> ParseMemory(const std::string& text) {
    const size_t at = text.find("current=");
    const std::string_view rest = std::string_view(text).substr(at == std::string::npos ? 0 : at + 8);
    const std::optional<uint64_t> number = ParseNumber<uint64_t>(rest.substr(0, rest.find(',')));
    return number && *number <= UINT64_MAX >> 20 ? std::optional(*number << 20) : std::nullopt;
}

std::optional<std::string> FindUuid(const std::string& settings) {
    for (const std::string_view setting : Split(settings, ','))
        if (setting.substr(0, 5) == "uuid=") return std::string(setting.substr(5));
    return {};
}

TFact<uint32_t> CountProcessors(const TText& file) {
    const auto count = [&file](std::string_view key) {
        return ParseNumber<uint16_t>(Find(file, key).ValueOr("1")).value_or(1);
    };
    return TFact<uint32_t>::Of(uint32_t{count("sockets")} * count("cores"), file.source);
}

/// Calls the function with the number and the settings of each guest.
template <typename TGuest, typename F>
void ForEachGuest(const TSystemRoot& root, const std::string& folder, TEngineGuests<TGuest>& engine, F add) {
    for (const std::string& name : ListGuests(root, folder, engine)) {
        const std::string number = WithoutEnding(name, ".conf");
        const TText file = number.empty() ? TText() : root.ReadFile(folder + '/' + name, kFileLimit);
        engine.MissUnreadable(file);
        if (file) add(number, file);
    }
}

}  // namespace

TEngineMachines ReadProxmoxMachines(const TSystemRoot& root) {
    TEngineMachines engine;
    TUniqueNames names;
    ForEachGuest(root, kMachines, engine, [&](const std::string& number, const TText& file) {
        engine.guests.push_back({kEngine, names.For(Find(file, "name").ValueOr(number), number),
                                 Find(file, "smbios1").Map(FindUuid), TText::Of("kvm", file.source), Find(file, "arch"),
                                 Find(file, "memory").Map(ParseMemory), CountProcessors(file), IsAutoStarted(file),
                                 IsProcessOf(root, "/run/qemu-server/" + number + ".pid")});
    });
    return engine;
}

TEngineContainers ReadProxmoxContainers(const TSystemRoot& root) {
    TEngineContainers engine;
    TUniqueNames names;
    ForEachGuest(root, kContainers, engine, [&](const std::string& number, const TText& file) {
        THostedContainer container{kEngine, names.For(Find(file, "hostname").ValueOr(number), number)};
        container.id = TText::Of(number, file.source);
        container.memory = Find(file, "memory").Map(ParseMemory);
        container.isAutoStarted = IsAutoStarted(file);
        container.isRunning = IsLxcRunning(root, number);
        engine.guests.push_back(std::move(container));
    });
    return engine;
}
