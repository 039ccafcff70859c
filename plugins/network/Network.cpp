#include "NetlinkDump.h"
#include "NetworkParts.h"

namespace {

TAdapterNames NamesOf(const std::vector<TAdapter>& adapters) {
    TAdapterNames names;
    for (const TAdapter& adapter : adapters)
        if (adapter.index) names.emplace(*adapter.index, adapter.name);
    return names;
}

void NameOthers(const TAdapterNames& names, TAdapter& adapter) {
    adapter.master = NameOf(adapter.masterIndex, names);
    adapter.lower = NameOf(adapter.lowerIndex, names);
    adapter.settings.activeMember = NameOf(adapter.settings.activeMemberIndex, names);
}

// Sets the addresses of each adapter, or why they are not known.
void HandOut(const TFact<std::string>& table, TNetworkFacts& facts) {
    std::map<std::string, std::vector<std::string>> addresses;
    for (const TIPAddress& address : facts.addresses)
        addresses[address.adapter].push_back(address.address + '/' + std::to_string(address.prefixLength));
    for (TAdapter& adapter : facts.adapters)
        adapter.addresses = table.Map([&](const std::string&) { return std::optional(addresses[adapter.name]); });
}

}  // namespace

std::string NameOf(const std::optional<uint32_t>& index, const TAdapterNames& names) {
    const auto found = index ? names.find(*index) : names.end();
    return found == names.end() ? "" : found->second;
}

TNetworkFacts ReadNetwork(const TSystemRoot& root) {
    TNetworkFacts facts;
    const TFact<std::string> links = ReadNetlinkTable(root, ENetlinkTable::eLinks);
    facts.adapters = ReadAdapters(root, links);
    // Without the kernel's table, the adapters are listed by sysfs.
    facts.adapterListing = root.CheckEntries("/sys/class/net", NeverEmpty(root.ListKind("/sys/class/net")));
    const TAdapterNames names = NamesOf(facts.adapters);
    const TFact<std::string> addresses = ReadNetlinkTable(root, ENetlinkTable::eAddresses);
    if (addresses) facts.addresses = ParseAddresses(*addresses, names);
    facts.addressListing = ListingOf(addresses);
    for (TAdapter& adapter : facts.adapters)
        if (links) NameOthers(names, adapter);
    HandOut(addresses, facts);
    ReadLeases(root, names, facts.addresses);
    ReadDns(root, names, facts);
    const TFact<std::string> routes = ReadNetlinkTable(root, ENetlinkTable::eRoutes);
    if (routes) facts.routes = ParseRoutes(*routes, names);
    facts.routeListing = ListingOf(routes);
    facts.busListing = ReadBusListing(root);
    return facts;
}
