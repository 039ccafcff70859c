#include <arpa/inet.h>
#include <linux/if_addr.h>

#include <algorithm>

#include "NetlinkDump.h"
#include "NetworkReport.h"

namespace {

constexpr const char* kAddress = "MOLTA_IPAddress";

struct TFlag {
    uint32_t bit;
    const char* word;
};

constexpr TFlag kFlags[] = {
    {IFA_F_SECONDARY, "secondary"},
    {IFA_F_NODAD, "no duplicate detection"},
    {IFA_F_OPTIMISTIC, "optimistic"},
    {IFA_F_DADFAILED, "duplicate"},
    {IFA_F_HOMEADDRESS, "home address"},
    {IFA_F_DEPRECATED, "deprecated"},
    {IFA_F_TENTATIVE, "tentative"},
    {IFA_F_PERMANENT, "permanent"},
    {IFA_F_MANAGETEMPADDR, "manages temporary addresses"},
    {IFA_F_NOPREFIXROUTE, "no prefix route"},
    {IFA_F_MCAUTOJOIN, "joins multicast"},
    {IFA_F_STABLE_PRIVACY, "stable privacy"},
};

// IFA_F_SECONDARY and IFA_F_TEMPORARY are the same bit: the former in IPv4, the latter in IPv6.
std::vector<std::string> FlagWords(const TIPAddress& address) {
    std::vector<std::string> words;
    for (const TFlag& flag : kFlags)
        if ((address.flags & flag.bit) != 0) words.emplace_back(flag.word);
    if (address.family == AF_INET6 && (address.flags & IFA_F_TEMPORARY) != 0) words.front() = "temporary";
    return words;
}

std::string SubnetMask(uint8_t prefixLength) {
    const uint32_t bits = prefixLength == 0 ? 0 : htonl(~uint32_t(0) << (32 - std::min<int>(prefixLength, 32)));
    char text[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &bits, text, sizeof text);
    return text;
}

std::string WithPrefix(const TIPAddress& address) {
    return address.address + '/' + std::to_string(address.prefixLength);
}

TInstancePath AddressPath(const TIPAddress& address) {
    std::string name = address.adapter + ' ' + WithPrefix(address);
    if (address.peer) name += " to " + *address.peer;
    return ScopedPath(kAddress, name);
}

template <typename T>
void Add(TInstanceReport& report, const char* property, T value) {
    report.Add(property, TFact<T>::Of(std::move(value), SourceOf(ENetlinkTable::eAddresses)));
}

void AddText(TInstanceReport& report, const char* property, const std::optional<std::string>& text) {
    if (text) Add(report, property, *text);
}

kyrStatusCode ReportAddress(kyrIOHandle handle, const TIPAddress& address) {
    const bool isIPv4 = address.family == AF_INET;
    TInstanceReport report(handle, AddressPath(address));
    report.Set("Caption", WithPrefix(address) + " on " + address.adapter);
    Add(report, "AddressType", uint16_t(isIPv4 ? 1 : 2));
    Add(report, "Address", address.address);
    Add(report, "PrefixLength", address.prefixLength);
    if (isIPv4) Add(report, "SubnetMask", SubnetMask(address.prefixLength));
    AddText(report, "BroadcastAddress", address.broadcast);
    AddText(report, "PeerAddress", address.peer);
    Add(report, "Scope", uint16_t(address.scope));
    AddText(report, "Label", address.label);
    report.Set("InterfaceName", address.adapter);
    Add(report, "Dynamic", (address.flags & IFA_F_PERMANENT) == 0);
    if (address.dhcpServer || IsUnreadable(address.dhcpServer)) report.Add("DHCPServer", address.dhcpServer);
    if (address.leaseExpires) report.Add("DHCPLeaseExpires", TimestampOf(address.leaseExpires));
    if (std::vector<std::string> flags = FlagWords(address); !flags.empty()) Add(report, "Flags", std::move(flags));
    return report.Finish();
}

}  // namespace

kyrStatusCode ReportAddresses(kyrIOHandle handle, const TNetworkFacts& facts) {
    return ReportEach(handle, facts.addresses, ReportAddress);
}

kyrStatusCode ReportAddressAdapters(kyrIOHandle handle, const TNetworkFacts& facts) {
    return ReportEach(facts.addresses, [handle](const TIPAddress& address) {
        return ReportAssociation(handle, "MOLTA_NetworkAdapterAddress", "Antecedent", AdapterPath(address.adapter),
                                 "Dependent", AddressPath(address));
    });
}
