#include "MemoryFacts.h"
#include "Smbios.h"
#include "SystemRoot.h"
#include "support/TestSupport.h"

namespace {

/// A table of one memory device of the size and the extended size.
std::string DeviceOf(uint16_t size, uint32_t extendedSize) {
    std::string device(0x22, '\0');
    const auto put = [&device](size_t offset, uint32_t number, size_t bytes) {
        for (size_t i = 0; i < bytes; ++i) device[offset + i] = static_cast<char>(number >> 8 * i);
    };
    put(0, 17, 1);
    put(1, 0x22, 1);
    put(0x0C, size, 2);
    put(0x1C, extendedSize, 4);
    return device + std::string(2, '\0');
}

}  // namespace

TEST(MemoryReaderTest, SizesAreInTheUnitThatTheFirmwareChose) {
    // The size, the extended size, and what they come to.
    const std::tuple<uint16_t, uint32_t, std::optional<uint64_t>> cases[] = {
        {1, 0, 1ull << 20},        {0x7FFE, 0, 0x7FFEull << 20},      {0x8001, 0, 1024},
        {0xFFFF, 0, std::nullopt}, {0x7FFF, 0x00010000, 64ull << 30}, {0x7FFF, 0xFFFFFFFF, 0x7FFFFFFFull << 20}};
    for (const auto& [size, extended, bytes] : cases) {
        const auto hardware = ParseMemoryHardware(TFact<std::string>::Of(DeviceOf(size, extended), kSmbiosTable));
        ASSERT_EQ(hardware.modules.size(), 1u) << size;
        EXPECT_EQ(hardware.modules[0].capacity.value, bytes) << size;
        EXPECT_EQ(hardware.installedSize.value, bytes) << size;
    }
}

TEST(MemoryReaderTest, TablesThatMayNotBeReadSaySo) {
    const auto hardware = ParseMemoryHardware(TFact<std::string>::Missing(EAbsence::eNoPermission, kSmbiosTable));
    EXPECT_EQ(hardware.installedSize.absence, EAbsence::eNoPermission);
    EXPECT_EQ(hardware.installedModules.source, kSmbiosTable);
    EXPECT_TRUE(hardware.modules.empty());
}

TEST(MemoryReaderTest, TablesWithoutTheirEndSaySo) {
    const std::string device = DeviceOf(1, 0), end("\x7F\x04\0\xFE\0\0", 6);
    const std::pair<std::string, bool> cases[] = {{device, true},
                                                  {device + end, true},
                                                  {device + end + "x", true},
                                                  {device + std::string(8, '\0'), true},
                                                  {"", false},
                                                  {device.substr(0, device.size() - 1), false},
                                                  {device + device.substr(0, 8), false},
                                                  {device + "\x11\x02\x01" + end, false}};
    for (const auto& [table, isWhole] : cases) {
        const TempFolder machine;
        machine.Write("sys/firmware/dmi/tables/DMI", table);
        const TMemoryFacts facts = ReadMemory(TSystemRoot(machine.Path()));
        EXPECT_EQ(facts.smbiosListing.value.has_value(), isWhole) << table.size();
        EXPECT_EQ(facts.hardware.installedSize.value.has_value(), isWhole) << table.size();
    }
}

TEST(MemoryReaderTest, TheEntryPointBoundsTheTable) {
    const TempFolder machine;
    machine.Write("sys/firmware/dmi/tables/DMI", DeviceOf(1, 0) + DeviceOf(2, 0));
    machine.Write("sys/firmware/dmi/tables/smbios_entry_point",
                  "_SM3_" + std::string(7, '\0') + "\x24" + std::string(11, '\0'));
    EXPECT_EQ(ReadMemory(TSystemRoot(machine.Path())).hardware.modules.size(), 1u);
}

TEST(MemoryReaderTest, NumbersThatDoNotFitAreNotSupported) {
    const TMemoryUsage usage = ReadMemory(TSystemRoot(MACHINES "/hostile")).usage;
    EXPECT_EQ(usage.free.absence, EAbsence::eNotSupported);
    EXPECT_FALSE(usage.available);
    EXPECT_EQ(usage.swapTotal.absence, EAbsence::eNotSupported);
    EXPECT_EQ(usage.hugePageSize.value, 2u << 20);
}

TEST(MemoryReaderTest, LinesThatAKernelLacksAreNotPresent) {
    const TMemoryUsage usage = ParseMeminfo(TFact<std::string>::Of("MemTotal: 1 kB\nMemFree: x kB\n", "meminfo"));
    EXPECT_EQ(usage.total.value, 1024u);
    EXPECT_EQ(usage.free.absence, EAbsence::eNotSupported);
    EXPECT_EQ(usage.available.absence, EAbsence::eNotPresent);
    EXPECT_EQ(usage.available.source, "meminfo");
}

TEST(MemoryReaderTest, ARemovedSwapFileHasItsPathAndIsToldAsRemoved) {
    std::string text;
    for (const TSwapArea& area : ParseSwaps(TFact<std::string>::Of("Filename Type Size Used Priority\n"
                                                                   "/my\\040swap\\040(deleted) file 8 0 -1\n"
                                                                   "/my\\040swap file 8 0 -2\n/(deleted) file 8 0 -3\n",
                                                                   "swaps")))
        text += area.path + (*area.isDeleted ? " was removed\n" : "\n");
    EXPECT_EQ(text, "/my swap was removed\n/my swap#2\n/(deleted)\n");
}
