// The answers of sock_diag.
#include <linux/inet_diag.h>
#include <linux/sock_diag.h>
#include <linux/unix_diag.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "Netlink.h"
#include "SocketTables.h"

namespace {

constexpr uint8_t kListening = 10;  // TCP_LISTEN, which Unix sockets have too

bool IsStream(int protocol) { return protocol != IPPROTO_UDP && protocol != IPPROTO_UDPLITE; }

std::optional<TInetEntry> ParseInetEntry(std::string_view body, const TInetTable& table) {
    const auto told = TakeStruct<inet_diag_msg>(body);
    if (!told || told->idiag_state != table.state || told->idiag_family != table.family) return std::nullopt;
    if (told->id.idiag_dport != 0) return std::nullopt;
    const TNetlinkAttributes attributes(body);
    const size_t length = table.family == AF_INET ? sizeof(in_addr) : sizeof(in6_addr);
    const std::string_view address(reinterpret_cast<const char*>(told->id.idiag_src), length);
    TInetEntry entry;
    entry.inode = told->idiag_inode;
    entry.owner = told->idiag_uid;
    if (IsStream(table.protocol)) entry.backlog = told->idiag_wqueue;
    entry.controlGroup = attributes.Number<uint64_t>(INET_DIAG_CGROUP_ID);
    entry.family = table.family;
    entry.address = AddressText(table.family, address).value_or("");
    entry.port = ntohs(told->id.idiag_sport);
    entry.interface = told->id.idiag_if;
    if (const auto only = attributes.Number<uint8_t>(INET_DIAG_SKV6ONLY)) entry.ipv6Only = *only != 0;
    return entry;
}

// Abstract names begin with a NUL and may have more of them.
std::string UnixName(std::string_view bytes) {
    const bool isAbstract = !bytes.empty() && bytes.front() == '\0';
    std::string name(isAbstract ? bytes : bytes.substr(0, bytes.find('\0')));
    for (char& c : name)
        if (c == '\0') c = '@';
    return name;
}

std::optional<TUnixEntry> ParseUnixEntry(std::string_view body) {
    const auto told = TakeStruct<unix_diag_msg>(body);
    if (!told || told->udiag_state != kListening) return std::nullopt;
    const TNetlinkAttributes attributes(body);
    TUnixEntry entry;
    entry.inode = told->udiag_ino;
    entry.owner = attributes.Number<uint32_t>(UNIX_DIAG_UID);
    if (const auto queue = attributes.Number<unix_diag_rqlen>(UNIX_DIAG_RQLEN)) entry.backlog = queue->udiag_wqueue;
    entry.type = told->udiag_type;
    entry.name = UnixName(attributes.Find(UNIX_DIAG_NAME).value_or(""));
    if (entry.name.empty()) return std::nullopt;
    return entry;
}

template <typename TEntry, typename F>
std::vector<TEntry> ParseDump(std::string_view dump, F parse) {
    std::vector<TEntry> entries;
    for (const TNetlinkMessage& message : ParseNetlinkMessages(dump)) {
        if (message.type != SOCK_DIAG_BY_FAMILY) continue;
        if (std::optional<TEntry> entry = parse(message.body)) entries.push_back(std::move(*entry));
    }
    return entries;
}

}  // namespace

std::vector<TInetEntry> ParseInetDump(std::string_view dump, const TInetTable& table) {
    return ParseDump<TInetEntry>(dump, [&table](std::string_view body) { return ParseInetEntry(body, table); });
}

std::vector<TUnixEntry> ParseUnixDump(std::string_view dump) { return ParseDump<TUnixEntry>(dump, ParseUnixEntry); }
