#include <linux/ethtool.h>
#include <linux/rtnetlink.h>

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
