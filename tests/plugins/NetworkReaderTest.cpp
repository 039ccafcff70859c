#include <linux/ethtool.h>
#include <linux/rtnetlink.h>

#include <filesystem>

#include "NetworkParts.h"
#include "support/TestSupport.h"

namespace {

const TAdapter& AdapterNamed(const TNetworkFacts& facts, const std::string& name) {
    for (const TAdapter& adapter : facts.adapters)
        if (adapter.name == name) return adapter;
    throw std::runtime_error("no adapter " + name);
}

template <typename T>
std::string BytesOf(const T& structure) {
    return {reinterpret_cast<const char*>(&structure), sizeof structure};
}

/// An attribute of netlink; bytes that fill words.
std::string Attribute(uint16_t type, std::string bytes) {
    const nlattr header = {uint16_t(sizeof(nlattr) + bytes.size()), type};
    bytes.resize((bytes.size() + 3) & ~size_t(3));
    return BytesOf(header) + bytes;
}

TLinkSettings SettingsOf(const std::string& kind, const std::string& data, uint16_t kindType = IFLA_INFO_KIND) {
    const std::string info = Attribute(kindType, kind) + Attribute(uint16_t(kindType + 1), data);
    return ParseLinkSettings(TNetlinkAttributes(info));
}

/// "servers|ignored|search|domain|options|local"
std::string ToldOf(const std::string& text) {
    TDnsSettings settings;
    settings.id = "/etc/resolv.conf";
    ParseResolverFile(text, settings);
    std::string told;
    for (const auto& words : {settings.servers.ValueOr({}),
                              settings.ignoredServers,
                              settings.searchDomains.ValueOr({}),
                              {settings.domain.ValueOr("")},
                              settings.options.ValueOr({})}) {
        for (const std::string& word : words) told += (&word == &words.front() ? "" : " ") + word;
        told += '|';
    }
    return told + (settings.hasLocalServer ? "local" : "");
}

}  // namespace

TEST(NetworkReaderTest, SpeedThatIsNotKnownIsNotSupported) {
    const TNetworkFacts server = ReadNetwork(TSystemRoot(MACHINES "/server"));
    EXPECT_EQ(AdapterNamed(server, "ens3np0").speed.absence, EAbsence::eNotSupported);
}

TEST(NetworkReaderTest, ATableThatIsBrokenOffGivesWhatIsWhole) {
    const std::string links = *TSystemRoot(MACHINES "/server").ReadFile("/.kyr/rtnetlink/link");
    size_t count = 0;
    for (size_t length = 0; length <= links.size(); ++length) {
        const size_t found = ParseLinks(links.substr(0, length)).size();
        EXPECT_THAT(found, ::testing::AnyOf(count, count + 1)) << length;
        count = found;
    }
    EXPECT_EQ(count, 9u);
}

TEST(NetworkReaderTest, NumbersOfAttributesMeanWhatTheirKindSays) {
    const TLinkSettings bond =
        SettingsOf("bond", Attribute(IFLA_BOND_MODE, "\1") + Attribute(IFLA_BOND_ACTIVE_SLAVE, BytesOf(7u)));
    EXPECT_EQ(bond.bondMode, 1);
    EXPECT_EQ(bond.activeMemberIndex, 7u);
    EXPECT_FALSE(bond.vlan || bond.vxlan || bond.macvlanMode || bond.bridgePortState);
    EXPECT_EQ(SettingsOf("bond", Attribute(IFLA_BOND_SLAVE_STATE, "\1"), IFLA_INFO_SLAVE_KIND).bondMemberState, 1);
    EXPECT_EQ(SettingsOf("bridge", Attribute(IFLA_BRPORT_STATE, "\4"), IFLA_INFO_SLAVE_KIND).bridgePortState, 4);
    EXPECT_EQ(SettingsOf("vxlan", Attribute(IFLA_VXLAN_ID, BytesOf(42u))).vxlan, 42u);
    EXPECT_EQ(SettingsOf("macvtap", Attribute(IFLA_MACVLAN_MODE, BytesOf(8u))).macvlanMode, 8);
    EXPECT_EQ(SettingsOf("vlan", Attribute(IFLA_VLAN_PROTOCOL, "\x88\xA8")).vlanProtocol, 0x88A8);
    EXPECT_FALSE(SettingsOf("tun", Attribute(IFLA_VLAN_ID, BytesOf(42u))).vlan);
}

