#include "MemoryFacts.h"

#include <map>

#include "Smbios.h"
#include "SystemRoot.h"

namespace {

struct TUsageLine {
    std::string_view name;
    TFact<uint64_t> TMemoryUsage::*fact;
};

constexpr TUsageLine kUsageLines[] = {
    {"MemTotal", &TMemoryUsage::total},
    {"MemFree", &TMemoryUsage::free},
    {"MemAvailable", &TMemoryUsage::available},
    {"Buffers", &TMemoryUsage::buffers},
    {"Cached", &TMemoryUsage::cached},
    {"SReclaimable", &TMemoryUsage::reclaimable},
    {"Shmem", &TMemoryUsage::shared},
    {"SwapTotal", &TMemoryUsage::swapTotal},
    {"SwapFree", &TMemoryUsage::swapFree},
    {"HugePages_Total", &TMemoryUsage::hugePages},
    {"HugePages_Free", &TMemoryUsage::hugePagesFree},
    {"Hugepagesize", &TMemoryUsage::hugePageSize},
};

// "MemTotal:  24684096 kB"; lines that count pages have no unit. In bytes or pages.
std::map<std::string_view, uint64_t> ParseLines(std::string_view meminfo) {
    std::map<std::string_view, uint64_t> numbers;
    for (const std::string_view line : Lines(meminfo)) {
        const std::vector<std::string_view> sides = Split(line, ':');
        if (sides.size() != 2) continue;
        const std::string_view number = sides[1].substr(0, sides[1].find(' '));
        const auto parsed = EndsWith(sides[1], "kB") ? ParseKilobytes(number) : ParseNumber<uint64_t>(number);
        if (parsed) numbers.emplace(sides[0], *parsed);
    }
    return numbers;
}

template <typename T>
TFact<T> FactOf(std::optional<T> value, const std::string& source) {
    return {std::move(value), EAbsence::eNotSupported, source};
}

uint16_t SwapKindOf(std::string_view word) {
    const ESwapKind kind = word == "partition" ? ESwapKind::ePartition
                           : word == "file"    ? ESwapKind::eFile
                                               : ESwapKind::eUnknown;
    return static_cast<uint16_t>(kind);
}

// Columns are separated by blanks and tabs.
std::vector<std::string_view> Columns(std::string_view line) {
    std::vector<std::string_view> columns;
    for (const std::string_view part : Split(line, ' '))
        for (const std::string_view column : Split(part, '\t')) columns.push_back(column);
    return columns;
}

// A machine without DMI has no table.
TListing SmbiosListing(const TSystemRoot& root, const TFact<std::string>& table) {
    if (table || table.absence != EAbsence::eNotPresent) return ListingOf(table);
    const TFact<std::vector<std::string>> dmi = root.ListKind("/sys/class/dmi", "/sys/class/dmi");
    return dmi && !dmi->empty() ? ListingOf(table) : ListingOf(dmi);
}

}  // namespace

TMemoryUsage ParseMeminfo(const TFact<std::string>& meminfo) {
    TMemoryUsage usage;
    const std::map<std::string_view, uint64_t> numbers = ParseLines(meminfo ? *meminfo : std::string_view());
    for (const TUsageLine& line : kUsageLines)
        usage.*line.fact = meminfo.Map([&](const std::string&) {
            const auto found = numbers.find(line.name);
            return found == numbers.end() ? std::nullopt : std::optional(found->second);
        });
    return usage;
}

// Columns: Filename, Type, Size, Used, Priority.
std::vector<TSwapArea> ParseSwaps(const TFact<std::string>& swaps) {
    std::vector<TSwapArea> areas;
    for (const std::string_view line : Lines(swaps ? *swaps : std::string_view())) {
        const std::vector<std::string_view> columns = Columns(line);
        if (columns.size() != 5 || columns[0] == "Filename") continue;
        areas.push_back({UnescapeOctal(columns[0]), TFact<uint16_t>::Of(SwapKindOf(columns[1]), swaps.source),
                         FactOf(ParseKilobytes(columns[2]), swaps.source),
                         FactOf(ParseKilobytes(columns[3]), swaps.source),
                         FactOf(ParseNumber<int32_t>(columns[4]), swaps.source)});
    }
    return areas;
}

TMemoryFacts ReadMemory(const TSystemRoot& root) {
    const TFact<std::string> swaps = NeverEmpty(root.ReadFile("/proc/swaps"));
    const TFact<std::string> table = ReadSmbiosTable(root);
    return {ParseMeminfo(root.ReadFile("/proc/meminfo")), ParseSwaps(swaps), ParseMemoryHardware(table),
            ListingOf(swaps), SmbiosListing(root, table)};
}
