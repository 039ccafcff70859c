#include <linux/if.h>
#include <linux/rtnetlink.h>

#include <set>

#include "Netlink.h"
#include "NetlinkDump.h"
#include "NetworkParts.h"

namespace {

// Sets a fact from an optional attribute; the source is the link table either way.
template <typename T, typename TOther>
void Fill(TFact<T>& fact, const std::optional<TOther>& value) {
    fact.source = SourceOf(ENetlinkTable::eLinks);
    if (value) fact.value = static_cast<T>(*value);
}

void FillCounters(TAdapter& adapter, const TNetlinkAttributes& attributes) {
    static_assert(offsetof(rtnl_link_stats64, tx_dropped) == eTransmitDrops * sizeof(uint64_t));
    std::string_view bytes = attributes.Find(IFLA_STATS64).value_or("");
    for (TFact<uint64_t>& counter : adapter.counters) Fill(counter, TakeStruct<uint64_t>(bytes));
}

// The adapter that a VXLAN sends through stands with its other settings.
std::optional<uint32_t> LinkIndex(const TNetlinkAttributes& attributes, const TNetlinkAttributes& info) {
    if (info.Text(IFLA_INFO_KIND) != "vxlan") return attributes.Number<uint32_t>(IFLA_LINK);
    return TNetlinkAttributes(info.Find(IFLA_INFO_DATA).value_or("")).Number<uint32_t>(IFLA_VXLAN_LINK);
}

// It is no lower adapter for a veth, whose ends refer to each other, nor if it is in another network namespace.
std::optional<uint32_t> LowerIndex(const TAdapter& adapter, const TNetlinkAttributes& attributes,
                                   const TNetlinkAttributes& info) {
    const std::optional<uint32_t> index = LinkIndex(attributes, info);
    const bool isElsewhere = attributes.Find(IFLA_LINK_NETNSID) || adapter.kind == "veth";
    return index == 0u || index == adapter.index.value || isElsewhere ? std::nullopt : index;
}

std::vector<std::string> OtherNames(const TNetlinkAttributes& attributes) {
    std::string_view list = attributes.Find(IFLA_PROP_LIST).value_or("");
    std::vector<std::string> names;
    while (const std::optional<TNetlinkAttribute> property = TakeAttribute(list))
        if (property->type == IFLA_ALT_IFNAME)
            names.emplace_back(property->bytes.substr(0, property->bytes.find('\0')));
    return names;
}

void FillKind(TAdapter& adapter, const TNetlinkAttributes& attributes) {
    const TNetlinkAttributes info(attributes.Find(IFLA_LINKINFO).value_or(""));
    adapter.kind = info.Text(IFLA_INFO_KIND);
    adapter.settings = ParseLinkSettings(info);
    adapter.lowerIndex = LowerIndex(adapter, attributes, info);
}

void FillLimits(TAdapter& adapter, const TNetlinkAttributes& attributes) {
    adapter.minimumMtu = attributes.Number<uint32_t>(IFLA_MIN_MTU);
    adapter.maximumMtu = attributes.Number<uint32_t>(IFLA_MAX_MTU);
    if (adapter.maximumMtu == 0u) adapter.maximumMtu.reset();
    adapter.transmitQueues = attributes.Number<uint32_t>(IFLA_NUM_TX_QUEUES);
    adapter.receiveQueues = attributes.Number<uint32_t>(IFLA_NUM_RX_QUEUES);
}

void FillAttributes(TAdapter& adapter, const TNetlinkAttributes& attributes) {
    Fill(adapter.address, attributes.HardwareAddress(IFLA_ADDRESS));
    Fill(adapter.permanentAddress, attributes.HardwareAddress(IFLA_PERM_ADDRESS));
    Fill(adapter.mtu, attributes.Number<uint32_t>(IFLA_MTU));
    Fill(adapter.operationalState, attributes.Number<uint8_t>(IFLA_OPERSTATE));
    Fill(adapter.carrier, attributes.Number<uint8_t>(IFLA_CARRIER));
    adapter.alias = attributes.Text(IFLA_IFALIAS);
    adapter.otherNames = OtherNames(attributes);
    adapter.group = attributes.Number<uint32_t>(IFLA_GROUP);
    adapter.masterIndex = attributes.Number<uint32_t>(IFLA_MASTER);
    FillCounters(adapter, attributes);
    FillLimits(adapter, attributes);
    FillKind(adapter, attributes);
}

std::optional<TAdapter> ParseLink(std::string_view body) {
    const auto header = TakeStruct<ifinfomsg>(body);
    if (!header || header->ifi_family != AF_UNSPEC || header->ifi_index <= 0) return std::nullopt;
    const TNetlinkAttributes attributes(body);
    TAdapter adapter;
    adapter.name = attributes.Text(IFLA_IFNAME).value_or("");
    if (adapter.name.empty() || adapter.name.find('/') != std::string::npos) return std::nullopt;
    Fill(adapter.index, std::optional(header->ifi_index));
    Fill(adapter.type, std::optional(header->ifi_type));
    Fill(adapter.enabled, std::optional((header->ifi_flags & IFF_UP) != 0));
    FillAttributes(adapter, attributes);
    if (!*adapter.enabled) adapter.carrier = TFact<bool>::Missing(EAbsence::eNotSupported, adapter.carrier.source);
    return adapter;
}

}  // namespace

std::vector<TAdapter> ParseLinks(std::string_view table) {
    std::vector<TAdapter> adapters;
    std::set<std::string> names;
    for (const TNetlinkMessage& message : ParseNetlinkMessages(table)) {
        if (message.type != RTM_NEWLINK) continue;
        std::optional<TAdapter> adapter = ParseLink(message.body);
        if (adapter && names.insert(adapter->name).second) adapters.push_back(std::move(*adapter));
    }
    return adapters;
}
