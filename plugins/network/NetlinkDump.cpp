#include "NetlinkDump.h"

#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>

#include "Netlink.h"

namespace {

constexpr size_t kMaxMessage = 1 << 16;  // the kernel fills at most half of it at a time
constexpr size_t kMaxTable = 64 << 20;
constexpr timeval kPatience = {1, 0};

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
        if (fNumber >= 0) setsockopt(fNumber, SOL_SOCKET, SO_RCVTIMEO, &kPatience, sizeof kPatience);
    }
    TRouteSocket(const TRouteSocket&) = delete;
    TRouteSocket& operator=(const TRouteSocket&) = delete;
    ~TRouteSocket() {
        if (fNumber >= 0) close(fNumber);
    }

    bool Ask(uint16_t type) const {
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

    // Appends what comes next. With MSG_TRUNC the length is that of what was sent, not of what had room.
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

// The errno that the kernel ends a table with, 0 if all is well; nothing, if there is more to come.
std::optional<int> EndOf(std::string_view bytes) {
    for (TNetlinkMessage& message : ParseNetlinkMessages(bytes))
        if (message.type == NLMSG_DONE || message.type == NLMSG_ERROR)
            return -TakeStruct<int32_t>(message.body).value_or(0);
    return std::nullopt;
}

// Gives 0, or the errno of what went wrong.
int ReceiveTable(const TRouteSocket& kernel, std::string& table) {
    while (table.size() < kMaxTable) {
        const size_t start = table.size();
        if (!kernel.Receive(table)) return errno;
        if (const std::optional<int> end = EndOf(std::string_view(table).substr(start))) return *end;
    }
    return EFBIG;
}

TFact<std::string> AskKernel(const TTable& table) {
    const TRouteSocket kernel;
    std::string bytes;
    const int error = kernel.Ask(table.request) ? ReceiveTable(kernel, bytes) : errno;
    if (error != 0) return TFact<std::string>::Missing(AbsenceOf(error), table.source);
    return TFact<std::string>::Of(std::move(bytes), table.source);
}

}  // namespace

const char* SourceOf(ENetlinkTable table) { return TableOf(table).source; }

TFact<std::string> ReadNetlinkTable(const TSystemRoot& root, ENetlinkTable table) {
    if (root.IsRunningMachine()) return AskKernel(TableOf(table));
    TFact<std::string> bytes = root.ReadFile(TableOf(table).file, kMaxTable);
    bytes.source = TableOf(table).source;
    return bytes;
}
