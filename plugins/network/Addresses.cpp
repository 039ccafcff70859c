#include <linux/if_addr.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include "Netlink.h"
#include "NetworkParts.h"

namespace {

// On a point-to-point link IFA_ADDRESS is the peer and IFA_LOCAL our address; otherwise IFA_ADDRESS is ours.
std::optional<TIPAddress> ParseAddress(std::string_view body, const TAdapterNames& names) {
    const auto header = TakeStruct<ifaddrmsg>(body);
    if (!header || (header->ifa_family != AF_INET && header->ifa_family != AF_INET6)) return std::nullopt;
    const TNetlinkAttributes attributes(body);
    const auto adapter = names.find(header->ifa_index);
    const int family = header->ifa_family;
    const std::optional<std::string> address = attributes.Address(IFA_ADDRESS, family);
    const std::optional<std::string> local = attributes.Address(IFA_LOCAL, family);
    if (adapter == names.end() || !(local || address)) return std::nullopt;
    TIPAddress result = {};
    result.adapter = adapter->second;
    result.family = family;
    result.address = local ? *local : *address;
    result.prefixLength = header->ifa_prefixlen;
    result.scope = header->ifa_scope;
    if (local && address && *local != *address) result.peer = address;
    result.broadcast = attributes.Address(IFA_BROADCAST, family);
    result.label = attributes.Text(IFA_LABEL);
    result.flags = attributes.Number<uint32_t>(IFA_FLAGS).value_or(header->ifa_flags);
    return result;
}

}  // namespace

std::vector<TIPAddress> ParseAddresses(std::string_view table, const TAdapterNames& names) {
    std::vector<TIPAddress> addresses;
    for (const TNetlinkMessage& message : ParseNetlinkMessages(table))
        if (message.type == RTM_NEWADDR)
            if (std::optional<TIPAddress> address = ParseAddress(message.body, names))
                addresses.push_back(std::move(*address));
    return addresses;
}
