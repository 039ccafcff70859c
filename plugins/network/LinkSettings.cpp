#include <arpa/inet.h>
#include <linux/rtnetlink.h>

#include "Netlink.h"
#include "NetlinkDump.h"
#include "NetworkParts.h"

namespace {

using TFill = void (*)(TLinkSettings&, const TNetlinkAttributes&);

/// How the attributes of one kind are read. The numbers of attributes mean something else for each kind.
struct TKind {
    std::string_view name;
    TFill fill;
};

std::optional<bool> Flag(std::optional<uint32_t> number) { return number ? std::optional(*number != 0) : std::nullopt; }

void FillVlan(TLinkSettings& settings, const TNetlinkAttributes& data) {
    settings.vlan = data.Number<uint16_t>(IFLA_VLAN_ID);
    settings.vlanProtocol = data.Number<uint16_t>(IFLA_VLAN_PROTOCOL);
    if (settings.vlanProtocol) settings.vlanProtocol = ntohs(*settings.vlanProtocol);
}

void FillVxlan(TLinkSettings& settings, const TNetlinkAttributes& data) {
    settings.vxlan = data.Number<uint32_t>(IFLA_VXLAN_ID);
}

void FillMacvlan(TLinkSettings& settings, const TNetlinkAttributes& data) {
    settings.macvlanMode = data.Number<uint32_t>(IFLA_MACVLAN_MODE);
}

void FillBridge(TLinkSettings& settings, const TNetlinkAttributes& data) {
    settings.spanningTree = Flag(data.Number<uint32_t>(IFLA_BR_STP_STATE));
    settings.vlanFiltering = Flag(data.Number<uint8_t>(IFLA_BR_VLAN_FILTERING));
}

void FillBond(TLinkSettings& settings, const TNetlinkAttributes& data) {
    settings.bondMode = data.Number<uint8_t>(IFLA_BOND_MODE);
    settings.transmitHashPolicy = data.Number<uint8_t>(IFLA_BOND_XMIT_HASH_POLICY);
    settings.monitoringInterval = data.Number<uint32_t>(IFLA_BOND_MIIMON);
    settings.activeMemberIndex = data.Number<uint32_t>(IFLA_BOND_ACTIVE_SLAVE);
}

void FillBondMember(TLinkSettings& settings, const TNetlinkAttributes& data) {
    settings.bondMemberState = data.Number<uint8_t>(IFLA_BOND_SLAVE_STATE);
    settings.bondMemberLink = data.Number<uint8_t>(IFLA_BOND_SLAVE_MII_STATUS);
}

void FillBridgePort(TLinkSettings& settings, const TNetlinkAttributes& data) {
    settings.bridgePortState = data.Number<uint8_t>(IFLA_BRPORT_STATE);
}

constexpr TKind kKinds[] = {{"vlan", FillVlan},       {"vxlan", FillVxlan},   {"macvlan", FillMacvlan},
                            {"macvtap", FillMacvlan}, {"bridge", FillBridge}, {"bond", FillBond}};
constexpr TKind kMemberKinds[] = {{"bond", FillBondMember}, {"bridge", FillBridgePort}};

template <size_t count>
void Fill(TLinkSettings& settings, const TKind (&kinds)[count], const std::optional<std::string>& name,
          std::string_view data) {
    for (const TKind& kind : kinds)
        if (kind.name == name) kind.fill(settings, TNetlinkAttributes(data));
}

}  // namespace

TLinkSettings ParseLinkSettings(const TNetlinkAttributes& info) {
    TLinkSettings settings;
    settings.source = SourceOf(ENetlinkTable::eLinks);
    Fill(settings, kKinds, info.Text(IFLA_INFO_KIND), info.Find(IFLA_INFO_DATA).value_or(""));
    Fill(settings, kMemberKinds, info.Text(IFLA_INFO_SLAVE_KIND), info.Find(IFLA_INFO_SLAVE_DATA).value_or(""));
    return settings;
}
