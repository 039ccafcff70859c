#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include "Netlink.h"
#include "NetworkParts.h"

namespace {

// RTA_VIA is a gateway of another address family than the route.
std::optional<std::string> ViaAddress(const TNetlinkAttributes& attributes) {
    std::string_view bytes = attributes.Find(RTA_VIA).value_or("");
    const std::optional<uint16_t> family = TakeStruct<uint16_t>(bytes);
    if (family != AF_INET && family != AF_INET6) return std::nullopt;
    return AddressText(*family, bytes);
}

void FillHop(TRoute& route, std::optional<uint32_t> index, const TNetlinkAttributes& attributes,
             const TAdapterNames& names) {
    route.adapter = NameOf(index, names);
    route.gateway = attributes.Address(RTA_GATEWAY, route.family);
    if (!route.gateway) route.gateway = ViaAddress(attributes);
}

// The next hops of a multipath route, each with its adapter and attributes.
std::vector<TRoute> ParseHops(const TRoute& route, std::string_view bytes, const TAdapterNames& names) {
    std::vector<TRoute> routes;
    for (;;) {
        std::string_view rest = bytes;
        const auto header = TakeStruct<rtnexthop>(rest);
        if (!header || header->rtnh_len < sizeof(rtnexthop) || header->rtnh_len > bytes.size()) return routes;
        const TNetlinkAttributes attributes(rest.substr(0, header->rtnh_len - sizeof(rtnexthop)));
        routes.push_back(route);
        routes.back().weight = uint16_t(header->rtnh_hops + 1);
        FillHop(routes.back(), uint32_t(header->rtnh_ifindex), attributes, names);
        bytes.remove_prefix(std::min<size_t>(RTNH_ALIGN(header->rtnh_len), bytes.size()));
    }
}

TRoute MakeRoute(const rtmsg& header, const TNetlinkAttributes& attributes) {
    TRoute route = {};
    route.family = header.rtm_family;
    route.destination = attributes.Address(RTA_DST, route.family).value_or(route.family == AF_INET ? "0.0.0.0" : "::");
    route.prefixLength = header.rtm_dst_len;
    route.table = attributes.Number<uint32_t>(RTA_TABLE).value_or(header.rtm_table);
    route.type = header.rtm_type;
    route.protocol = header.rtm_protocol;
    route.scope = header.rtm_scope;
    route.typeOfService = header.rtm_tos;
    route.metric = attributes.Number<uint32_t>(RTA_PRIORITY).value_or(0);
    route.source = attributes.Address(RTA_PREFSRC, route.family);
    return route;
}

std::vector<TRoute> ParseRoute(std::string_view body, const TAdapterNames& names) {
    const auto header = TakeStruct<rtmsg>(body);
    if (!header || (header->rtm_family != AF_INET && header->rtm_family != AF_INET6)) return {};
    const TNetlinkAttributes attributes(body);
    TRoute route = MakeRoute(*header, attributes);
    if (route.table == RT_TABLE_LOCAL || (header->rtm_flags & RTM_F_CLONED) != 0) return {};
    if (const std::optional<std::string_view> hops = attributes.Find(RTA_MULTIPATH))
        return ParseHops(route, *hops, names);
    FillHop(route, attributes.Number<uint32_t>(RTA_OIF), attributes, names);
    return {std::move(route)};
}

}  // namespace

std::vector<TRoute> ParseRoutes(std::string_view table, const TAdapterNames& names) {
    std::vector<TRoute> routes;
    for (const TNetlinkMessage& message : ParseNetlinkMessages(table))
        if (message.type == RTM_NEWROUTE)
            for (TRoute& route : ParseRoute(message.body, names)) routes.push_back(std::move(route));
    return routes;
}
