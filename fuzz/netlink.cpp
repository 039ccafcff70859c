// What the network plugin takes from the kernel as bytes: the tables of rtnetlink and the structures of ethtool; and
// the file of the C library's resolver.
#include <algorithm>
#include <cstdint>
#include <set>

#include "NetworkParts.h"
#include "support/FuzzSupport.h"

namespace {

TAdapterNames CheckLinks(const std::string& table) {
    TAdapterNames names;
    std::set<std::string> unique;
    for (const TAdapter& adapter : ParseLinks(table)) {
        Require(unique.insert(adapter.name).second, "no two adapters have one name");
        Require(adapter.index.value > 0u, "an adapter has an index");
        Require(adapter.lowerIndex != adapter.index.value, "no adapter is below itself");
        for (const std::string& name : adapter.otherNames)
            Require(name.size() <= table.size(), "a name stands in the table");
        names.emplace(*adapter.index, adapter.name);
    }
    return names;
}

void CheckAddresses(const std::string& table, const TAdapterNames& names) {
    for (const TIPAddress& address : ParseAddresses(table, names)) {
        Require(!address.address.empty(), "an address has a text");
        Require(!address.adapter.empty(), "an address has an adapter");
    }
}

void CheckRoutes(const std::string& table, const TAdapterNames& names) {
    const std::vector<TRoute> routes = ParseRoutes(table, names);
    Require(routes.size() <= table.size(), "a route takes some bytes");
    for (const TRoute& route : routes) Require(!route.destination.empty(), "a route leads somewhere");
}

void CheckDriver(const std::string& bytes) {
    const TFact<std::string> fact = TFact<std::string>::Of(bytes, "ethtool");
    const TDriverFacts driver = ParseDriverFacts(fact, fact);
    Require(!driver.firmwareVersion || !driver.firmwareVersion->empty(), "a version is no empty text");
    Require(!driver.maxSpeed || *driver.maxSpeed >= 10'000'000, "a speed is one that is known");
}

void CheckResolverFile(const std::string& text) {
    TDnsSettings settings;
    settings.id = "/etc/resolv.conf";
    ParseResolverFile(text, settings);
    const std::vector<std::string> servers = settings.servers.ValueOr({});
    Require(servers.size() <= settings.ignoredServers.size() + 3, "three servers are asked");
    for (const std::string& ignored : settings.ignoredServers)
        Require(std::find(servers.begin(), servers.end(), ignored) != servers.end(), "an ignored server is one of all");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const TAdapterNames names = CheckLinks(bytes);
    CheckAddresses(bytes, names);
    CheckRoutes(bytes, names);
    CheckDriver(bytes);
    CheckResolverFile(bytes);
    return 0;
}