TEST(NetworkReaderTest, WithoutTheTableFilesTellOfBondsAndBridgesAndVlans) {
    const TempFolder machine;
    const auto make = [&machine](const std::string& name, const char* kind) {
        machine.Write("sys/devices/virtual/net/" + name + "/uevent", std::string("DEVTYPE=") + kind);
        std::filesystem::create_directories(machine.Path() + "/sys/class/net");
        std::filesystem::create_symlink("../../devices/virtual/net/" + name, machine.Path() + "/sys/class/net/" + name);
    };
    for (const char* name : {"bond0", "br0", "eth0"}) make(name, "");
    make("bond0.10", "vlan");
    const std::string folder = "sys/devices/virtual/net/";
    machine.Write(folder + "bond0/bonding/mode", "802.3ad 4\n");
    machine.Write(folder + "bond0/bonding/xmit_hash_policy", "layer3+4 1\n");
    machine.Write(folder + "bond0/bonding/miimon", "100\n");
    machine.Write(folder + "br0/bridge/stp_state", "1\n");
    machine.Write(folder + "eth0/bonding_slave/mii_status", "going down\n");
    machine.Write(folder + "bond0.10/brport/state", "3\n");
    machine.Write("proc/net/vlan/config", "VLAN Dev name | VLAN ID\nbond0.10       | 10  | bond0\n");
    std::filesystem::create_symlink("../bond0", machine.Path() + '/' + folder + "eth0/master");
    std::filesystem::create_symlink("../../br0", machine.Path() + '/' + folder + "bond0.10/brport/bridge");
    const TNetworkFacts facts = ReadNetwork(TSystemRoot(machine.Path()));
    const TAdapter &bond = AdapterNamed(facts, "bond0"), &vlan = AdapterNamed(facts, "bond0.10"),
                   &member = AdapterNamed(facts, "eth0");
    EXPECT_EQ(bond.kind, "bond");
    EXPECT_EQ(bond.settings.bondMode, 4);
    EXPECT_EQ(bond.settings.transmitHashPolicy, 1);
    EXPECT_EQ(bond.settings.monitoringInterval, 100u);
    EXPECT_EQ(AdapterNamed(facts, "br0").settings.spanningTree, true);
    EXPECT_EQ(member.master + ' ' + std::to_string(member.settings.bondMemberLink.value_or(99)), "bond0 1");
    EXPECT_EQ(vlan.settings.vlan, 10);
    EXPECT_EQ(vlan.lower + " in " + vlan.master, "bond0 in br0");
    EXPECT_EQ(vlan.settings.bridgePortState, 3);
}

TEST(NetworkReaderTest, AnAdapterOfAnotherNamespaceIsNotTheLowerOne) {
    ifinfomsg header = {};
    header.ifi_index = 5;
    const std::string vxlan =
        Attribute(IFLA_LINKINFO, Attribute(IFLA_INFO_KIND, "vxlan") +
                                     Attribute(IFLA_INFO_DATA, Attribute(IFLA_VXLAN_LINK, BytesOf(4u))));
    const std::string elsewhere = Attribute(IFLA_LINK_NETNSID, BytesOf(0u));
    const std::pair<std::string, std::optional<uint32_t>> cases[] = {
        {Attribute(IFLA_LINK, BytesOf(4u)), 4},
        {Attribute(IFLA_LINK, BytesOf(4u)) + elsewhere, {}},
        {Attribute(IFLA_LINK, BytesOf(5u)), {}},
        {vxlan, 4},
        {vxlan + elsewhere, {}},
    };
    for (const auto& [attributes, expected] : cases) {
        const std::string body = BytesOf(header) + Attribute(IFLA_IFNAME, "x0") + attributes;
        nlmsghdr message = {};
        message.nlmsg_len = uint32_t(sizeof message + body.size());
        message.nlmsg_type = RTM_NEWLINK;
        EXPECT_EQ(ParseLinks(BytesOf(message) + body).at(0).lowerIndex, expected);
    }
}

