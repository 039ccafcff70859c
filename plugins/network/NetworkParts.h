#ifndef KYR_PLUGINS_NETWORK_NETWORKPARTS_H
#define KYR_PLUGINS_NETWORK_NETWORKPARTS_H

#include <map>
#include <string_view>

#include "Netlink.h"
#include "NetworkFacts.h"

// The steps of ReadNetwork. The parsers take the dump of a whole kernel table, skip malformed messages, and keep the
// order of the kernel.

using TAdapterNames = std::map<uint32_t, std::string>;

std::vector<TAdapter> ParseLinks(std::string_view table);
/// The adapter with the index; empty if there is none.
std::string NameOf(const std::optional<uint32_t>& index, const TAdapterNames& names);
/// Without addresses whose adapter is unknown.
std::vector<TIPAddress> ParseAddresses(std::string_view table, const TAdapterNames& names);
/// Without the table "local", which repeats the addresses, and without cached routes to single destinations.
std::vector<TRoute> ParseRoutes(std::string_view table, const TAdapterNames& names);

/// What the attribute IFLA_LINKINFO tells of an adapter.
TLinkSettings ParseLinkSettings(const TNetlinkAttributes& info);

/// Asks the driver of a device that is not suspended.
std::optional<TDriverFacts> ReadDriverFacts(const TSystemRoot& root, const std::string& name);
/// The same from the kernel's structures ethtool_drvinfo and ethtool_link_settings, the latter with its masks of modes.
TDriverFacts ParseDriverFacts(const TFact<std::string>& information, const TFact<std::string>& settings);

/// Sets who lent the addresses, as far as the leases of DHCP clients tell.
void ReadLeases(const TSystemRoot& root, const TAdapterNames& names, std::vector<TIPAddress>& addresses);

/// The name servers of the system and of its adapters.
void ReadDns(const TSystemRoot& root, const TAdapterNames& names, TNetworkFacts& facts);
/// Sets what stands in a file such as /etc/resolv.conf.
void ParseResolverFile(std::string_view text, TDnsSettings& settings);

/// Sets what files tell of the kind of an adapter, its settings and the adapters that it belongs to or runs on.
void ReadLinkSettings(const TSystemRoot& root, TAdapter& adapter);

/// The adapters, sorted by index: from the kernel table, or from sysfs if that could not be read.
std::vector<TAdapter> ReadAdapters(const TSystemRoot& root, const TFact<std::string>& table);

#endif
