#include "HardwareIds.h"
#include "PciFacts.h"
#include "support/TestSupport.h"

TEST(HardwareIdsTest, NamesAreFoundBelowWhatTheyBelongTo) {
    THardwareIds names;
    for (const char* id : {"8086/100e/1028 002e", "8086/ffff", "1028", "C 02/00", "beef"}) names.Want(id);
    names.Parse(
        "# a list\n\n1028  Dell\n\t100e  not Intel's\n8086  Intel \n\t1000  other\n\t\t1028 002e  other's\n"
        "\t100e  82540EM\n\t\t1028 002e  Optiplex\n\t100e  again\nC 02  Network\n\t00  Ethernet\nno gap\n\t\t\t\t");
    // clang-format off
    const std::pair<const char*, const char*> cases[] = {
        {"8086", "Intel"}, {"8086/100e", "82540EM"}, {"8086/100e/1028 002e", "Optiplex"}, {"1028", "Dell"},
        {"C 02", "Network"}, {"C 02/00", "Ethernet"}, {"8086/ffff", "-"}, {"beef", "-"}, {"8086/1000", "-"}};
    // clang-format on
    for (const auto& [id, name] : cases) EXPECT_EQ(names.Name(id).ValueOr("-"), name) << id;
}

TEST(PciReaderTest, LinkSpeedsAreTransfersPerSecond) {
    const std::pair<const char*, uint64_t> cases[] = {{"2.5 GT/s PCIe", 2'500'000'000},
                                                      {"8.0 GT/s PCIe", 8'000'000'000},
                                                      {"32.0 GT/s PCIe", 32'000'000'000},
                                                      {"16 GT/s", 16'000'000'000}};
    for (const auto& [text, speed] : cases) EXPECT_EQ(ParseLinkSpeed(text), speed) << text;
    for (const char* text : {"Unknown", "", ".5 GT/s", "2.55 GT/s", "2. GT/s", "99999999999.0 GT/s"})
        EXPECT_EQ(ParseLinkSpeed(text), std::nullopt) << text;
}

TEST(PciReaderTest, FilesOfTheirOwnTellWhatUeventLacks) {
    const std::string uevent = "DRIVER=e1000\nPCI_CLASS=20000\nPCI_ID=8086:100E\nPCI_SUBSYS_ID=1028:002E\n";
    // uevent, the file of the vendor, and the vendor or why there is none.
    const std::tuple<const char*, const char*, const char*> cases[] = {
        {uevent.c_str(), "0x1234", "8086"},
        {"", "0x1234", "1234"},
        {"PCI_ID=x\n", "0x1234", "1234"},
        {"PCI_ID=x\n", "", "not supported: /sys/bus/pci/devices/0000:00:01.0/uevent"},
        {"", "none", "not supported: /sys/bus/pci/devices/0000:00:01.0/vendor"},
        {"", "", "not present: /sys/bus/pci/devices/0000:00:01.0/uevent"}};
    for (const auto& [text, vendor, expected] : cases) {
        const TempFolder machine;
        const std::string folder = "sys/bus/pci/devices/0000:00:01.0/";
        machine.Write(folder + "uevent", text);
        machine.Write(folder + "vendor", vendor);
        const TFact<uint16_t> fact = ReadPci(TSystemRoot(machine.Path())).functions.at(0).identity.vendor;
        const std::string why = std::string(AbsenceText(fact.absence)) + ": " + fact.source;
        EXPECT_EQ(fact ? HexText(4, *fact) : why, expected) << text << vendor;
    }
}
