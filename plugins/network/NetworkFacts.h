#ifndef KYR_PLUGINS_NETWORK_NETWORKFACTS_H
#define KYR_PLUGINS_NETWORK_NETWORKFACTS_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "BusDevice.h"
#include "SystemRoot.h"

enum ECounter {
    ePacketsReceived,
    ePacketsTransmitted,
    eBytesReceived,
    eBytesTransmitted,
    eReceiveErrors,
    eTransmitErrors,
    eReceiveDrops,
    eTransmitDrops,
    eCounters
};

/// What the kernel tells of adapters of some kinds, and of those that are part of a bond or a bridge.
struct TLinkSettings {
    std::string source;
    std::optional<uint16_t> vlan;
    std::string vlanSource;                ///< empty: that of the others
    std::optional<uint16_t> vlanProtocol;  ///< its EtherType
    std::optional<uint32_t> vxlan;
    std::optional<uint16_t> macvlanMode;  ///< MACVLAN_MODE_*

    std::optional<bool> spanningTree;
    std::optional<bool> vlanFiltering;
    std::optional<uint16_t> bridgePortState;  ///< BR_STATE_*

    std::optional<uint16_t> bondMode;            ///< BOND_MODE_*
    std::optional<uint16_t> transmitHashPolicy;  ///< BOND_XMIT_POLICY_*
    std::optional<uint32_t> monitoringInterval;  ///< in milliseconds
    std::optional<uint32_t> activeMemberIndex;
    std::string activeMember;                 ///< may be empty
    std::optional<uint16_t> bondMemberState;  ///< BOND_STATE_*
    std::optional<uint16_t> bondMemberLink;   ///< BOND_LINK_*
};

/// What the driver of an adapter tells of it.
struct TDriverFacts {
    TFact<std::string> version;
    TFact<std::string> firmwareVersion;
    TFact<std::string> busInfo;
    TFact<uint16_t> connector;  ///< PORT_*
    TFact<bool> autoSense;
    TFact<uint64_t> maxSpeed;  ///< in bits per second
};

/// The device that an adapter is driven by: its driver, its bus and its name there.
struct TAdapterDevice {
    TFact<std::string> driver;
    TFact<std::string> bus;
    TFact<std::string> busId;
    TBusDevice busDevice;
    TBusDevice physicalFunction;  ///< of which it is a virtual function
    bool wireless = false;
    TFact<uint32_t> supportedVirtualFunctions;
    TFact<uint32_t> virtualFunctions;
    std::optional<TDriverFacts> driverFacts;  ///< none of a suspended device, which asking would wake
};

struct TAdapter {
    std::string name;
    TFact<uint32_t> index;
    TFact<uint16_t> type;  ///< ARPHRD_*
    TFact<std::string> address;
    TFact<std::string> permanentAddress;
    TFact<uint64_t> mtu;
    std::optional<uint64_t> minimumMtu;
    std::optional<uint64_t> maximumMtu;
    TFact<bool> enabled;
    TFact<bool> carrier;
    TFact<uint16_t> operationalState;  ///< ifOperStatus of RFC 2863, less one
    std::array<TFact<uint64_t>, eCounters> counters;
    TListing linkTable;  ///< the kernel's table, without which only files tell of the following, and of few
    std::optional<std::string> alias;
    std::optional<std::string> kind;  ///< of a software device: "bridge", "vlan"
    TLinkSettings settings;
    std::vector<std::string> otherNames;
    std::optional<uint32_t> group;
    std::optional<uint32_t> transmitQueues;
    std::optional<uint32_t> receiveQueues;
    std::optional<uint32_t> masterIndex;
    std::optional<uint32_t> lowerIndex;
    std::string master;  ///< the bridge or bond that it belongs to; may be empty
    std::string lower;   ///< the adapter below it, for a VLAN; may be empty

    TFact<uint64_t> speed;  ///< in bits per second
    TFact<bool> fullDuplex;
    TFact<bool> isVirtual;                      ///< a software device
    std::optional<TAdapterDevice> device;       ///< none if it is virtual
    TFact<std::vector<std::string>> addresses;  ///< with their prefix lengths
};

struct TIPAddress {
    std::string adapter;
    int family;
    std::string address;
    uint8_t prefixLength;
    uint8_t scope;
    std::optional<std::string> peer;  ///< the other end of a point-to-point link
    std::optional<std::string> broadcast;
    std::optional<std::string> label;
    uint32_t flags;  ///< IFA_F_*
    TFact<std::string> dhcpServer;
    TFact<int64_t> leaseExpires;  ///< in seconds since 1970
};

/// What uses DNS settings: as MOLTA_DNSSettings.Program.
enum class EDnsProgram : uint16_t { eCLibrary = 1, eResolved = 2, eNetworkd = 3, eNetworkManager = 4 };

/// The servers that are asked for names: those of a file, or those that an adapter has been given.
struct TDnsSettings {
    std::string id;
    EDnsProgram program = EDnsProgram::eCLibrary;
    std::string adapter;  ///< may be empty
    TFact<std::string> linkTarget;
    TFact<std::vector<std::string>> servers;
    std::vector<std::string> ignoredServers;
    bool hasLocalServer = false;
    TFact<std::string> domain;
    TFact<std::vector<std::string>> searchDomains;
    TFact<std::vector<std::string>> options;
};

/// One next hop of a route; a multipath route becomes several of these.
struct TRoute {
    int family;
    std::string destination;
    uint8_t prefixLength;
    uint32_t table;
    uint8_t type;
    uint8_t protocol;
    uint8_t scope;
    uint8_t typeOfService;
    uint32_t metric;
    std::optional<uint16_t> weight;  ///< of a next hop of a multipath route
    std::optional<std::string> gateway;
    std::optional<std::string> source;
    std::string adapter;  ///< may be empty
};

struct TNetworkFacts {
    std::vector<TAdapter> adapters;
    std::vector<TIPAddress> addresses;
    std::vector<TRoute> routes;
    std::vector<TDnsSettings> dnsSettings;

    TListing adapterListing;
    TListing addressListing;
    TListing routeListing;
    TListing busListing;  ///< of the devices that drive adapters
    TListing dnsListing;
};

TNetworkFacts ReadNetwork(const TSystemRoot& root);

#endif
