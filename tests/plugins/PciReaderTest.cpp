#include <algorithm>

#include "HardwareIds.h"
#include "PciFacts.h"
#include "support/TestSupport.h"

namespace {

TPciFacts ReadMachine(const std::string& name) { return ReadPci(TSystemRoot(MACHINES "/" + name)); }

const TPciFunction& FunctionAt(const TPciFacts& facts, const std::string& address) {
    const auto found = std::find_if(facts.functions.begin(), facts.functions.end(),
                                    [&](const TPciFunction& function) { return function.address == address; });
    if (found == facts.functions.end()) throw std::runtime_error("no function " + address);
    return *found;
}

}  // namespace

TEST(HardwareIdsTest, NamesAreFoundBelowWhatTheyBelongTo) {
    THardwareIds names;
    for (const char* id : {"8086/100e/1028 002e", "8086/ffff", "1028", "C 02/00", "beef"}) names.Want(id);
    names.Parse(
        "# a list\n\n1028  Dell\n\t100e  not Intel's\n8086  Intel \n\t1000  other\n\t\t1028 002e  other's\n"
        "\t100e  82540EM\n\t\t1028 002e  Optiplex\n\t100e  again\nC 02  Network\n\t00  Ethernet\nno gap\n\t\t\t\t");
    const struct {
        const char *id, *name;
    } cases[] = {{"8086", "Intel"},
                 {"8086/100e", "82540EM"},
                 {"8086/100e/1028 002e", "Optiplex"},
                 {"1028", "Dell"},
                 {"C 02", "Network"},
                 {"C 02/00", "Ethernet"},
                 {"8086/ffff", "-"},
                 {"beef", "-"},
                 {"8086/1000", "-"}};
    for (const auto& c : cases) EXPECT_EQ(names.Name(c.id).ValueOr("-"), c.name) << c.id;
}

TEST(PciReaderTest, ServerHasBridgesAndNames) {
    const TPciFacts facts = ReadMachine("server");
    ASSERT_EQ(facts.functions.size(), 18u);
    const TPciFunction& adapter = FunctionAt(facts, "0000:41:00.1");
    EXPECT_EQ(adapter.bridge, "0000:00:03.1");
    EXPECT_EQ(*adapter.identity.vendorName, "Intel Corporation");
    EXPECT_EQ(*adapter.identity.deviceName, "Ethernet Controller X710 for 10GbE SFP+");
    EXPECT_EQ(*adapter.identity.subsystemName, "Ethernet Converged Network Adapter X710");
    EXPECT_EQ(*adapter.identity.className, "Ethernet controller");
    EXPECT_EQ(*adapter.driver, "i40e");
    EXPECT_EQ(*adapter.link->maxSpeed, 8'000'000'000u);
    EXPECT_EQ(*adapter.link->currentWidth, 8u);
    EXPECT_EQ(*FunctionAt(facts, "0000:c1:00.0").numaNode, 1u);
    const TPciFunction& bridge = FunctionAt(facts, "0000:00:03.1");
    EXPECT_FALSE(bridge.identity.HasSubsystem());
    EXPECT_EQ(bridge.bridge, "");
    EXPECT_EQ(FunctionAt(facts, "0000:45:00.0").bridge, "0000:44:00.0");
    EXPECT_FALSE(FunctionAt(facts, "0000:00:14.0").link);
}

TEST(PciReaderTest, WhatIsMissingTellsWhereItWasLookedFor) {
    const TPciFacts facts = ReadMachine("virtual");
    const TPciFunction& bridge = FunctionAt(facts, "0000:00:00.0");
    EXPECT_EQ(bridge.driver.source, "/sys/bus/pci/devices/0000:00:00.0/uevent");
    EXPECT_EQ(bridge.driver.absence, EAbsence::eNotPresent);
    EXPECT_FALSE(bridge.numaNode);
    const TFact<std::string>& name = FunctionAt(facts, "0000:00:03.0").identity.subsystemName;
    EXPECT_FALSE(name);
    EXPECT_EQ(name.source, "/usr/share/misc/pci.ids");
}

TEST(PciReaderTest, FilesThatHoldNonsenseGiveNoValues) {
    const TPciFacts facts = ReadMachine("hostile");
    const TPciFunction& first = facts.functions.at(0);
    EXPECT_EQ(*first.identity.vendor, 0x8086);
    EXPECT_EQ(first.identity.device.absence, EAbsence::eNotSupported);
    EXPECT_EQ(first.identity.deviceName.source, "/sys/bus/pci/devices/0000:00:00.0/uevent");
    for (const bool has : {!!first.identity.classCode, !!first.identity.subsystemVendor, !!first.revision,
                           !!first.interrupt, !!first.numaNode, !!first.link->maxSpeed, !!first.link->maxWidth})
        EXPECT_FALSE(has);
    EXPECT_EQ(FunctionAt(facts, "0000:00:02.0").driver->size(), 65536u);
    EXPECT_EQ(FunctionAt(facts, "0000:00:03.0").identity.vendor.absence, EAbsence::eReadError);
}

TEST(PciReaderTest, LinkSpeedsAreTransfersPerSecond) {
    const struct {
        const char* text;
        uint64_t expected;  // 0: none
    } cases[] = {{"2.5 GT/s PCIe", 2'500'000'000},
                 {"8.0 GT/s PCIe", 8'000'000'000},
                 {"32.0 GT/s PCIe", 32'000'000'000},
                 {"16 GT/s", 16'000'000'000},
                 {"Unknown", 0},
                 {"", 0},
                 {".5 GT/s", 0},
                 {"2.55 GT/s", 0},
                 {"2. GT/s", 0},
                 {"99999999999.0 GT/s", 0}};
    for (const auto& c : cases) EXPECT_EQ(ParseLinkSpeed(c.text).value_or(0), c.expected) << c.text;
}