TEST(NetworkReaderTest, TheHighestSpeedIsToldIfAllModesAreKnown) {
    const std::pair<std::vector<unsigned>, uint64_t> cases[] = {{{}, 0},
                                                                {{6, 7, 13}, 0},
                                                                {{0, 1, 5, 6}, 1'000'000'000},
                                                                {{5, 47, 12}, 10'000'000'000},
                                                                {{38, 84, 5}, 200'000'000'000},
                                                                {{5, 126}, 0}};
    for (const auto& [modes, speed] : cases) {
        ethtool_link_settings settings = {};
        settings.link_mode_masks_nwords = 4;
        uint32_t masks[12] = {};
        for (const unsigned mode : modes) masks[mode / 32] |= 1u << mode % 32;
        const auto link = TFact<std::string>::Of(
            std::string(reinterpret_cast<const char*>(&settings), sizeof settings) + BytesOf(masks), "");
        EXPECT_EQ(ParseDriverFacts({}, link).maxSpeed.ValueOr(0), speed) << modes.size();
    }
}

TEST(NetworkReaderTest, TheResolverFileIsReadAsTheCLibraryReadsIt) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "|||||"},
        {"nameserver 192.0.2.1\nnameserver\t2001:db8::1 more\n", "192.0.2.1 2001:db8::1|||||"},
        {" nameserver 192.0.2.1\n#nameserver 192.0.2.2\n;nameserver 192.0.2.3\nNameserver 192.0.2.4\n", "|||||"},
        {"nameserver 1.1.1.1\nnameserver x\nnameserver 1.1.1.2\nnameserver 1.1.1.3\nnameserver fe80::1%eth0",
         "1.1.1.1 x 1.1.1.2 1.1.1.3 fe80::1%eth0|x fe80::1%eth0||||"},
        {"search a b\ndomain c\n", "||c|c||"},
        {"domain c\nsearch a b\r\n", "||a b|||"},
        {"options ndots:2\noptions rotate edns0\n", "||||ndots:2 rotate edns0|"},
        {"nameserver 127.0.0.53\n", "127.0.0.53|||||local"},
        {"nameserver ::1\n", "::1|||||local"},
    };
    for (const auto& [text, expected] : cases) EXPECT_EQ(ToldOf(text), expected) << text;
}

TEST(NetworkReaderTest, ALeaseIsOfTheAddressThatTheAdapterHasNow) {
    const std::tuple<const char*, const char*, const char*, int64_t> cases[] = {
        {"virtual", "10.0.2.15", "10.0.2.2", 1709445600},
        {"laptop", "192.168.1.23", "192.168.1.1", 1720425600},
        {"laptop", "192.168.1.40", "", 0},
    };
    for (const auto& [machine, address, server, expires] : cases)
        for (const TIPAddress& found : ReadNetwork(TSystemRoot(std::string(MACHINES "/") + machine)).addresses) {
            if (found.address != address) continue;
            EXPECT_EQ(found.dhcpServer.ValueOr(""), server);
            EXPECT_EQ(found.leaseExpires.ValueOr(0), expires);
        }
}

TEST(NetworkReaderTest, DevicesAreKnownByTheirPaths) {
    // The PCI address, a bar and the USB port.
    const std::pair<const char*, const char*> cases[] = {
        {"../../devices/pci0000:00/0000:00:1f.6/net/eno1", "0000:00:1f.6|"},
        {"../../devices/pci0000:00/0000:00:03.0/virtio0/net/eth0", "0000:00:03.0|"},
        {"../../devices/pci10000:e0/10000:e0:1d.0/net/eth0", "10000:e0:1d.0|"},
        {"../../devices/pci0000:00/0000:00:14.0/usb2/2-1/2-1.4/2-1.4:1.0/net/eth0", "|2-1.4"},
        {"../../devices/platform/soc/1.ethernet/net/10-4", "|"},
        {"", "|"},
    };
    for (const auto& [target, expected] : cases) {
        const TBusDevice device = ParseBusDevice(target);
        EXPECT_EQ(device.pciAddress + "|" + device.usbId, expected) << target;
    }
}

TEST(NetworkReaderTest, TheRunningKernelTellsOfTheLoopback) {
    const TNetworkFacts facts = ReadNetwork(TSystemRoot(""));
    const TAdapter& loopback = AdapterNamed(facts, "lo");
    EXPECT_EQ(*loopback.type, 772u);
    EXPECT_EQ(*loopback.address, "00:00:00:00:00:00");
    EXPECT_TRUE(loopback.addresses);
}
