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

constexpr rtgenmsg kAllFamilies = {AF_UNSPEC};

class TNetlinkSocket {
public:
    explicit TNetlinkSocket(int protocol) : fNumber(socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, protocol)) {
        if (fNumber >= 0) setsockopt(fNumber, SOL_SOCKET, SO_RCVTIMEO, &kReceiveTimeout, sizeof kReceiveTimeout);
    }
    TNetlinkSocket(const TNetlinkSocket&) = delete;
    TNetlinkSocket& operator=(const TNetlinkSocket&) = delete;
    ~TNetlinkSocket() {
        if (fNumber >= 0) close(fNumber);
    }

    bool RequestDump(uint16_t type, std::string_view body) const {
        nlmsghdr header = {};
        header.nlmsg_len = static_cast<uint32_t>(NLMSG_LENGTH(body.size()));
        header.nlmsg_type = type;
        header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
        std::string request(reinterpret_cast<const char*>(&header), sizeof header);
        request.append(body).resize(NLMSG_ALIGN(header.nlmsg_len));
        const auto size = static_cast<ssize_t>(request.size());
        return fNumber >= 0 && send(fNumber, request.data(), request.size(), 0) == size;
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
int ReceiveTable(const TNetlinkSocket& kernel, std::string& table) {
    while (table.size() < kMaxTable) {
        const size_t start = table.size();
        if (!kernel.Receive(table)) return errno;
        if (const std::optional<int> end = FindEndOfDump(std::string_view(table).substr(start))) return *end;
    }
    return EFBIG;
}

TFact<std::string> DumpTable(const TNetlinkRequest& request) {
    const TNetlinkSocket kernel(request.protocol);
    std::string bytes;
    const int error = kernel.RequestDump(request.type, request.body) ? ReceiveTable(kernel, bytes) : errno;
    if (error != 0) return TFact<std::string>::Missing(AbsenceOf(error), request.source);
    return TFact<std::string>::Of(std::move(bytes), request.source);
}

}  // namespace

const char* SourceOf(ENetlinkTable table) { return TableOf(table).source; }

TFact<std::string> ReadNetlinkTable(const TSystemRoot& root, ENetlinkTable table) {
    const TTable& row = TableOf(table);
    const std::string_view body(reinterpret_cast<const char*>(&kAllFamilies), sizeof kAllFamilies);
    return ReadNetlinkTable(root, {row.source, row.file, NETLINK_ROUTE, row.request, body});
}

TFact<std::string> ReadNetlinkTable(const TSystemRoot& root, const TNetlinkRequest& request) {
    if (root.IsRunningMachine()) return DumpTable(request);
    TFact<std::string> bytes = root.ReadFile(request.file, kMaxTable);
    bytes.source = request.source;
    return bytes;
}
