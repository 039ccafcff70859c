// What dmidecode makes of the firmware tables of the fixture machines, beside what the plugin makes of them.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "MemoryFacts.h"
#include "Smbios.h"
#include "SystemRoot.h"
#include "support/TestSupport.h"

namespace {

using TRecord = std::map<std::string, std::string>;

constexpr size_t kTablePlace = 32;

void PutNumber(std::string& bytes, size_t offset, size_t number) {
    for (size_t i = 0; i < 4; ++i) bytes[offset + i] = static_cast<char>(number >> 8 * i);
}

/// Makes the bytes from the offset on add up to zero by the byte at the place.
void PutChecksum(std::string& bytes, size_t offset, size_t place) {
    bytes[place] = 0;
    uint8_t sum = 0;
    for (size_t i = offset; i < bytes.size(); ++i) sum = static_cast<uint8_t>(sum + static_cast<uint8_t>(bytes[i]));
    bytes[place] = static_cast<char>(-sum);
}

/// The form of dmidecode's own dumps: the entry point, which says that the table stands behind it.
std::string DumpOf(std::string entryPoint, const std::string& table) {
    if (entryPoint.substr(0, 5) == "_SM3_") {
        PutNumber(entryPoint, 0x0C, table.size());
        PutNumber(entryPoint, 0x10, kTablePlace);
        PutNumber(entryPoint, 0x14, 0);
        PutChecksum(entryPoint, 0, 5);
    } else {
        PutNumber(entryPoint, 0x18, kTablePlace);
        PutChecksum(entryPoint, 0x10, 0x15);
        PutChecksum(entryPoint, 0, 4);
    }
    entryPoint.resize(kTablePlace);
    return entryPoint + table;
}

std::string Decode(const std::string& dump) {
    const TempFolder folder;
    folder.Write("dump", dump);
    const std::string command = "dmidecode -t 16,17 --from-dump '" + folder.Path() + "/dump' 2>&1";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::string text;
    for (int c = 0; pipe && (c = std::fgetc(pipe.get())) != EOF;) text += static_cast<char>(c);
    return text;
}

/// The records below a title: "Locator: DIMM 1" in each line, and an empty line behind the last.
std::vector<TRecord> RecordsOf(std::string_view text, std::string_view title) {
    std::vector<TRecord> records;
    bool isOurs = false;
    for (const std::string_view line : Lines(text)) {
        if (line.empty() || line[0] != '\t') {
            isOurs = line == title;
            if (isOurs) records.emplace_back();
        } else if (const size_t colon = line.find(':'); isOurs && colon != std::string_view::npos) {
            records.back().emplace(line.substr(1, colon - 1), Trim(line.substr(colon + 1)));
        }
    }
    return records;
}

/// dmidecode's "48 GB" in bytes.
std::optional<uint64_t> BytesOf(std::string_view text) {
    const auto parts = Split(text, ' ');
    const auto number = parts.empty() ? std::nullopt : ParseNumber<uint64_t>(parts[0]);
    if (!number || parts.size() != 2) return std::nullopt;
    const size_t power = std::string_view("bkMGTPE").find(parts[1][0]);
    return power == std::string_view::npos ? std::nullopt : std::optional(*number << 10 * power);
}

/// As dmidecode prints a text, without the dots that it makes of blanks other than the blank at the ends.
std::string Plain(std::string text) {
    for (char& c : text)
        if (c < ' ' || c > '~') c = '.';
    const size_t start = text.find_first_not_of(". ");
    return start == std::string::npos ? "" : text.substr(start, text.find_last_not_of(". ") + 1 - start);
}

std::string Show(const TFact<std::string>& text) { return text ? Plain(*text) : ""; }
std::string Show(const TFact<uint32_t>& speed) { return speed ? std::to_string(*speed) + " MT/s" : ""; }
std::string Show(const TFact<uint16_t>& width) { return width ? std::to_string(*width) + " bits" : ""; }

/// What dmidecode says of a field; nothing for its words for nothing.
std::string Told(const TRecord& record, const char* name) {
    const auto found = record.find(name);
    if (found == record.end()) return "";
    for (const char* nothing : {"Unknown", "Not Specified", "<BAD INDEX>"})
        if (found->second == nothing) return "";
    return Plain(found->second);
}

void ExpectSame(const TMemoryModule& module, const TRecord& record) {
    EXPECT_EQ(module.capacity.value, BytesOf(record.at("Size")));
    EXPECT_EQ(Show(module.deviceLocator), Told(record, "Locator"));
    EXPECT_EQ(Show(module.bankLocator), Told(record, "Bank Locator"));
    EXPECT_EQ(Show(module.manufacturer), Told(record, "Manufacturer"));
    EXPECT_EQ(Show(module.serialNumber), Told(record, "Serial Number"));
    EXPECT_EQ(Show(module.assetTag), Told(record, "Asset Tag"));
    EXPECT_EQ(Show(module.partNumber), Told(record, "Part Number"));
    EXPECT_EQ(Show(module.speed), Told(record, "Speed"));
    EXPECT_EQ(Show(module.configuredSpeed), Told(record, "Configured Memory Speed"));
    EXPECT_EQ(Show(module.totalWidth), Told(record, "Total Width"));
    EXPECT_EQ(Show(module.dataWidth), Told(record, "Data Width"));
}

void ExpectSame(const TMemoryArray& array, const TRecord& record) {
    EXPECT_EQ(std::to_string(*array.slotCount), record.at("Number Of Devices"));
    EXPECT_EQ(*array.maximumCapacity >> 20, *BytesOf(record.at("Maximum Capacity")) >> 30);
}

template <typename T>
void ExpectSame(const std::vector<T>& ours, const std::vector<TRecord>& theirs) {
    ASSERT_EQ(ours.size(), theirs.size());
    for (size_t i = 0; i < ours.size(); ++i) {
        SCOPED_TRACE(ours[i].tag);
        ExpectSame(ours[i], theirs[i]);
    }
}

bool IsEmptySlot(const TRecord& device) {
    return device.count("Size") == 0 || device.at("Size") == "No Module Installed";
}

class SmbiosOracleTest : public testing::TestWithParam<const char*> {};

}  // namespace

TEST_P(SmbiosOracleTest, ModulesAndArraysAreThoseOfDmidecode) {
    if (std::system("dmidecode --version >/dev/null 2>&1") != 0) GTEST_SKIP() << "dmidecode is not installed";
    const TSystemRoot root(std::string(MACHINES "/") + GetParam());
    const TFact<std::string> table = ReadSmbiosTable(root);
    ASSERT_TRUE(table);
    const TMemoryHardware hardware = ParseMemoryHardware(table);
    const std::string text = Decode(DumpOf(*root.ReadFile("/sys/firmware/dmi/tables/smbios_entry_point"), *table));
    ExpectSame(hardware.arrays, RecordsOf(text, "Physical Memory Array"));
    std::vector<TRecord> devices = RecordsOf(text, "Memory Device");
    devices.erase(std::remove_if(devices.begin(), devices.end(), IsEmptySlot), devices.end());
    ASSERT_FALSE(devices.empty()) << text;
    ExpectSame(hardware.modules, devices);
}

INSTANTIATE_TEST_SUITE_P(Machines, SmbiosOracleTest, testing::Values("server", "laptop", "nvme", "hostile"));
