// The settings of adapters where the kernel's table is missing, as on machines that others recorded.
#include <algorithm>

#include "NetworkParts.h"
#include "OsRelease.h"

namespace {

using TText = TFact<std::string>;

struct TWord {
    std::string_view word;
    uint16_t value;
};

constexpr TWord kMemberStates[] = {{"active", 0}, {"backup", 1}};
constexpr TWord kMemberLinks[] = {{"up", 0}, {"going down", 1}, {"down", 2}, {"going back", 3}};

/// Kinds by which the kernel names a device, and folders that only those of a kind have.
constexpr std::string_view kKinds[] = {"vlan", "vxlan", "bond", "bridge", "macvlan", "macvtap"};
constexpr std::pair<const char*, const char*> kFolders[] = {{"bonding", "bond"}, {"bridge", "bridge"}};

template <size_t N>
std::optional<uint16_t> Find(const TWord (&words)[N], const TText& text) {
    for (const TWord& word : words)
        if (text.value == word.word) return word.value;
    return std::nullopt;
}

// 1 of "active-backup 1"
std::optional<uint16_t> NumberBehind(const TText& text) {
    const std::string words = text.ValueOr("");
    return ParseNumber<uint16_t>(std::string_view(words).substr(words.rfind(' ') + 1));
}

std::optional<std::string> FindKind(const TSystemRoot& root, const std::string& folder) {
    for (const auto& [name, kind] : kFolders)
        if (root.Exists(folder + name)) return kind;
    const std::string told = FindOsReleaseValue(root.ReadFile(folder + "uevent"), "DEVTYPE").ValueOr("");
    return std::find(std::begin(kKinds), std::end(kKinds), told) == std::end(kKinds) ? std::nullopt
                                                                                     : std::optional(told);
}

void ReadBond(const TSystemRoot& root, const std::string& folder, TLinkSettings& settings) {
    settings.bondMode = NumberBehind(root.ReadText(folder + "mode"));
    settings.transmitHashPolicy = NumberBehind(root.ReadText(folder + "xmit_hash_policy"));
    settings.monitoringInterval = root.ReadNumber<uint32_t>(folder + "miimon").value;
    settings.activeMember = root.ReadText(folder + "active_slave").ValueOr("");
}

void ReadMember(const TSystemRoot& root, const std::string& folder, TLinkSettings& settings) {
    settings.bondMemberState = Find(kMemberStates, root.ReadText(folder + "bonding_slave/state"));
    settings.bondMemberLink = Find(kMemberLinks, root.ReadText(folder + "bonding_slave/mii_status"));
    settings.bridgePortState = root.ReadNumber<uint16_t>(folder + "brport/state").value;
}

// Lines such as "eth0.10 | 10 | eth0".
void ReadVlan(const TSystemRoot& root, TAdapter& adapter) {
    constexpr const char* kFile = "/proc/net/vlan/config";
    const std::string text = root.ReadFile(kFile).ValueOr("");
    adapter.settings.vlanSource = kFile;
    for (const std::string_view line : Lines(text)) {
        const std::vector<std::string_view> fields = Split(line, '|');
        if (fields.size() != 3 || Trim(fields[0]) != adapter.name) continue;
        adapter.settings.vlan = ParseNumber<uint16_t>(Trim(fields[1]));
        adapter.lower = Trim(fields[2]);
    }
}

// A bridge names its ports by links of their own, and some kernels have no others.
std::string FindMaster(const TSystemRoot& root, const std::string& folder) {
    const TText master = root.ReadLinkName(folder + "master");
    return master ? *master : root.ReadLinkName(folder + "brport/bridge").ValueOr("");
}

}  // namespace

void ReadLinkSettings(const TSystemRoot& root, TAdapter& adapter) {
    const std::string folder = "/sys/class/net/" + adapter.name + '/';
    TLinkSettings& settings = adapter.settings;
    settings.source = "/sys/class/net/" + adapter.name;
    adapter.kind = FindKind(root, folder);
    adapter.master = FindMaster(root, folder);
    ReadMember(root, folder, settings);
    if (adapter.kind == "bond") ReadBond(root, folder + "bonding/", settings);
    if (adapter.kind == "vlan") ReadVlan(root, adapter);
    if (adapter.kind != "bridge") return;
    settings.spanningTree = root.ReadFlag(folder + "bridge/stp_state").value;
    settings.vlanFiltering = root.ReadFlag(folder + "bridge/vlan_filtering").value;
}
