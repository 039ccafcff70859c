#include <linux/if.h>

#include <algorithm>

#include "NetworkParts.h"
#include "support/TestSupport.h"

namespace {

TNetworkFacts ReadMachine(const std::string& name) { return ReadNetwork(TSystemRoot(MACHINES "/" + name)); }

std::string ReadTable(const std::string& machine, const std::string& table) {
    return *TSystemRoot(MACHINES "/" + machine).ReadFile("/.kyr/rtnetlink/" + table);
}

const TAdapter& AdapterNamed(const TNetworkFacts& facts, const std::string& name) {
    const auto found = std::find_if(facts.adapters.begin(), facts.adapters.end(),
                                    [&](const TAdapter& adapter) { return adapter.name == name; });
    if (found == facts.adapters.end()) throw std::runtime_error("no adapter " + name);
    return *found;
}

std::string Show(const TIPAddress& address) {
    return address.adapter + " " + address.address + "/" + std::to_string(address.prefixLength) +
           (address.peer ? " to " + *address.peer : "") + (address.broadcast ? " brd " + *address.broadcast : "");
}

std::string Show(const TRoute& route) {
    return route.destination + "/" + std::to_string(route.prefixLength) + " via " + route.gateway.value_or("-") +
           " dev " + route.adapter + " table " + std::to_string(route.table) + " metric " +
           std::to_string(route.metric) + " weight " + std::to_string(route.weight.value_or(0));
}

template <typename T>
std::string ShowAll(const std::vector<T>& items) {
    std::string text;
    for (const T& item : items) text += Show(item) + "\n";
    return text;
}

}  // namespace

