#include "NetlinkDump.h"
#include "NetworkParts.h"

namespace {

TAdapterNames NamesOf(const std::vector<TAdapter>& adapters) {
    TAdapterNames names;
    for (const TAdapter& adapter : adapters)
        if (adapter.index) names.emplace(*adapter.index, adapter.name);
    return names;
}

// Sets the addresses of each adapter, or why they are not known.
void HandOut(const std::vector<TIPAddress>& addresses, const TFact<std::string>& table, TAdapter& adapter) {
    adapter.addresses = table.Map([](const std::string&) { return std::optional(std::vector<std::string>()); });
    for (const TIPAddress& address : addresses)
        if (address.adapter == adapter.name)
            adapter.addresses.value->push_back(address.address + '/' + std::to_string(address.prefixLength));
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
    for (TAdapter& adapter : facts.adapters) {
        adapter.master = NameOf(adapter.masterIndex, names);
        adapter.lower = NameOf(adapter.lowerIndex, names);
        adapter.settings.activeMember = NameOf(adapter.settings.activeMemberIndex, names);
        HandOut(facts.addresses, addresses, adapter);
    }
    ReadLeases(root, names, facts.addresses);
    ReadDns(root, names, facts);
    const TFact<std::string> routes = ReadNetlinkTable(root, ENetlinkTable::eRoutes);
    if (routes) facts.routes = ParseRoutes(*routes, names);
    facts.routeListing = ListingOf(routes);
    facts.busListing = ReadBusListing(root);
    return facts;
}
