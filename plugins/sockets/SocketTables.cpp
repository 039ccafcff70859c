// Where the tables of sockets are read.
#include "SocketTables.h"

#include <linux/inet_diag.h>
#include <linux/netlink.h>
#include <linux/sock_diag.h>
#include <linux/unix_diag.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "NetlinkDump.h"

namespace {

constexpr int kListening = 10;   // TCP_LISTEN
constexpr int kUnconnected = 7;  // TCP_CLOSE

constexpr const char* kUnixSource = "sock_diag unix";
constexpr const char* kUnixFile = "/proc/net/unix";

constexpr size_t kFirstPart = 128 << 10;
constexpr size_t kMostText = 64 << 20;

// Asking for a table has the kernel load the module that answers, if it is not there yet. What only reads does not
// change a machine like that.
bool IsAnswered(const TSystemRoot& root, const std::string& module) {
    if (!root.IsRunningMachine() || !root.Exists("/proc/modules") || root.Exists("/sys/module/" + module)) return true;
    const std::string release = root.ReadText("/proc/sys/kernel/osrelease").ValueOr("");
    const TFact<std::string> builtIn = root.ReadFile("/lib/modules/" + release + "/modules.builtin");
    return builtIn.ValueOr("").find("/" + module + ".ko") != std::string::npos;
}

template <typename T>
std::string_view BytesOf(const T& request) {
    return {reinterpret_cast<const char*>(&request), sizeof request};
}

TFact<std::string> Ask(const TSystemRoot& root, const char* source, std::string_view body) {
    const std::string name = std::string(source).substr(std::string("sock_diag ").size());
    return ReadNetlinkTable(root, {source, "/.kyr/sockdiag/" + name, NETLINK_SOCK_DIAG, SOCK_DIAG_BY_FAMILY, body});
}

TFact<std::string> AskFor(const TSystemRoot& root, const TInetTable& table) {
    if (!IsAnswered(root, table.diagnoser)) return TFact<std::string>::Missing(EAbsence::eNotPresent, table.source);
    inet_diag_req_v2 request = {};
    request.sdiag_family = static_cast<uint8_t>(table.family);
    request.sdiag_protocol = static_cast<uint8_t>(table.protocol);
    request.idiag_states = 1u << table.state;
    return Ask(root, table.source, BytesOf(request));
}

TFact<std::string> AskForUnix(const TSystemRoot& root) {
    if (!IsAnswered(root, "unix_diag")) return TFact<std::string>::Missing(EAbsence::eNotPresent, kUnixSource);
    unix_diag_req request = {};
    request.sdiag_family = AF_UNIX;
    request.udiag_states = 1u << kListening;
    request.udiag_show = UDIAG_SHOW_NAME | UDIAG_SHOW_RQLEN | UDIAG_SHOW_UID;
    return Ask(root, kUnixSource, BytesOf(request));
}

std::vector<TInetEntry> ParseFile(std::string_view text, const TInetTable& table) {
    return table.protocol == IPPROTO_SCTP ? ParseSctpFile(text, table) : ParseInetFile(text, table);
}

// In a table of TCP those that listen come first, and there may be very many others.
bool HasAllThatListen(std::string_view text, const TInetTable& table) {
    if (table.protocol != IPPROTO_TCP) return false;
    const std::vector<std::string_view> lines = Lines(text.substr(0, text.rfind('\n')));
    return lines.size() > 1 && ParseInetFile(lines.back(), table).empty();
}

TFact<std::string> ReadFileOf(const TSystemRoot& root, const TInetTable& table) {
    for (size_t limit = kFirstPart;; limit *= 4) {
        TFact<std::string> text = root.ReadFile(table.file, limit);
        const bool isCut = text && text->size() >= limit;
        if (!isCut || HasAllThatListen(*text, table)) return text;
        if (limit >= kMostText) return TFact<std::string>::Missing(EAbsence::eReadError, table.file);
    }
}

// The kernel has no file about sockets of DCCP, so that only its module tells whether there may be any.
bool LacksProtocol(const TSystemRoot& root, const TInetTable& table) {
    if (table.kind == nullptr || !root.LacksKind(table.kind)) return false;
    return table.protocol != IPPROTO_DCCP || !root.Exists("/sys/module/dccp");
}

}  // namespace

const std::vector<TInetTable>& InetTables() {
    static const std::vector<TInetTable> tables = {
        {"sock_diag tcp", IPPROTO_TCP, AF_INET, kListening, "tcp_diag", "/proc/net/tcp", nullptr},
        {"sock_diag tcp6", IPPROTO_TCP, AF_INET6, kListening, "tcp_diag", "/proc/net/tcp6", "/proc/net/if_inet6"},
        {"sock_diag udp", IPPROTO_UDP, AF_INET, kUnconnected, "udp_diag", "/proc/net/udp", nullptr},
        {"sock_diag udp6", IPPROTO_UDP, AF_INET6, kUnconnected, "udp_diag", "/proc/net/udp6", "/proc/net/if_inet6"},
        {"sock_diag udplite", IPPROTO_UDPLITE, AF_INET, kUnconnected, "udp_diag", "/proc/net/udplite",
         "/proc/net/udplite"},
        {"sock_diag udplite6", IPPROTO_UDPLITE, AF_INET6, kUnconnected, "udp_diag", "/proc/net/udplite6",
         "/proc/net/udplite6"},
        {"sock_diag sctp", IPPROTO_SCTP, AF_INET, kListening, "sctp_diag", "/proc/net/sctp/eps", "/proc/net/sctp"},
        {"sock_diag sctp6", IPPROTO_SCTP, AF_INET6, kListening, "sctp_diag", "/proc/net/sctp/eps", "/proc/net/sctp"},
        {"sock_diag dccp", IPPROTO_DCCP, AF_INET, kListening, "dccp_diag", "/proc/net/dccp", "/proc/net/dccp"},
        {"sock_diag dccp6", IPPROTO_DCCP, AF_INET6, kListening, "dccp_diag", "/proc/net/dccp", "/proc/net/dccp"},
    };
    return tables;
}

TFact<std::vector<TInetEntry>> ReadInetTable(const TSystemRoot& root, const TInetTable& table) {
    using TEntries = std::vector<TInetEntry>;
    if (const TFact<std::string> dump = AskFor(root, table))
        return dump.Map([&table](const std::string& bytes) { return std::optional(ParseInetDump(bytes, table)); });
    const TFact<std::string> text = ReadFileOf(root, table);
    if (!text && text.absence == EAbsence::eNotPresent && LacksProtocol(root, table))
        return TFact<TEntries>::Of({}, table.file);
    return text.Map([&table](const std::string& lines) { return std::optional(ParseFile(lines, table)); });
}

TFact<std::vector<TUnixEntry>> ReadUnixTable(const TSystemRoot& root) {
    if (const TFact<std::string> dump = AskForUnix(root))
        return dump.Map([](const std::string& bytes) { return std::optional(ParseUnixDump(bytes)); });
    const TFact<std::string> text = root.ReadFile(kUnixFile, kMostText);
    return text.Map([](const std::string& lines) { return std::optional(ParseUnixFile(lines)); });
}
