// The plugin "sockets": where programs of this system wait for others.
#include <netinet/in.h>
#include <sys/socket.h>

#include "DataPlugin.h"
#include "InstanceReport.h"
#include "SocketFacts.h"

namespace {

constexpr const char* kSocket = "MOLTA_ListeningSocket";
constexpr const char* kUnixSocket = "MOLTA_UnixListeningSocket";
constexpr const char* kService = "MOLTA_Service";

TInstancePath PathOf(const TListeningSocket& socket) { return ScopedPath(kSocket, NameOf(socket)); }
TInstancePath PathOf(const TUnixSocket& socket) { return ScopedPath(kUnixSocket, socket.name); }

template <typename T>
void Add(TInstanceReport& report, const char* property, T value, const TSocketUse& use) {
    report.Add(property, TFact<T>::Of(std::move(value), use.source));
}

// What NullMeans says of a value that is not present needs no reason of its own.
template <typename T>
void AddUnlessNotPresent(TInstanceReport& report, const char* property, const TFact<T>& fact) {
    if (fact || fact.absence != EAbsence::eNotPresent) report.Add(property, fact);
}

void AddUse(TInstanceReport& report, const TSocketUse& use) {
    Add(report, "Sockets", use.count, use);
    report.Add("Owner", use.owner);
    report.Add("OwnerName", use.ownerName);
    AddUnlessNotPresent(report, "Unit", use.unit);
    AddUnlessNotPresent(report, "ProcessIDs", use.processIds);
    AddUnlessNotPresent(report, "ProcessNames", use.processNames);
    AddUnlessNotPresent(report, "Executables", use.executables);
}

bool IsStream(const TListeningSocket& socket) {
    return socket.protocol != IPPROTO_UDP && socket.protocol != IPPROTO_UDPLITE;
}

kyrStatusCode ReportSocket(kyrIOHandle handle, const TListeningSocket& socket) {
    TInstanceReport report(handle, PathOf(socket));
    report.Set("Caption", NameOf(socket));
    Add(report, "Protocol", socket.protocol, socket);
    Add(report, "AddressType", uint16_t(socket.family == AF_INET ? 1 : 2), socket);
    Add(report, "Address", socket.address, socket);
    Add(report, "Port", socket.port, socket);
    AddUnlessNotPresent(report, "PortName", socket.portName);
    AddUnlessNotPresent(report, "InterfaceName", socket.interface);
    report.Add("LocalOnly", socket.localOnly);
    if (socket.family == AF_INET6) report.Add("IPv6Only", socket.ipv6Only);
    if (IsStream(socket)) report.Add("Backlog", socket.backlog);
    AddUse(report, socket);
    return report.Finish();
}

kyrStatusCode ReportUnixSocket(kyrIOHandle handle, const TUnixSocket& socket) {
    TInstanceReport report(handle, PathOf(socket));
    report.Set("Caption", socket.name);
    Add(report, "SocketType", socket.type, socket);
    report.Add("Backlog", socket.backlog);
    AddUse(report, socket);
    return report.Finish();
}

kyrStatusCode ReportSockets(kyrIOHandle handle, const TSocketFacts& facts) {
    return ReportEach(handle, facts.sockets, ReportSocket);
}

kyrStatusCode ReportUnixSockets(kyrIOHandle handle, const TSocketFacts& facts) {
    return ReportEach(handle, facts.unixSockets, ReportUnixSocket);
}

kyrStatusCode ReportHosted(kyrIOHandle handle, const TSocketFacts& facts) {
    const auto report = [handle](const auto& socket) {
        return ReportAssociation(handle, "MOLTA_HostedListeningSocket", "Antecedent", ComputerSystem(), "Dependent",
                                 PathOf(socket));
    };
    const kyrStatusCode status = ReportEach(facts.sockets, report);
    return status == kyrStatusOK ? ReportEach(facts.unixSockets, report) : status;
}

kyrStatusCode ReportServices(kyrIOHandle handle, const TSocketFacts& facts) {
    if (!IsKnownClass(handle, kService)) return kyrStatusOK;
    const auto report = [handle](const auto& socket) {
        if (!socket.isUnitAService) return kyrStatusOK;
        return ReportAssociation(handle, "MOLTA_ServiceListeningSocket", "Antecedent",
                                 ScopedPath(kService, *socket.unit), "Dependent", PathOf(socket));
    };
    const kyrStatusCode status = ReportEach(facts.sockets, report);
    return status == kyrStatusOK ? ReportEach(facts.unixSockets, report) : status;
}

TListing Sockets(const TSocketFacts& facts) { return facts.listing; }
TListing UnixSockets(const TSocketFacts& facts) { return facts.unixListing; }

const TDataPlugin<TSocketFacts> gPlugin("sockets", ReadSockets,
                                        {{kSocket, ReportSockets, {Sockets}},
                                         {kUnixSocket, ReportUnixSockets, {UnixSockets}},
                                         {"MOLTA_HostedListeningSocket", ReportHosted, {Sockets, UnixSockets}},
                                         {"MOLTA_ServiceListeningSocket", ReportServices, {Sockets, UnixSockets}}});

}  // namespace
