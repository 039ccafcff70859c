#include "NetlinkDump.h"

#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>

#include "Netlink.h"

namespace {

constexpr size_t kMaxMessage = 1 << 16;  // twice the largest message that the kernel sends
constexpr size_t kMaxTable = 64 << 20;
constexpr timeval kReceiveTimeout = {1, 0};

struct TTable {
    const char* source;
    const char* file;
    uint16_t request;
};

constexpr TTable kTables[] = {
    {"rtnetlink link", "/.kyr/rtnetlink/link", RTM_GETLINK},
    {"rtnetlink addr", "/.kyr/rtnetlink/addr", RTM_GETADDR},
    {"rtnetlink route", "/.kyr/rtnetlink/route", RTM_GETROUTE},
};

const TTable& TableOf(ENetlinkTable table) { return kTables[static_cast<size_t>(table)]; }

class TRouteSocket {
public:
    TRouteSocket() : fNumber(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE)) {
        if (fNumber >= 0) setsockopt(fNumber, SOL_SOCKET, SO_RCVTIMEO, &kReceiveTimeout, sizeof kReceiveTimeout);
    }
    TRouteSocket(const TRouteSocket&) = delete;
    TRouteSocket& operator=(const TRouteSocket&) = delete;
    ~TRouteSocket() {
        if (fNumber >= 0) close(fNumber);
    }

    bool RequestDump(uint16_t type) const {
        struct {
            nlmsghdr header;
            rtgenmsg family;
        } request = {};
        request.header.nlmsg_len = NLMSG_LENGTH(sizeof(rtgenmsg));
        request.header.nlmsg_type = type;
        request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
        request.family.rtgen_family = AF_UNSPEC;
        return fNumber >= 0 && send(fNumber, &request, sizeof request, 0) == sizeof request;
    }

    // Appends the next datagram. With MSG_TRUNC recv returns its full length, so that a truncated one is noticed.
    bool Receive(std::string& bytes) const {
        char buffer[kMaxMessage];
        ssize_t length = -1;
        do length = recv(fNumber, buffer, sizeof buffer, MSG_TRUNC);
        while (length < 0 && errno == EINTR);
        if (length == 0 || length > static_cast<ssize_t>(sizeof buffer)) errno = EMSGSIZE;
        if (length <= 0 || length > static_cast<ssize_t>(sizeof buffer)) return false;
        bytes.append(buffer, static_cast<size_t>(length));
        return true;
    }

private:
    const int fNumber;
};

// The errno in the message that ends the dump, 0 for success; nothing if more messages follow.
std::optional<int> FindEndOfDump(std::string_view bytes) {
    for (TNetlinkMessage& message : ParseNetlinkMessages(bytes))
        if (message.type == NLMSG_DONE || message.type == NLMSG_ERROR)
            return -TakeStruct<int32_t>(message.body).value_or(0);
    return std::nullopt;
}

// Returns 0 or an errno.
int ReceiveTable(const TRouteSocket& kernel, std::string& table) {
    while (table.size() < kMaxTable) {
        const size_t start = table.size();
        if (!kernel.Receive(table)) return errno;
        if (const std::optional<int> end = FindEndOfDump(std::string_view(table).substr(start))) return *end;
    }
    return EFBIG;
}

TFact<std::string> DumpTable(const TTable& table) {
    const TRouteSocket kernel;
    std::string bytes;
    const int error = kernel.RequestDump(table.request) ? ReceiveTable(kernel, bytes) : errno;
    if (error != 0) return TFact<std::string>::Missing(AbsenceOf(error), table.source);
    return TFact<std::string>::Of(std::move(bytes), table.source);
}

}  // namespace

const char* SourceOf(ENetlinkTable table) { return TableOf(table).source; }

TFact<std::string> ReadNetlinkTable(const TSystemRoot& root, ENetlinkTable table) {
    if (root.IsRunningMachine()) return DumpTable(TableOf(table));
    TFact<std::string> bytes = root.ReadFile(TableOf(table).file, kMaxTable);
    bytes.source = TableOf(table).source;
    return bytes;
}
