// The same as text, in files of /proc/net.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include "Netlink.h"
#include "SocketTables.h"

namespace {

// The kernel writes an address as words of 32 bits, each in the order of bytes that the processor has.
std::optional<std::string> ParseAddress(std::string_view digits, int family) {
    std::string bytes;
    for (; digits.size() >= 8; digits.remove_prefix(8)) {
        const auto word = ParseNumber<uint32_t>(digits.substr(0, 8), 16);
        if (!word) return std::nullopt;
        bytes.append(reinterpret_cast<const char*>(&*word), sizeof *word);
    }
    return digits.empty() ? AddressText(family, bytes) : std::nullopt;
}

// Fields: number, local address, peer's address, state, queues, timer, retransmissions, user, timeout, inode.
std::optional<TInetEntry> ParseInetLine(std::string_view line, const TInetTable& table) {
    const std::vector<std::string_view> fields = Split(line, ' ');
    if (fields.size() < 10 || ParseNumber<int>(fields[3], 16) != table.state) return std::nullopt;
    const size_t colon = fields[1].find(':');
    if (colon == std::string_view::npos || !EndsWith(fields[2], ":0000")) return std::nullopt;
    const auto address = ParseAddress(fields[1].substr(0, colon), table.family);
    const auto port = ParseNumber<uint16_t>(fields[1].substr(colon + 1), 16);
    if (!address || !port) return std::nullopt;
    TInetEntry entry;
    entry.inode = ParseNumber<uint64_t>(fields[9]).value_or(0);
    entry.owner = ParseNumber<uint32_t>(fields[7]);
    entry.family = table.family;
    entry.address = *address;
    entry.port = *port;
    return entry;
}

// Fields: two addresses in the kernel, style, state, hash, port, user, inode, and the addresses that it is bound to.
std::optional<TInetEntry> ParseSctpLine(std::string_view line, const TInetTable& table) {
    const std::vector<std::string_view> fields = Split(line, ' ');
    if (fields.size() < 9 || fields[3] != "10") return std::nullopt;
    const auto port = ParseNumber<uint16_t>(fields[5]);
    if (!port) return std::nullopt;
    TInetEntry entry;
    entry.inode = ParseNumber<uint64_t>(fields[7]).value_or(0);
    entry.owner = ParseNumber<uint32_t>(fields[6]);
    entry.address = fields[8];
    entry.family = entry.address.find(':') == std::string::npos ? AF_INET : AF_INET6;
    unsigned char bytes[sizeof(in6_addr)];
    if (entry.family != table.family || inet_pton(entry.family, entry.address.c_str(), bytes) != 1) return std::nullopt;
    entry.port = *port;
    return entry;
}

constexpr unsigned kAccepts = 0x10000;  // a flag

// Fields: number, references, protocol, flags, type, state, inode, and the name, which may have blanks.
std::optional<TUnixEntry> ParseUnixLine(std::string_view line) {
    const std::vector<std::string_view> fields = Split(line, ' ');
    if (fields.size() < 8 || (ParseNumber<unsigned>(fields[3], 16).value_or(0) & kAccepts) == 0) return std::nullopt;
    TUnixEntry entry;
    entry.inode = ParseNumber<uint64_t>(fields[6]).value_or(0);
    entry.type = ParseNumber<uint16_t>(fields[4], 16).value_or(0);
    const std::string_view name = line.substr(static_cast<size_t>(fields[7].data() - line.data()));
    entry.name = name.substr(0, name.find('\0'));
    return entry;
}

template <typename TEntry, typename F>
std::vector<TEntry> ParseLines(std::string_view text, F parse) {
    std::vector<TEntry> entries;
    for (const std::string_view line : Lines(text))
        if (std::optional<TEntry> entry = parse(line)) entries.push_back(std::move(*entry));
    return entries;
}

}  // namespace

std::vector<TInetEntry> ParseInetFile(std::string_view text, const TInetTable& table) {
    return ParseLines<TInetEntry>(text, [&table](std::string_view line) { return ParseInetLine(line, table); });
}

std::vector<TInetEntry> ParseSctpFile(std::string_view text, const TInetTable& table) {
    return ParseLines<TInetEntry>(text, [&table](std::string_view line) { return ParseSctpLine(line, table); });
}

std::vector<TUnixEntry> ParseUnixFile(std::string_view text) { return ParseLines<TUnixEntry>(text, ParseUnixLine); }
