#ifndef KYR_PLUGINS_NETWORK_NETWORKREPORT_H
#define KYR_PLUGINS_NETWORK_NETWORKREPORT_H

#include "DataPlugin.h"
#include "InstanceReport.h"
#include "NetworkFacts.h"

// The functions that report the instances of one class each; the table in plugin.cpp names them.

TInstancePath AdapterPath(const std::string& name);

kyrStatusCode ReportAdapters(kyrIOHandle handle, const TNetworkFacts& facts);
kyrStatusCode ReportSystemAdapters(kyrIOHandle handle, const TNetworkFacts& facts);
kyrStatusCode ReportAdapterMembers(kyrIOHandle handle, const TNetworkFacts& facts);
kyrStatusCode ReportLowerAdapters(kyrIOHandle handle, const TNetworkFacts& facts);
kyrStatusCode ReportAdapterDevices(kyrIOHandle handle, const TNetworkFacts& facts);
kyrStatusCode ReportPhysicalFunctions(kyrIOHandle handle, const TNetworkFacts& facts);

kyrStatusCode ReportAddresses(kyrIOHandle handle, const TNetworkFacts& facts);
kyrStatusCode ReportAddressAdapters(kyrIOHandle handle, const TNetworkFacts& facts);

kyrStatusCode ReportRoutes(kyrIOHandle handle, const TNetworkFacts& facts);
kyrStatusCode ReportRouteAdapters(kyrIOHandle handle, const TNetworkFacts& facts);

kyrStatusCode ReportDnsSettings(kyrIOHandle handle, const TNetworkFacts& facts);
kyrStatusCode ReportDnsOwners(kyrIOHandle handle, const TNetworkFacts& facts);

#endif
