#include <algorithm>

#include "CpuList.h"
#include "Topology.h"

namespace {

constexpr std::string_view kNode = "node";

bool IsNode(std::string_view name) {
    return name.substr(0, kNode.size()) == kNode && ParseNumber<uint32_t>(name.substr(kNode.size()));
}

// "Node 0 MemTotal:       16308752 kB"
std::optional<uint64_t> ParseAmount(std::string_view text, std::string_view name) {
    const size_t start = text.find(name);
    const std::string_view rest = text.substr(start + name.size());
    const size_t unit = rest.find("kB");
    return unit == std::string_view::npos ? std::nullopt : ParseKilobytes(rest.substr(0, unit));
}

TFact<uint64_t> ReadAmount(const TFact<std::string>& memory, std::string_view name) {
    if (memory && memory->find(name) == std::string::npos)
        return TFact<uint64_t>::Missing(EAbsence::eNotPresent, memory.source);
    return memory.Map([&](const std::string& text) { return ParseAmount(text, name); });
}

std::optional<std::vector<uint32_t>> ParseDistances(const std::string& text) {
    std::vector<uint32_t> distances;
    for (const std::string_view part : Split(text, ' ')) {
        const std::optional<uint32_t> distance = ParseNumber<uint32_t>(part);
        if (!distance) return {};
        distances.push_back(*distance);
    }
    return distances;
}

std::vector<size_t> PackagesOf(TProcessorFacts& facts, const TFact<std::string>& threads) {
    std::vector<size_t> packages;
    for (const uint32_t number : ParseCpuList(threads.ValueOr("")).value_or(std::vector<uint32_t>())) {
        const TThread* const thread = FindThread(facts, number);
        if (thread == nullptr || !thread->core) continue;
        const size_t package = facts.cores[*thread->core].package;
        if (std::find(packages.begin(), packages.end(), package) == packages.end()) packages.push_back(package);
    }
    return packages;
}

// A kernel that knows nodes has a bus of them too.
TFact<std::vector<std::string>> ListNodes(const TSystemRoot& root) {
    const std::string folder = "/sys/devices/system/node";
    return root.ListKind(folder, root.Exists("/sys/bus/node") ? "" : folder);
}

TNumaNode ReadNode(const TSystemRoot& root, const std::string& name, TProcessorFacts& facts) {
    const std::string folder = "/sys/devices/system/node/" + name + "/";
    const TFact<std::string> memory = root.ReadFile(folder + "meminfo");
    TNumaNode node;
    node.name = name;
    node.threads = ReadCpuListText(root, folder + "cpulist", folder + "cpumap");
    node.memorySize = ReadAmount(memory, "MemTotal:");
    node.freeMemory = ReadAmount(memory, "MemFree:");
    node.distances = root.ReadText(folder + "distance").Map(ParseDistances);
    node.packages = PackagesOf(facts, node.threads);
    return node;
}

}  // namespace

void ReadNumaNodes(const TSystemRoot& root, TProcessorFacts& facts) {
    const TFact<std::vector<std::string>> names = ListNodes(root);
    facts.nodeListing = ListingOf(names);
    for (const std::string& name : names.ValueOr({}))
        if (IsNode(name)) facts.nodes.push_back(ReadNode(root, name, facts));
}
