#include "MemoryFacts.h"

#include <map>

#include "SmbiosFields.h"
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

using TNumbers = std::map<std::string_view, std::optional<uint64_t>>;

// "MemTotal:  24684096 kB"; lines that count pages have no unit. In bytes or pages.
TNumbers ParseLines(std::string_view meminfo) {
    TNumbers numbers;
    for (const std::string_view line : Lines(meminfo)) {
        const std::vector<std::string_view> sides = Split(line, ':');
        if (sides.size() != 2) continue;
        const std::string_view number = sides[1].substr(0, sides[1].find(' '));
        std::optional<uint64_t>& known = numbers[sides[0]];
        if (!known) known = EndsWith(sides[1], "kB") ? ParseKilobytes(number) : ParseNumber<uint64_t>(number);
    }
    return numbers;
}

// Old kernels lack some lines: MemAvailable came with Linux 3.14.
TFact<uint64_t> FindLine(const TFact<std::string>& meminfo, const TNumbers& numbers, std::string_view name) {
    const auto found = numbers.find(name);
    if (meminfo && found == numbers.end()) return TFact<uint64_t>::Missing(EAbsence::eNotPresent, meminfo.source);
    return meminfo.Map([&](const std::string&) { return found->second; });
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

// Of a file that was removed and made again, both are in use.
void MakePathsUnique(std::vector<TSwapArea>& areas) {
    std::map<std::string, unsigned> counts;
    for (TSwapArea& area : areas)
        if (const unsigned count = ++counts[area.path]; count > 1) area.path += "#" + std::to_string(count);
}

}  // namespace

TMemoryUsage ParseMeminfo(const TFact<std::string>& meminfo) {
    TMemoryUsage usage;
    const TNumbers numbers = ParseLines(meminfo ? *meminfo : std::string_view());
    for (const TUsageLine& line : kUsageLines) usage.*line.fact = FindLine(meminfo, numbers, line.name);
    return usage;
}

// Columns: Filename, Type, Size, Used, Priority.
std::vector<TSwapArea> ParseSwaps(const TFact<std::string>& swaps) {
    std::vector<TSwapArea> areas;
    for (const std::string_view line : Lines(swaps ? *swaps : std::string_view())) {
        const std::vector<std::string_view> columns = Columns(line);
        if (columns.size() != 5 || columns[0] == "Filename") continue;
        TSwapPath path = ParseSwapPath(columns[0]);
        areas.push_back({std::move(path.path), TFact<bool>::Of(path.isDeleted, swaps.source),
                         TFact<uint16_t>::Of(SwapKindOf(columns[1]), swaps.source),
                         FactOf(ParseKilobytes(columns[2]), swaps.source),
                         FactOf(ParseKilobytes(columns[3]), swaps.source),
                         FactOf(ParseNumber<int32_t>(columns[4]), swaps.source)});
    }
    MakePathsUnique(areas);
    return areas;
}

TMemoryFacts ReadMemory(const TSystemRoot& root) {
    const TFact<std::string> swaps = NeverEmpty(root.ReadFile("/proc/swaps"));
    const TFact<std::string> table = ReadSmbiosTable(root);
    return {ParseMeminfo(root.ReadFile("/proc/meminfo")), ParseSwaps(swaps), ParseMemoryHardware(table),
            ListingOf(swaps), SmbiosListing(root, table)};
}
