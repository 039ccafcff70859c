// The plugin "network": adapters, IP addresses, routes and name servers.
#include "DataPlugin.h"
#include "NetworkReport.h"

namespace {

TListing Adapters(const TNetworkFacts& facts) { return facts.adapterListing; }
TListing Buses(const TNetworkFacts& facts) { return facts.busListing; }
TListing Addresses(const TNetworkFacts& facts) { return facts.addressListing; }
TListing Dns(const TNetworkFacts& facts) { return facts.dnsListing; }
TListing Routes(const TNetworkFacts& facts) { return facts.routeListing; }

const TDataPlugin<TNetworkFacts> gPlugin("network", ReadNetwork,
                                         {{"MOLTA_NetworkAdapter", ReportAdapters, {Adapters}},
                                          {"MOLTA_SystemNetworkAdapter", ReportSystemAdapters, {Adapters}},
                                          {"MOLTA_NetworkAdapterMember", ReportAdapterMembers, {Adapters}},
                                          {"MOLTA_LowerNetworkAdapter", ReportLowerAdapters, {Adapters}},
                                          {"MOLTA_NetworkAdapterDevice", ReportAdapterDevices, {Adapters, Buses}},
                                          {"MOLTA_PhysicalFunction", ReportPhysicalFunctions, {Adapters, Buses}},
                                          {"MOLTA_IPAddress", ReportAddresses, {Addresses}},
                                          {"MOLTA_NetworkAdapterAddress", ReportAddressAdapters, {Adapters, Addresses}},
                                          {"MOLTA_Route", ReportRoutes, {Routes}},
                                          {"MOLTA_RouteAdapter", ReportRouteAdapters, {Adapters, Routes}},
                                          {"MOLTA_DNSSettings", ReportDnsSettings, {Dns}},
                                          {"MOLTA_DNSSettingsOwner", ReportDnsOwners, {Adapters, Dns}}});

}  // namespace
