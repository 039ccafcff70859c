#include "NetworkParts.h"
#include "support/TestSupport.h"

namespace {

const TAdapter& AdapterNamed(const TNetworkFacts& facts, const std::string& name) {
    for (const TAdapter& adapter : facts.adapters)
        if (adapter.name == name) return adapter;
    throw std::runtime_error("no adapter " + name);
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
    EXPECT_EQ(count, 8u);
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
