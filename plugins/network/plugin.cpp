// The plugin "network": adapters, IP addresses and routes.
#include "DataPlugin.h"
#include "NetworkReport.h"

namespace {

const TDataPlugin<TNetworkFacts> gPlugin("network", ReadNetwork,
                                         {{"MOLTA_NetworkAdapter", ReportAdapters},
                                          {"MOLTA_SystemNetworkAdapter", ReportSystemAdapters},
                                          {"MOLTA_NetworkAdapterMember", ReportAdapterMembers},
                                          {"MOLTA_LowerNetworkAdapter", ReportLowerAdapters},
                                          {"MOLTA_NetworkAdapterDevice", ReportAdapterDevices},
                                          {"MOLTA_IPAddress", ReportAddresses},
                                          {"MOLTA_NetworkAdapterAddress", ReportAddressAdapters},
                                          {"MOLTA_Route", ReportRoutes},
                                          {"MOLTA_RouteAdapter", ReportRouteAdapters}});

}  // namespace
