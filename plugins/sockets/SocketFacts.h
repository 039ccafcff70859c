#ifndef KYR_PLUGINS_SOCKETS_SOCKETFACTS_H
#define KYR_PLUGINS_SOCKETS_SOCKETFACTS_H

#include <cstdint>
#include <string>
#include <vector>

#include "SystemRoot.h"

/// What is known of the sockets that wait at one address. Several can share one.
struct TSocketUse {
    std::string source;  ///< where the kernel tells of them
    uint32_t count = 0;
    TFact<uint32_t> owner;
    TFact<std::string> ownerName;
    TFact<uint32_t> backlog;
    TFact<std::string> unit;
    bool isUnitAService = false;  ///< one that has a file
    // Of the processes that have one of them open; names and executables each once.
    TFact<std::vector<uint32_t>> processIds;
    TFact<std::vector<std::string>> processNames;
    TFact<std::vector<std::string>> executables;
};

struct TListeningSocket : TSocketUse {
    uint16_t protocol = 0;  ///< its number, such as IPPROTO_TCP
    int family = 0;
    std::string address;
    uint16_t port = 0;
    TFact<std::string> interface;  ///< the name of the only one that it is bound to
    TFact<bool> localOnly;         ///< whether only processes of the same system can reach it
    TFact<bool> ipv6Only;
    TFact<std::string> portName;
};

struct TUnixSocket : TSocketUse {
    uint16_t type = 0;
    std::string name;
};

struct TSocketFacts {
    std::vector<TListeningSocket> sockets;
    std::vector<TUnixSocket> unixSockets;
    TListing listing;
    TListing unixListing;
};

TSocketFacts ReadSockets(const TSystemRoot& root);

/// "tcp", "udp" and the like.
const char* ProtocolName(uint16_t protocol);
/// What tells a socket from all others: "tcp 127.0.0.53%lo:53".
std::string NameOf(const TListeningSocket& socket);

#endif
