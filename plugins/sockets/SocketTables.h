#ifndef KYR_PLUGINS_SOCKETS_SOCKETTABLES_H
#define KYR_PLUGINS_SOCKETS_SOCKETTABLES_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "SystemRoot.h"

/// A socket that waits for peers, as the kernel tells of it.
struct TSocketEntry {
    uint64_t inode = 0;                    ///< by which processes refer to it; 0 if none can
    std::optional<uint32_t> owner;         ///< the user who made it
    std::optional<uint32_t> backlog;       ///< of a stream: how many connections may wait to be accepted
    std::optional<uint64_t> controlGroup;  ///< the number of the folder of the one in which it was made
};

/// One of the Internet: TCP, UDP and the like.
struct TInetEntry : TSocketEntry {
    int family = 0;  ///< AF_INET or AF_INET6
    std::string address;
    uint16_t port = 0;
    std::optional<uint32_t> interface;  ///< the index of the only one that it is bound to; 0: to none
    std::optional<bool> ipv6Only;
};

/// One that processes of the same machine connect to.
struct TUnixEntry : TSocketEntry {
    uint16_t type = 0;  ///< SOCK_STREAM or SOCK_SEQPACKET
    std::string name;   ///< a path, or an abstract name with "@" in front
};

/// A table of sockets of one protocol: where the kernel tells of it.
struct TInetTable {
    const char* source;     ///< such as "sock_diag tcp6"
    int protocol;           ///< IPPROTO_TCP and the like
    int family;             ///< AF_INET or AF_INET6
    int state;              ///< of those that wait for peers
    const char* diagnoser;  ///< the kernel module that answers
    const char* file;       ///< the same as text
    const char* kind;       ///< is there if the kernel supports the protocol; null: every kernel does
};

// The parsers of both forms of a table. Sockets that have peers are left out.
std::vector<TInetEntry> ParseInetDump(std::string_view dump, const TInetTable& table);
std::vector<TInetEntry> ParseInetFile(std::string_view text, const TInetTable& table);
std::vector<TInetEntry> ParseSctpFile(std::string_view text, const TInetTable& table);
std::vector<TUnixEntry> ParseUnixDump(std::string_view dump);
std::vector<TUnixEntry> ParseUnixFile(std::string_view text);

/// The tables of all protocols.
const std::vector<TInetTable>& InetTables();
/// The sockets of a table, which is empty if the kernel does not know the protocol. Nothing is asked for that would
/// load a kernel module.
TFact<std::vector<TInetEntry>> ReadInetTable(const TSystemRoot& root, const TInetTable& table);
TFact<std::vector<TUnixEntry>> ReadUnixTable(const TSystemRoot& root);

#endif
