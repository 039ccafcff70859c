// The tables of sockets: a byte that picks one and its form, followed by a dump of sock_diag or the lines of a file.
#include <arpa/inet.h>
#include <sys/socket.h>

#include <cstdint>

#include "SocketTables.h"
#include "support/FuzzSupport.h"

namespace {

void CheckInternet(const std::vector<TInetEntry>& entries, const TInetTable& table, size_t size) {
    Require(entries.size() <= size / 16, "no socket is made up");
    for (const TInetEntry& entry : entries) {
        unsigned char address[sizeof(in6_addr)];
        Require(entry.family == table.family, "a table has one family");
        Require(inet_pton(entry.family, entry.address.c_str(), address) == 1, "an address is one");
    }
}

void CheckUnix(const std::vector<TUnixEntry>& entries, size_t size) {
    for (const TUnixEntry& entry : entries) {
        Require(!entry.name.empty() && entry.name.size() <= size, "a name stands in the table");
        Require(entry.name.find('\0') == std::string::npos, "a name has no NUL");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    TByteReader input(data, size);
    const std::uint8_t choice = input.Byte();
    const TInetTable& table = InetTables()[choice / 4 % InetTables().size()];
    const std::string bytes = input.Bytes(size);
    if ((choice & 3) == 0) CheckInternet(ParseInetDump(bytes, table), table, bytes.size());
    if ((choice & 3) == 1) CheckInternet(ParseInetFile(bytes, table), table, bytes.size());
    if ((choice & 3) == 2) CheckUnix(ParseUnixDump(bytes), bytes.size());
    if ((choice & 3) == 3) {
        CheckUnix(ParseUnixFile(bytes), bytes.size());
        CheckInternet(ParseSctpFile(bytes, table), table, bytes.size());
    }
    return 0;
}
