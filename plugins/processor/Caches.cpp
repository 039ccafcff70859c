#include <algorithm>
#include <set>

#include "CpuList.h"
#include "Topology.h"

namespace {

constexpr uint32_t kMaxIndices = 16;

std::optional<ECacheType> ParseType(const std::string& text) {
    if (text == "Instruction") return ECacheType::eInstruction;
    if (text == "Data") return ECacheType::eData;
    if (text == "Unified") return ECacheType::eUnified;
    return {};
}

// "32K"
std::optional<uint64_t> ParseSize(std::string_view text) {
    if (text.empty() || text.back() != 'K') return {};
    const std::optional<uint32_t> kilobytes = ParseNumber<uint32_t>(text.substr(0, text.size() - 1));
    if (!kilobytes) return {};
    return uint64_t{*kilobytes} * 1024;
}

// Sysfs lists a cache with every thread that shares it, under the same index. It is read for the first of them only.
class TCacheReader {
public:
    TCacheReader(const TSystemRoot& root, TProcessorFacts& facts) : fRoot(root), fFacts(facts) {}

    void Read() {
        for (const TThread& thread : fFacts.threads)
            if (thread.core) ReadOf(thread);
    }

private:
    void ReadOf(const TThread& thread) {
        if (!fEnd) fEnd = FindEnd(thread);
        bool isFound = false;
        TFact<uint16_t> level;
        for (uint32_t index = 0; index < kMaxIndices; ++index) {
            const bool isSeen = fSeen.count({index, thread.number}) > 0;
            if (!isSeen) level = AddCache(thread, index);
            if (isSeen || level)
                isFound = true;
            else if (index >= *fEnd)
                break;
        }
        if (!isFound && fFacts.cacheListing)
            fFacts.cacheListing = ListingWithout(level, CpuFile(thread.number, "cache"));
    }

    // Adds nothing if the level of the cache, which each has, cannot be read.
    TFact<uint16_t> AddCache(const TThread& thread, uint32_t index) {
        const std::string folder = CpuFile(thread.number, "cache/index" + std::to_string(index) + "/");
        TFact<uint16_t> level = fRoot.ReadNumber<uint16_t>(folder + "level");
        if (!level) return level;
        fFacts.caches.push_back(ReadCache(thread, index, folder));
        fFacts.caches.back().level = level;
        return level;
    }

    // The number behind the last of the thread's caches. The numbers may have gaps.
    uint32_t FindEnd(const TThread& thread) const {
        constexpr std::string_view kIndex = "index";
        uint32_t end = 0;
        for (const std::string& name : fRoot.Names(CpuFile(thread.number, "cache")))
            if (name.substr(0, kIndex.size()) == kIndex)
                end = std::max(end, ParseNumber<uint32_t>(name.substr(kIndex.size())).value_or(0) + 1);
        return end;
    }

    // Processors of virtual machines often show no caches, and then have no folder of them.
    TListing ListingWithout(const TFact<uint16_t>& level, const std::string& folder) const {
        return fRoot.Exists(folder) ? ListingOf(NeverEmpty(fRoot.List(folder))) : UnlessUnreadable(level);
    }

    TCache ReadCache(const TThread& thread, uint32_t index, const std::string& folder) {
        TCache cache;
        cache.name = "cpu" + std::to_string(thread.number) + "/index" + std::to_string(index);
        cache.package = fFacts.cores[*thread.core].package;
        cache.type = fRoot.ReadText(folder + "type").Map(ParseType);
        cache.size = fRoot.ReadText(folder + "size").Map(ParseSize);
        cache.lineSize = fRoot.ReadNumber<uint32_t>(folder + "coherency_line_size");
        cache.ways = fRoot.ReadNumber<uint32_t>(folder + "ways_of_associativity");
        cache.threads = ReadCpuListText(fRoot, folder + "shared_cpu_list", folder + "shared_cpu_map");
        for (const uint32_t number : ParseCpuList(cache.threads.ValueOr("")).value_or(std::vector<uint32_t>()))
            fSeen.emplace(index, number);
        return cache;
    }

    const TSystemRoot& fRoot;
    TProcessorFacts& fFacts;
    std::optional<uint32_t> fEnd;                   // how far to look for more caches where one is missing
    std::set<std::pair<uint32_t, uint32_t>> fSeen;  // index and thread of caches that were read
};

}  // namespace

void ReadCaches(const TSystemRoot& root, TProcessorFacts& facts) {
    facts.cacheListing = facts.coreListing;
    TCacheReader(root, facts).Read();
}
