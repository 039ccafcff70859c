#include <algorithm>

#include "UsbFacts.h"
#include "support/TestSupport.h"

namespace {

TUsbFacts ReadMachine(const std::string& name) { return ReadUsb(TSystemRoot(MACHINES "/" + name)); }

const TUsbDevice& DeviceAt(const TUsbFacts& facts, const std::string& id) {
    const auto found = std::find_if(facts.devices.begin(), facts.devices.end(),
                                    [&](const TUsbDevice& device) { return device.id == id; });
    if (found == facts.devices.end()) throw std::runtime_error("no device " + id);
    return *found;
}

}  // namespace

TEST(UsbReaderTest, LaptopHasAHubWithAnAdapterInIt) {
    const TUsbFacts facts = ReadMachine("laptop");
    ASSERT_EQ(facts.devices.size(), 8u);
    const TUsbDevice& adapter = DeviceAt(facts, "2-1.4");
    EXPECT_EQ(adapter.hub, "2-1");
    EXPECT_EQ(*adapter.vendorName, "Realtek Semiconductor Corp.");
    EXPECT_EQ(*adapter.productName, "RTL8153 Gigabit Ethernet Adapter");
    EXPECT_EQ(*adapter.productText, "USB 10/100/1000 LAN");
    EXPECT_EQ(*adapter.release, "30.00");
    EXPECT_EQ(*adapter.speed, 5'000'000'000u);
    EXPECT_EQ(*adapter.maxPower, 288u);
    EXPECT_EQ(*adapter.interfaces.at(0).driver, "r8152");
    EXPECT_EQ(*adapter.interfaces.at(0).usbClass.name, "Vendor Specific Class");
    EXPECT_EQ(DeviceAt(facts, "2-1").hub, "usb2");
    EXPECT_EQ(DeviceAt(facts, "usb2").controller, "0000:00:14.0");
    EXPECT_EQ(*DeviceAt(facts, "usb2").interfaces.at(0).driver, "hub");
    EXPECT_EQ(DeviceAt(facts, "1-10").productText.source, "/sys/bus/usb/devices/1-10/product");
}

TEST(UsbReaderTest, ADeviceThatTellsNonsenseIsInTheListWithoutIt) {
    const TUsbFacts facts = ReadMachine("hostile");
    const TUsbDevice& device = DeviceAt(facts, "1-1");
    EXPECT_EQ(device.hub, "") << "there is no usb1";
    EXPECT_EQ(*device.vendor, 0x046d);
    EXPECT_EQ(device.manufacturerText->size(), 65536u);
    for (const bool has : {!!device.release, !!device.version, !!device.speed, !!device.maxPower,
                           !!device.usbClass.code, !!device.bus, !!device.vendorName})
        EXPECT_FALSE(has);
}

TEST(UsbReaderTest, FieldsAreReadOrRefused) {
    EXPECT_EQ(HubOf("1-1.2.3"), "1-1.2");
    EXPECT_EQ(HubOf("10-4"), "usb10");
    EXPECT_EQ(HubOf("usb1"), "");
    const struct {
        const char* text;
        uint64_t speed;
        uint32_t current;
        const char* release;
    } cases[] = {{"1.5", 1'500'000, 0, "-"},
                 {"480", 480'000'000, 0, "-"},
                 {"500mA", 0, 500, "-"},
                 {"mA", 0, 0, "-"},
                 {"7200", 7'200'000'000, 0, "72.00"},
                 {"0110", 110'000'000, 0, "1.10"},
                 {"12:5", 0, 0, "-"},
                 {"", 0, 0, "-"}};
    for (const auto& c : cases) {
        EXPECT_EQ(ParseUsbSpeed(c.text).value_or(0), c.speed) << c.text;
        EXPECT_EQ(ParseMilliAmperes(c.text).value_or(0), c.current) << c.text;
        EXPECT_EQ(ParseRelease(c.text).value_or("-"), c.release) << c.text;
    }
}
