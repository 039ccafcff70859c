#ifndef KYR_PLUGINS_COMMON_NETLINKDUMP_H
#define KYR_PLUGINS_COMMON_NETLINKDUMP_H

#include <cstdint>
#include <string>
#include <string_view>

#include "SystemRoot.h"

/// What a kernel table is asked for by, and where a recorded machine has the dump of it.
struct TNetlinkRequest {
    const char* source;  ///< its name in ValueSources, such as "rtnetlink link"
    std::string file;    ///< of a recorded machine, below /.kyr
    int protocol;        ///< of Netlink
    uint16_t type;
    std::string_view body;
};

/// The dump of a table: all messages up to the one that ends it.
TFact<std::string> ReadNetlinkTable(const TSystemRoot& root, const TNetlinkRequest& request);

/// The kernel tables that rtnetlink can dump.
enum class ENetlinkTable { eLinks, eAddresses, eRoutes };

/// The name of a table in ValueSources, such as "rtnetlink link".
const char* SourceOf(ENetlinkTable table);

/// The dump of such a table. A recorded machine has these bytes in the files "link", "addr" and "route" of
/// /.kyr/rtnetlink.
TFact<std::string> ReadNetlinkTable(const TSystemRoot& root, ENetlinkTable table);

#endif
