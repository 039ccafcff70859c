#ifndef KYR_PLUGINS_COMMON_NETLINKDUMP_H
#define KYR_PLUGINS_COMMON_NETLINKDUMP_H

#include <string>

#include "SystemRoot.h"

/// The kernel tables that rtnetlink can dump.
enum class ENetlinkTable { eLinks, eAddresses, eRoutes };

/// The name of a table in ValueSources, such as "rtnetlink link".
const char* SourceOf(ENetlinkTable table);

/// The dump of a table: all messages up to the one that ends it. A recorded machine has these bytes in the files
/// "link", "addr" and "route" of /.kyr/rtnetlink.
TFact<std::string> ReadNetlinkTable(const TSystemRoot& root, ENetlinkTable table);

#endif
