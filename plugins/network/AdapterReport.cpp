#include "NetworkReport.h"

namespace {

constexpr const char* kAdapter = "MOLTA_NetworkAdapter";

constexpr const char* kCounterNames[] = {"PacketsReceived", "PacketsTransmitted", "BytesReceived", "BytesTransmitted",
                                         "ReceiveErrors",   "TransmitErrors",     "ReceiveDrops",  "TransmitDrops"};
static_assert(std::size(kCounterNames) == eCounters);

// "eth0", "bond0 (bond)"
std::string Caption(const TAdapter& adapter) {
    return adapter.kind ? adapter.name + " (" + *adapter.kind + ')' : adapter.name;
}

/// Notes for each property why the fact that decides on it is missing.
template <typename T, size_t count>
void AddAbsences(TInstanceReport& report, const char* const (&properties)[count], const TFact<T>& fact) {
    for (const char* const property : properties)
        if (!fact) report.Add(property, fact);
}

constexpr const char* kTableProperties[] = {"ElementName", "Kind", "VLANID"};
constexpr const char* kDeviceProperties[] = {"PermanentAddress", "Driver", "Bus", "BusID", "Wireless"};

void AddIdentity(TInstanceReport& report, const TAdapter& adapter) {
    report.Set("Name", adapter.name);
    report.Set("Caption", Caption(adapter));
    if (adapter.alias) report.Set("ElementName", *adapter.alias);
    report.Add("InterfaceIndex", adapter.index);
    report.Add("LinkTechnology", adapter.type);
    report.Add("Virtual", adapter.isVirtual);
    if (adapter.kind) report.Set("Kind", *adapter.kind);
    if (adapter.vlan) report.Set("VLANID", *adapter.vlan);
    AddAbsences(report, kTableProperties, adapter.linkTable);
}

void AddLink(TInstanceReport& report, const TAdapter& adapter) {
    report.Add("CurrentAddress", adapter.address);
    if (!adapter.addresses || !adapter.addresses->empty()) report.Add("IPAddresses", adapter.addresses);
    report.Add("ActiveMaximumTransmissionUnit", adapter.mtu);
    report.Add("Enabled", adapter.enabled);
    report.Add("Carrier", adapter.carrier);
    report.Add("LinkState", adapter.operationalState);
    report.Add("Speed", adapter.speed);
    report.Add("FullDuplex", adapter.fullDuplex);
}

void AddDevice(TInstanceReport& report, const TAdapter& adapter) {
    report.Add("PermanentAddress", adapter.permanentAddress);
    report.Add("Driver", adapter.device->driver);
    report.Add("Bus", adapter.device->bus);
    report.Add("BusID", adapter.device->busId);
    report.Set("Wireless", adapter.device->wireless);
}

kyrStatusCode ReportAdapter(kyrIOHandle handle, const TAdapter& adapter) {
    TInstanceReport report(handle, AdapterPath(adapter.name));
    AddIdentity(report, adapter);
    AddLink(report, adapter);
    if (adapter.device) AddDevice(report, adapter);
    AddAbsences(report, kDeviceProperties, adapter.isVirtual);
    for (size_t i = 0; i < eCounters; ++i) report.Add(kCounterNames[i], adapter.counters[i]);
    return report.Finish();
}

}  // namespace

TInstancePath AdapterPath(const std::string& name) { return DevicePath(kAdapter, name); }

kyrStatusCode ReportAdapters(kyrIOHandle handle, const TNetworkFacts& facts) {
    return ReportEach(handle, facts.adapters, ReportAdapter);
}

kyrStatusCode ReportSystemAdapters(kyrIOHandle handle, const TNetworkFacts& facts) {
    return ReportEach(facts.adapters, [handle](const TAdapter& adapter) {
        return ReportSystemDevice(handle, "MOLTA_SystemNetworkAdapter", AdapterPath(adapter.name));
    });
}

kyrStatusCode ReportAdapterMembers(kyrIOHandle handle, const TNetworkFacts& facts) {
    return ReportEach(facts.adapters, [handle](const TAdapter& adapter) {
        if (adapter.master.empty()) return kyrStatusOK;
        return ReportAssociation(handle, "MOLTA_NetworkAdapterMember", "GroupComponent", AdapterPath(adapter.master),
                                 "PartComponent", AdapterPath(adapter.name));
    });
}

kyrStatusCode ReportLowerAdapters(kyrIOHandle handle, const TNetworkFacts& facts) {
    return ReportEach(facts.adapters, [handle](const TAdapter& adapter) {
        if (adapter.lower.empty()) return kyrStatusOK;
        return ReportAssociation(handle, "MOLTA_LowerNetworkAdapter", "Antecedent", AdapterPath(adapter.lower),
                                 "Dependent", AdapterPath(adapter.name));
    });
}

kyrStatusCode ReportAdapterDevices(kyrIOHandle handle, const TNetworkFacts& facts) {
    return ReportEach(facts.adapters, [handle](const TAdapter& adapter) {
        if (!adapter.device) return kyrStatusOK;
        return ReportBusDevice(handle, "MOLTA_NetworkAdapterDevice", adapter.device->busDevice,
                               AdapterPath(adapter.name));
    });
}