TEST(NetworkReaderTest, ServerHasABondAVlanOnItAndABridge) {
    const TNetworkFacts facts = ReadMachine("server");
    const TAdapter& port = AdapterNamed(facts, "eno2np1");
    EXPECT_EQ(port.master, "bond0");
    EXPECT_EQ(*port.address, "3c:ec:ef:00:10:00");
    EXPECT_EQ(*port.permanentAddress, "3c:ec:ef:00:10:01");
    EXPECT_EQ(*port.speed, 10'000'000'000u);
    EXPECT_EQ(*port.counters[eBytesReceived], 120004550u);
    EXPECT_EQ(*port.device->driver, "i40e");
    EXPECT_EQ(port.device->place.pciAddress, "0000:41:00.1");
    const TAdapter& vlan = AdapterNamed(facts, "bond0.100");
    EXPECT_EQ(vlan.lower + " " + vlan.master + " " + *vlan.kind + " " + std::to_string(*vlan.vlan),
              "bond0 br100 vlan 100");
    EXPECT_FALSE(vlan.device);
    EXPECT_EQ(*AdapterNamed(facts, "ens3np0").operationalState, IF_OPER_DOWN);
    EXPECT_EQ(AdapterNamed(facts, "ens3np0").speed.absence, EAbsence::eNotSupported);
    EXPECT_FALSE(AdapterNamed(facts, "ens3np0").carrier);  // it is not enabled
    EXPECT_EQ(*AdapterNamed(facts, "br100").addresses, std::vector<std::string>{"198.51.100.1/24"});
}

TEST(NetworkReaderTest, RoutesOfSeveralWaysAreOneForEachAndTheTableLocalIsLeftOut) {
    EXPECT_EQ(ShowAll(ReadMachine("server").routes),
              "0.0.0.0/0 via 192.0.2.1 dev bond0 table 254 metric 300 weight 0\n"
              "192.0.2.0/24 via - dev bond0 table 254 metric 300 weight 0\n"
              "198.51.100.0/24 via - dev br100 table 254 metric 0 weight 0\n"
              "203.0.113.0/24 via 192.0.2.2 dev bond0 table 254 metric 0 weight 1\n"
              "203.0.113.0/24 via 198.51.100.2 dev br100 table 254 metric 0 weight 3\n"
              "10.0.0.0/8 via - dev  table 254 metric 0 weight 0\n"
              "198.18.0.0/15 via fe80::1 dev bond0 table 254 metric 20 weight 0\n"
              "0.0.0.0/0 via 198.51.100.254 dev br100 table 1000 metric 0 weight 0\n"
              "2001:db8:20::/64 via - dev bond0 table 254 metric 300 weight 0\n"
              "fe80::/64 via - dev bond0 table 254 metric 256 weight 0\n"
              "::/0 via fe80::1 dev bond0 table 254 metric 1024 weight 0\n");
}

TEST(NetworkReaderTest, LaptopHasAUsbAdapterARadioAndATunnel) {
    const TNetworkFacts facts = ReadMachine("laptop");
    EXPECT_EQ(AdapterNamed(facts, "enx00e04c000001").device->place.usbId, "2-1.4");
    EXPECT_TRUE(AdapterNamed(facts, "wlp0s20f3").device->wireless);
    EXPECT_EQ(ShowAll(std::vector<TIPAddress>(facts.addresses.begin() + 1, facts.addresses.begin() + 5)),
              "wlp0s20f3 192.168.1.23/24 brd 192.168.1.255\n"
              "enx00e04c000001 192.168.1.40/24 brd 192.168.1.255\n"
              "tun0 10.8.0.2/32 to 10.8.0.1\n"
              "lo ::1/128\n");
}

TEST(NetworkReaderTest, WithoutTheKernelsTablesSysfsIsRead) {
    const TNetworkFacts facts = ReadMachine("nvme");
    ASSERT_EQ(facts.adapters.size(), 3u);
    const TAdapter& adapter = facts.adapters[1];
    EXPECT_EQ(adapter.name + " " + *adapter.address, "eno1 3c:ec:ef:00:30:00");
    EXPECT_EQ(*adapter.operationalState, IF_OPER_UP);
    EXPECT_EQ(*adapter.counters[eBytesTransmitted], 30000u);
    EXPECT_EQ(adapter.permanentAddress.source, "rtnetlink link");
    EXPECT_FALSE(adapter.addresses);
    EXPECT_EQ(adapter.addresses.source, "rtnetlink addr");
}

TEST(NetworkReaderTest, TheOtherEndOfAContainersAdapterIsNotBelowIt) {
    const TNetworkFacts facts = ReadMachine("container");
    const TAdapter& adapter = AdapterNamed(facts, "eth0");
    EXPECT_EQ(*adapter.kind, "veth");
    EXPECT_FALSE(adapter.lowerIndex);
}

TEST(NetworkReaderTest, BrokenMessagesAreLeftOut) {
    const TNetworkFacts facts = ReadMachine("hostile");
    ASSERT_EQ(facts.adapters.size(), 3u);
    EXPECT_EQ(facts.adapters[0].name, "a\x1b[31m\"\xff");
    EXPECT_EQ(*facts.adapters[1].address, "02:00:00:00:00:01");
    EXPECT_FALSE(facts.adapters[2].mtu);
    EXPECT_EQ(ShowAll(facts.addresses), "eth0 192.0.2.9/255\n");
    EXPECT_EQ(ShowAll(facts.routes),
              "192.0.2.0/24 via - dev eth0 table 254 metric 0 weight 256\n"
              "0.0.0.0/0 via 192.0.2.1 dev  table 254 metric 0 weight 0\n");
}

TEST(NetworkReaderTest, ATableThatIsBrokenOffGivesWhatIsWhole) {
    const std::string links = ReadTable("server", "link");
    size_t count = 0;
    for (size_t length = 0; length <= links.size(); ++length) {
        const std::string cut = links.substr(0, length);
        const size_t found = ParseLinks(cut).size();
        EXPECT_TRUE(found == count || found == count + 1) << length;
        count = found;
    }
    EXPECT_EQ(count, 8u);
}

TEST(NetworkReaderTest, DevicesAreKnownByTheirPaths) {
    const struct {
        const char *target, *pci, *usb;
    } cases[] = {
        {"../../devices/pci0000:00/0000:00:1f.6/net/eno1", "0000:00:1f.6", ""},
        {"../../devices/pci0000:00/0000:00:03.0/virtio0/net/eth0", "0000:00:03.0", ""},
        {"../../devices/pci10000:e0/10000:e0:1d.0/net/eth0", "10000:e0:1d.0", ""},
        {"../../devices/pci0000:00/0000:00:14.0/usb2/2-1/2-1.4/2-1.4:1.0/net/eth0", "", "2-1.4"},
        {"../../devices/platform/soc/1.ethernet/net/10-4", "", ""},
        {"", "", ""},
    };
    for (const auto& c : cases) {
        const TBusDevice device = ParseBusDevice(c.target);
        EXPECT_EQ(device.pciAddress + "|" + device.usbId, std::string(c.pci) + "|" + c.usb) << c.target;
    }
}

TEST(NetworkReaderTest, TheRunningKernelTellsOfTheLoopback) {
    const TNetworkFacts facts = ReadNetwork(TSystemRoot(""));
    const TAdapter& loopback = AdapterNamed(facts, "lo");
    EXPECT_EQ(*loopback.type, 772u);
    EXPECT_EQ(*loopback.address, "00:00:00:00:00:00");
    EXPECT_TRUE(loopback.addresses);
}
