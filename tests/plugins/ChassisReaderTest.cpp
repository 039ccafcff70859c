#include <filesystem>

#include "ChassisFacts.h"
#include "support/TestSupport.h"

namespace {

/// A structure of the type whose bytes at the offsets are set, with the text "name".
std::string StructureOf(uint8_t type, uint8_t length, const std::vector<std::pair<size_t, uint8_t>>& bytes) {
    std::string structure(length, '\0');
    structure[0] = static_cast<char>(type);
    structure[1] = static_cast<char>(length);
    for (const auto& [offset, byte] : bytes) structure[offset] = static_cast<char>(byte);
    return structure + "name" + std::string(2, '\0');
}

template <typename T>
TFact<T> FactOf(const THardware& hardware, const char* property) {
    return std::get<TFact<T>>(*hardware.Find(property));
}

constexpr uint8_t kPopulated = 0x41;

}  // namespace

TEST(ChassisReaderTest, VoltageIsToldIfItIsCertain) {
    const std::pair<uint8_t, double> cases[] = {{0x80 | 11, 1.1}, {1, 5}, {2, 3.3}, {4, 2.9},
                                                {3, 0},           {0, 0}, {0x80, 0}};
    for (const auto& [byte, volts] : cases) {
        TChassisFacts facts;
        const std::string table = StructureOf(4, 0x30, {{0x11, byte}, {0x18, kPopulated}});
        ParseSockets(ParseSmbiosTable(table), facts);
        ASSERT_EQ(facts.sockets.size(), 1u);
        EXPECT_DOUBLE_EQ(FactOf<double>(facts.sockets[0], "Voltage").ValueOr(0), volts) << int(byte);
    }
}

TEST(ChassisReaderTest, CountsAndSizesGoOnInLaterFields) {
    const std::string socket =
        StructureOf(4, 0x30, {{0x18, kPopulated}, {0x23, 0xFF}, {0x2B, 1}, {0x24, 0xFF}, {0x2C, 0xFF}, {0x2D, 0xFF}});
    const std::string cache =
        StructureOf(7, 0x1B, {{0x07, 0xFF}, {0x08, 0xFF}, {0x15, 1}, {0x16, 0x80}, {0x09, 0x02}, {0x0A, 0x80}});
    const std::string table = socket + cache + StructureOf(7, 0x0F, {{0x07, 0xFF}, {0x08, 0xFF}});
    TChassisFacts facts;
    ParseSockets(ParseSmbiosTable(table), facts);
    EXPECT_EQ(FactOf<uint32_t>(facts.sockets.at(0), "Cores").value, 256u);
    EXPECT_EQ(FactOf<uint32_t>(facts.sockets.at(0), "EnabledCores").absence, EAbsence::eNotPresent);
    EXPECT_EQ(FactOf<uint64_t>(facts.caches.at(0), "MaximumSize").value, 4ull << 30);
    EXPECT_EQ(FactOf<uint64_t>(facts.caches.at(0), "InstalledSize").value, 128ull << 10);
    EXPECT_EQ(FactOf<uint64_t>(facts.caches.at(1), "MaximumSize").absence, EAbsence::eNotSupported);
}

TEST(ChassisReaderTest, OnlyASingleProcessorIsCertainToBeInASocket) {
    const std::string full = StructureOf(4, 0x30, {{0x18, kPopulated}}), empty = StructureOf(4, 0x30, {});
    // The sockets, the packages of the processors, and what is in the first socket.
    const std::tuple<std::string, std::vector<std::string>, std::vector<std::string>> cases[] = {
        {full + empty, {"3", "3"}, {"socket3"}},
        {full, {"0", "1"}, {}},
        {full + full, {"0"}, {}},
        {full, {}, {}},
    };
    for (const auto& [table, packages, devices] : cases) {
        const TempFolder machine;
        machine.Write("sys/firmware/dmi/tables/DMI", table);
        for (size_t i = 0; i < packages.size(); ++i)
            machine.Write("sys/devices/system/cpu/cpu" + std::to_string(i) + "/topology/physical_package_id",
                          packages[i]);
        EXPECT_EQ(ReadChassis(TSystemRoot(machine.Path())).sockets.at(0).devices, devices);
    }
}

TEST(ChassisReaderTest, SlotHoldsWhatIsAtItsAddressOrBehindItsPort) {
    const TempFolder machine;
    for (const char* path : {"pci0000:00/0000:00:1c.0/class", "pci0000:00/0000:00:1c.0/0000:05:00.0/class",
                             "pci0000:00/0000:00:1c.0/0000:05:00.1/class", "pci0000:00/0000:00:1c.0/0000:05:01.0/class",
                             "pci0000:00/0000:00:1d.0/class", "pci0000:00/0000:00:02.0/class"}) {
        const bool isPort =
            std::string(path).find("1c.0/class") + std::string(path).find("1d.0/class") != 2 * std::string::npos;
        machine.Write(std::string("sys/devices/") + path, isPort ? "0x060400\n" : "0x020000\n");
        const std::filesystem::path folder = std::filesystem::path(path).parent_path();
        std::filesystem::create_directories(machine.Path() + "/sys/bus/pci/devices");
        std::filesystem::create_symlink("../../../devices/" + folder.string(),
                                        machine.Path() + "/sys/bus/pci/devices/" + folder.filename().string());
    }
    const std::tuple<uint8_t, uint8_t, std::vector<std::string>> cases[] = {
        {0x05, 0x00, {"0000:05:00.0", "0000:05:00.1"}},  // the card itself
        {0x00, 0x1C << 3, {"0000:05:00.0", "0000:05:00.1"}},
        {0x00, 0x1D << 3, {}},  // nothing is behind the port
        {0x00, 0x02 << 3, {"0000:00:02.0"}},
        {0x00, 0x00, {}},
        {0xFF, 0xFF, {}}};
    for (const auto& [bus, function, devices] : cases) {
        machine.Write("sys/firmware/dmi/tables/DMI", StructureOf(9, 0x11, {{0x0F, bus}, {0x10, function}}));
        EXPECT_EQ(ReadChassis(TSystemRoot(machine.Path())).slots.at(0).devices, devices) << int(bus);
    }
    machine.Write("sys/firmware/dmi/tables/DMI", "");
    machine.Write("sys/bus/pci/slots/7/address", "0000:05\n");  // of a slot whose device number is not known
    EXPECT_EQ(ReadChassis(TSystemRoot(machine.Path())).slots.at(0).devices.size(), 3u);
}
