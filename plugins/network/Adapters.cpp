#include <linux/if.h>

#include <algorithm>

#include "NetlinkDump.h"
#include "NetworkParts.h"

namespace {

const std::string kAdapters = "/sys/class/net/";

constexpr const char* kCounterFiles[] = {"rx_packets", "tx_packets", "rx_bytes",   "tx_bytes",
                                         "rx_errors",  "tx_errors",  "rx_dropped", "tx_dropped"};
static_assert(std::size(kCounterFiles) == eCounters);

constexpr std::string_view kStates[] = {"unknown", "notpresent", "down", "lowerlayerdown", "testing", "dormant", "up"};

std::optional<uint16_t> ParseState(std::string_view text) {
    const auto found = std::find(std::begin(kStates), std::end(kStates), text);
    if (found == std::end(kStates)) return std::nullopt;
    return uint16_t(found - std::begin(kStates));
}

// The values of ParseLinks, as far as sysfs has them.
TAdapter ReadLinkFiles(const TSystemRoot& root, const std::string& name) {
    const std::string folder = kAdapters + name + '/';
    TAdapter adapter;
    adapter.name = name;
    adapter.index = root.ReadNumber<uint32_t>(folder + "ifindex");
    adapter.type = root.ReadNumber<uint16_t>(folder + "type");
    adapter.address = root.ReadText(folder + "address");
    adapter.permanentAddress.source = SourceOf(ENetlinkTable::eLinks);
    adapter.mtu = root.ReadNumber<uint64_t>(folder + "mtu");
    adapter.enabled = root.ReadNumber<uint32_t>(folder + "flags", 16).Map([](uint32_t flags) {
        return std::optional((flags & IFF_UP) != 0);
    });
    adapter.carrier =
        root.ReadNumber<uint8_t>(folder + "carrier").Map([](uint8_t carrier) { return std::optional(carrier != 0); });
    adapter.operationalState = root.ReadText(folder + "operstate").Map(ParseState);
    for (size_t i = 0; i < eCounters; ++i)
        adapter.counters[i] = root.ReadNumber<uint64_t>(folder + "statistics/" + kCounterFiles[i]);
    ReadLinkSettings(root, adapter);
    return adapter;
}

std::vector<TAdapter> ListAdapters(const TSystemRoot& root, const TFact<std::string>& table) {
    if (table) return ParseLinks(*table);
    std::vector<TAdapter> adapters;
    for (const std::string& name : root.Names("/sys/class/net"))
        if (root.ReadLink(kAdapters + name)) adapters.push_back(ReadLinkFiles(root, name));
    return adapters;
}

// Sysfs counts in Mbit/s, and has -1 if the speed is unknown.
TFact<uint64_t> ReadSpeed(const TSystemRoot& root, const std::string& path) {
    return root.ReadNumber<int32_t>(path).Map([](int32_t millions) {
        return millions < 0 ? std::nullopt : std::optional<uint64_t>(uint64_t(millions) * 1'000'000);
    });
}

TFact<bool> ReadDuplex(const TSystemRoot& root, const std::string& path) {
    return root.ReadText(path).Map([](const std::string& duplex) -> std::optional<bool> {
        if (duplex != "full" && duplex != "half") return std::nullopt;
        return duplex == "full";
    });
}

// The link of a virtual function leads to the PCI device of its physical function.
void ReadFunctions(const TSystemRoot& root, const std::string& device, TAdapterDevice& facts) {
    facts.supportedVirtualFunctions = root.ReadNumber<uint32_t>(device + "/sriov_totalvfs");
    if (facts.supportedVirtualFunctions) facts.virtualFunctions = root.ReadNumber<uint32_t>(device + "/sriov_numvfs");
    if (const TFact<std::string> physical = root.ReadLink(device + "/physfn"))
        facts.physicalFunction = FindBusDevice(root, *physical + "/net");
}

void ReadDevice(const TSystemRoot& root, TAdapter& adapter) {
    const std::string path = kAdapters + adapter.name;
    adapter.speed = ReadSpeed(root, path + "/speed");
    adapter.fullDuplex = ReadDuplex(root, path + "/duplex");
    const TFact<std::string> sysfsPath = root.ReadLink(path);
    adapter.isVirtual = sysfsPath.Map(
        [](const std::string& link) { return std::optional(link.find("/virtual/") != std::string::npos); });
    if (adapter.isVirtual.ValueOr(true)) return;
    adapter.device.emplace();
    adapter.device->busDevice = FindBusDevice(root, *sysfsPath);
    adapter.device->driver = root.ReadLinkName(path + "/device/driver");
    adapter.device->bus = root.ReadLinkName(path + "/device/subsystem");
    adapter.device->busId = root.ReadLinkName(path + "/device");
    adapter.device->wireless = root.Exists(path + "/phy80211") || root.Exists(path + "/wireless");
    adapter.device->driverFacts = ReadDriverFacts(root, adapter.name);
    if (adapter.device->bus.ValueOr("") == "pci") ReadFunctions(root, path + "/device", *adapter.device);
}

}  // namespace

std::vector<TAdapter> ReadAdapters(const TSystemRoot& root, const TFact<std::string>& table) {
    std::vector<TAdapter> adapters = ListAdapters(root, table);
    std::stable_sort(adapters.begin(), adapters.end(), [](const TAdapter& a, const TAdapter& b) {
        return a.index.ValueOr(UINT32_MAX) < b.index.ValueOr(UINT32_MAX);
    });
    for (TAdapter& adapter : adapters) {
        adapter.linkTable = ListingOf(table);
        ReadDevice(root, adapter);
    }
    return adapters;
}
