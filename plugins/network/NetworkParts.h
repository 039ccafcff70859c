#ifndef KYR_PLUGINS_NETWORK_NETWORKPARTS_H
#define KYR_PLUGINS_NETWORK_NETWORKPARTS_H

#include <map>
#include <string_view>

#include "NetworkFacts.h"

// The steps of ReadNetwork. Those that parse take a whole table of the kernel's, leave out what is broken, and give
// what is there in the kernel's order.

using TAdapterNames = std::map<uint32_t, std::string>;

std::vector<TAdapter> ParseLinks(std::string_view table);
/// The adapter of an index, if there is one.
std::string NameOf(const std::optional<uint32_t>& index, const TAdapterNames& names);
/// Addresses of adapters that have no name are left out.
std::vector<TIPAddress> ParseAddresses(std::string_view table, const TAdapterNames& names);
/// Without those that the kernel keeps for itself: the table "local", which repeats the addresses, and what it
/// remembers of single destinations.
std::vector<TRoute> ParseRoutes(std::string_view table, const TAdapterNames& names);

/// The adapters, by index: from the kernel's table, and from sysfs if that could not be had.
std::vector<TAdapter> ReadAdapters(const TSystemRoot& root, const TFact<std::string>& table);

#endif
