#ifndef KYR_PLUGINS_NETWORK_NETLINKDUMP_H
#define KYR_PLUGINS_NETWORK_NETLINKDUMP_H

#include <string>

#include "SystemRoot.h"

/// The kernel's tables that can be had over rtnetlink.
enum class ENetlinkTable { eLinks, eAddresses, eRoutes };

/// How a table is called as the source of a value: "rtnetlink link".
const char* SourceOf(ENetlinkTable table);

/// A whole table, as the messages that the kernel sends it in, up to the one that ends it. The copy of a machine has
/// these bytes in the files "link", "addr" and "route" of the folder /.kyr/rtnetlink.
TFact<std::string> ReadNetlinkTable(const TSystemRoot& root, ENetlinkTable table);

#endif
