#include <linux/rtnetlink.h>
#include <sys/socket.h>

#include "NetlinkDump.h"
#include "NetworkReport.h"

namespace {

constexpr const char* kRoute = "MOLTA_Route";

std::string Destination(const TRoute& route) {
    return route.prefixLength == 0 ? "default" : route.destination + '/' + std::to_string(route.prefixLength);
}

// "default via 192.0.2.1 dev eth0"
std::string Caption(const TRoute& route) {
    std::string caption = Destination(route);
    if (route.gateway) caption += " via " + *route.gateway;
    if (!route.adapter.empty()) caption += " dev " + route.adapter;
    return caption;
}

// Unique: all attributes by which two routes can differ.
std::string InstanceId(const TRoute& route) {
    std::string id = route.family == AF_INET ? "IPv4 " : "IPv6 ";
    id += Caption(route) + " table " + std::to_string(route.table) + " metric " + std::to_string(route.metric);
    if (route.typeOfService != 0) id += " tos " + std::to_string(route.typeOfService);
    if (route.type != RTN_UNICAST) id += " type " + std::to_string(route.type);
    if (route.source) id += " src " + *route.source;
    return id + " proto " + std::to_string(route.protocol);
}

TInstancePath RoutePath(const TRoute& route) { return {kRoute, {{"InstanceID", InstanceId(route)}}}; }

template <typename T>
void Add(TInstanceReport& report, const char* property, T value) {
    report.Add(property, TFact<T>::Of(std::move(value), SourceOf(ENetlinkTable::eRoutes)));
}

void AddHop(TInstanceReport& report, const TRoute& route) {
    if (route.gateway) Add(report, "NextHop", *route.gateway);
    if (!route.adapter.empty()) Add(report, "InterfaceName", route.adapter);
    if (route.source) Add(report, "SourceAddress", *route.source);
    if (route.weight) Add(report, "Weight", *route.weight);
}

kyrStatusCode ReportRoute(kyrIOHandle handle, const TRoute& route) {
    TInstanceReport report(handle, RoutePath(route));
    report.Set("Caption", Caption(route));
    Add(report, "AddressType", uint16_t(route.family == AF_INET ? 1 : 2));
    Add(report, "DestinationAddress", route.destination);
    Add(report, "PrefixLength", route.prefixLength);
    AddHop(report, route);
    Add(report, "RouteMetric", route.metric);
    Add(report, "TypeOfRoute", uint16_t(route.type));
    Add(report, "Table", route.table);
    Add(report, "Protocol", uint16_t(route.protocol));
    Add(report, "Scope", uint16_t(route.scope));
    return report.Finish();
}

}  // namespace

kyrStatusCode ReportRoutes(kyrIOHandle handle, const TNetworkFacts& facts) {
    return ReportEach(handle, facts.routes, ReportRoute);
}

kyrStatusCode ReportRouteAdapters(kyrIOHandle handle, const TNetworkFacts& facts) {
    return ReportEach(facts.routes, [handle](const TRoute& route) {
        if (route.adapter.empty()) return kyrStatusOK;
        return ReportAssociation(handle, "MOLTA_RouteAdapter", "Antecedent", AdapterPath(route.adapter), "Dependent",
                                 RoutePath(route));
    });
}
