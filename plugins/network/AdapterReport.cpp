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

constexpr const char* kDriverProperties[] = {"DriverVersion", "FirmwareVersion", "BusInfo",
                                             "Connector",     "AutoSense",       "MaxSpeed"};
constexpr const char* kDeviceProperties[] = {"PermanentAddress",          "Driver",          "Bus", "BusID", "Wireless",
                                             "SupportedVirtualFunctions", "VirtualFunctions"};

// What the kernel tells, and nothing for what it lacks: the document says why that is so.
template <typename T>
void AddSetting(TInstanceReport& report, const TAdapter& adapter, const char* property, const std::optional<T>& value,
                const std::string& source = "") {
    if (value)
        report.Add(property, TFact<T>::Of(*value, source.empty() ? adapter.settings.source : source));
    else if (!adapter.linkTable)
        report.Add(property, adapter.linkTable);
}

template <typename T>
std::optional<T> UnlessEmpty(const T& value) {
    return value.empty() ? std::nullopt : std::optional(value);
}

void AddName(TInstanceReport& report, const TAdapter& adapter, const char* property,
             const std::optional<std::string>& name) {
    if (name)
        report.Set(property, *name);
    else if (!adapter.linkTable)
        report.Add(property, adapter.linkTable);
}

void AddIdentity(TInstanceReport& report, const TAdapter& adapter) {
    report.Set("Name", adapter.name);
    report.Set("Caption", Caption(adapter));
    AddName(report, adapter, "ElementName", adapter.alias);
    report.Add("InterfaceIndex", adapter.index);
    report.Add("LinkTechnology", adapter.type);
    report.Add("Virtual", adapter.isVirtual);
    AddName(report, adapter, "Kind", adapter.kind);
    AddSetting(report, adapter, "OtherNames", UnlessEmpty(adapter.otherNames));
    AddSetting(report, adapter, "InterfaceGroup", adapter.group == 0u ? std::nullopt : adapter.group);
}

void AddSettings(TInstanceReport& report, const TAdapter& adapter) {
    const TLinkSettings& settings = adapter.settings;
    AddSetting(report, adapter, "VLANID", settings.vlan, settings.vlanSource);
    AddSetting(report, adapter, "VLANProtocol", settings.vlanProtocol);
    AddSetting(report, adapter, "VXLANID", settings.vxlan);
    AddSetting(report, adapter, "MACVLANMode", settings.macvlanMode);
    AddSetting(report, adapter, "SpanningTree", settings.spanningTree);
    AddSetting(report, adapter, "VLANFiltering", settings.vlanFiltering);
    AddSetting(report, adapter, "BridgePortState", settings.bridgePortState);
}

void AddBond(TInstanceReport& report, const TAdapter& adapter) {
    const TLinkSettings& settings = adapter.settings;
    AddSetting(report, adapter, "BondMode", settings.bondMode);
    AddSetting(report, adapter, "TransmitHashPolicy", settings.transmitHashPolicy);
    AddSetting(report, adapter, "LinkMonitoringInterval", settings.monitoringInterval);
    AddSetting(report, adapter, "ActiveMember", UnlessEmpty(settings.activeMember));
    AddSetting(report, adapter, "BondMemberState", settings.bondMemberState);
    AddSetting(report, adapter, "BondMemberLink", settings.bondMemberLink);
}

void AddLink(TInstanceReport& report, const TAdapter& adapter) {
    report.Add("CurrentAddress", adapter.address);
    if (!adapter.addresses || !adapter.addresses->empty()) report.Add("IPAddresses", adapter.addresses);
    report.Add("ActiveMaximumTransmissionUnit", adapter.mtu);
    AddSetting(report, adapter, "MinimumTransmissionUnit", adapter.minimumMtu);
    AddSetting(report, adapter, "SupportedMaximumTransmissionUnit", adapter.maximumMtu);
    AddSetting(report, adapter, "TransmitQueues", adapter.transmitQueues);
    AddSetting(report, adapter, "ReceiveQueues", adapter.receiveQueues);
    report.Add("Enabled", adapter.enabled);
    report.Add("Carrier", adapter.carrier);
    report.Add("LinkState", adapter.operationalState);
    report.Add("Speed", adapter.speed);
    report.Add("FullDuplex", adapter.fullDuplex);
}

void AddDriver(TInstanceReport& report, const TDriverFacts& facts) {
    report.Add("DriverVersion", facts.version);
    report.Add("FirmwareVersion", facts.firmwareVersion);
    report.Add("BusInfo", facts.busInfo);
    report.Add("Connector", facts.connector);
    report.Add("AutoSense", facts.autoSense);
    report.Add("MaxSpeed", facts.maxSpeed);
}

// Most devices have no file that counts virtual functions.
void AddCount(TInstanceReport& report, const char* property, const TFact<uint32_t>& count) {
    if (count || IsUnreadable(count)) report.Add(property, count);
}

void AddDevice(TInstanceReport& report, const TAdapter& adapter) {
    const TAdapterDevice& device = *adapter.device;
    report.Add("PermanentAddress", adapter.permanentAddress);
    report.Add("Driver", device.driver);
    report.Add("Bus", device.bus);
    report.Add("BusID", device.busId);
    report.Set("Wireless", device.wireless);
    if (device.driverFacts) AddDriver(report, *device.driverFacts);
    AddCount(report, "SupportedVirtualFunctions", device.supportedVirtualFunctions);
    AddCount(report, "VirtualFunctions", device.virtualFunctions);
}

kyrStatusCode ReportAdapter(kyrIOHandle handle, const TAdapter& adapter) {
    TInstanceReport report(handle, AdapterPath(adapter.name));
    AddIdentity(report, adapter);
    AddLink(report, adapter);
    AddSettings(report, adapter);
    AddBond(report, adapter);
    if (adapter.device) AddDevice(report, adapter);
    AddAbsences(report, kDeviceProperties, adapter.isVirtual);
    AddAbsences(report, kDriverProperties, adapter.isVirtual);
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

kyrStatusCode ReportPhysicalFunctions(kyrIOHandle handle, const TNetworkFacts& facts) {
    return ReportEach(facts.adapters, [handle](const TAdapter& adapter) {
        if (!adapter.device) return kyrStatusOK;
        return ReportBusDevice(handle, "MOLTA_PhysicalFunction", adapter.device->physicalFunction,
                               AdapterPath(adapter.name));
    });
}
