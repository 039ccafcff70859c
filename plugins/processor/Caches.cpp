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
        for (uint32_t index = 0; index < kMaxIndices; ++index) {
            if (fSeen.count({index, thread.number}) > 0) continue;
            const std::string folder = CpuFile(thread.number, "cache/index" + std::to_string(index) + "/");
            const TFact<uint16_t> level = fRoot.ReadNumber<uint16_t>(folder + "level");
            if (index == 0 && !level && fFacts.cacheListing)
                fFacts.cacheListing = ListingWithout(level, CpuFile(thread.number, "cache"));
            if (!level) return;
            fFacts.caches.push_back(ReadCache(thread, index, folder));
            fFacts.caches.back().level = level;
        }
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
        cache.threads = fRoot.ReadText(folder + "shared_cpu_list");
        for (const uint32_t number : ParseCpuList(cache.threads.ValueOr("")).value_or(std::vector<uint32_t>()))
            fSeen.emplace(index, number);
        return cache;
    }

    const TSystemRoot& fRoot;
    TProcessorFacts& fFacts;
    std::set<std::pair<uint32_t, uint32_t>> fSeen;  // index and thread of caches that were read
};

}  // namespace

void ReadCaches(const TSystemRoot& root, TProcessorFacts& facts) {
    facts.cacheListing = facts.coreListing;
    TCacheReader(root, facts).Read();
}
