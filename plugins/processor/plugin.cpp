#include <algorithm>

#include "DataPlugin.h"
#include "InstanceReport.h"
#include "ProcessorFacts.h"

namespace {

constexpr const char* kProcessor = "MOLTA_Processor";
constexpr const char* kCore = "MOLTA_ProcessorCore";
constexpr const char* kThread = "MOLTA_HardwareThread";
constexpr const char* kCache = "MOLTA_CacheMemory";
constexpr const char* kNode = "MOLTA_NUMANode";
constexpr const char* kVulnerability = "MOLTA_ProcessorVulnerability";

// Numbers of ValueMap.
constexpr uint16_t kCpuEnabled = 1;
constexpr uint16_t kHardwareThread = 5;
constexpr uint16_t kEnabled = 2, kDisabled = 3;
constexpr uint16_t kUnknown = 0, kNotAffected = 1, kMitigated = 2, kVulnerable = 3;

/// What the kernel's word for a feature means by DMTF's numbers.
struct TCharacteristic {
    const char* flag;
    uint16_t number;
};

constexpr TCharacteristic kCharacteristics[] = {
    {"lm", 2}, {"vmx", 4}, {"svm", 4}, {"nx", 6}, {"ida", 8}, {"cpb", 8},
};

/// How the kernel's words for a weakness begin. Some matter to guests of KVM only, and it says so in front.
struct TStateWord {
    std::string_view start;
    uint16_t state;
};

constexpr TStateWord kStateWords[] = {
    {"Not affected", kNotAffected}, {"Mitigation", kMitigated},       {"KVM: Mitigation", kMitigated},
    {"Vulnerable", kVulnerable},    {"KVM: Vulnerable", kVulnerable}, {"Processor vulnerable", kVulnerable},
    {"Unknown", kUnknown},
};

// sic: the flag "ht" stands also with processors whose cores have one thread each.
bool HasHardwareThreads(const TPackage& package) {
    return package.threadCount.ValueOr(0) > package.coreCount.ValueOr(0);
}

TFact<std::vector<uint16_t>> CharacteristicsOf(const TPackage& package) {
    return package.flags.Map([&package](const std::vector<std::string>& flags) {
        std::vector<uint16_t> numbers;
        for (const TCharacteristic& entry : kCharacteristics)
            if (std::find(flags.begin(), flags.end(), entry.flag) != flags.end()) numbers.push_back(entry.number);
        if (HasHardwareThreads(package)) numbers.push_back(kHardwareThread);
        return std::optional(numbers);
    });
}

std::optional<uint16_t> VulnerabilityState(const std::string& text) {
    for (const TStateWord& word : kStateWords)
        if (text.compare(0, word.start.size(), word.start) == 0) return word.state;
    return {};
}

template <typename E>
std::optional<uint16_t> NumberOf(E value) {
    return static_cast<uint16_t>(value);
}

TPath ProcessorPath(const TPackage& package) { return DevicePath(kProcessor, "socket" + std::to_string(package.id)); }
TPath CorePath(const TCore& core) { return {kCore, {{"InstanceID", core.name}}}; }
TPath ThreadPath(const TThread& thread) { return {kThread, {{"InstanceID", "cpu" + std::to_string(thread.number)}}}; }
TPath CachePath(const TCache& cache) { return DevicePath(kCache, cache.name); }
TPath NodePath(const TNumaNode& node) { return {kNode, {{"InstanceID", node.name}}}; }

void AddIdentity(TInstanceReport& report, const TPackage& package) {
    report.Add("Caption", package.modelName);
    report.Add("Manufacturer", package.manufacturer);
    report.Add("ModelName", package.modelName);
    report.Add("FamilyNumber", package.family);
    report.Add("ModelNumber", package.model);
    report.Add("Stepping", package.stepping);
    report.Add("MicrocodeRevision", package.microcode);
}

void AddCapacity(TInstanceReport& report, const TPackage& package) {
    report.Add("NumberOfEnabledCores", package.coreCount);
    report.Add("NumberOfEnabledThreads", package.threadCount);
    report.Add("CurrentClockSpeed", package.clock);
    report.Add("MinClockSpeed", package.lowestClock);
    report.Add("MaxClockSpeed", package.highestClock);
    report.Add("BogoMIPS", package.bogoMips);
    report.Add("DataWidth", package.dataWidth);
    report.Add("PhysicalAddressWidth", package.physicalAddressWidth);
    report.Add("VirtualAddressWidth", package.virtualAddressWidth);
}

kyrStatusCode ReportProcessor(kyrIOHandle handle, const TPackage& package) {
    TInstanceReport report(handle, ProcessorPath(package));
    AddIdentity(report, package);
    AddCapacity(report, package);
    report.Add("CPUStatus", package.isEnabled.Map([](bool) { return std::optional(kCpuEnabled); }));
    report.Add("Characteristics", CharacteristicsOf(package));
    report.Add("Flags", package.flags);
    report.Add("Bugs", package.bugs);
    return report.Finish();
}

kyrStatusCode ReportCore(kyrIOHandle handle, const TCore& core) {
    TInstanceReport report(handle, CorePath(core));
    report.Add("CoreNumber", core.id.Map([](uint32_t id) { return std::optional(std::to_string(id)); }));
    report.Add("CoreType", core.type.Map(NumberOf<ECoreType>));
    report.Add("MinClockSpeed", core.lowestClock);
    report.Add("MaxClockSpeed", core.highestClock);
    return report.Finish();
}

kyrStatusCode ReportThread(kyrIOHandle handle, const TThread& thread) {
    TInstanceReport report(handle, ThreadPath(thread));
    report.Add("EnabledState",
               thread.isOnline.Map([](bool isOnline) { return std::optional(isOnline ? kEnabled : kDisabled); }));
    if (thread.core) report.Add("CurrentClockSpeed", thread.clock);
    return report.Finish();
}

/// "L1 data cache", "L3 cache"
std::string CacheCaption(const TCache& cache) {
    const std::string level = "L" + std::to_string(cache.level.ValueOr(0));
    switch (cache.type.ValueOr(ECacheType::eUnified)) {
        case ECacheType::eInstruction:
            return level + " instruction cache";
        case ECacheType::eData:
            return level + " data cache";
        case ECacheType::eUnified:
            break;
    }
    return level + " cache";
}

kyrStatusCode ReportCache(kyrIOHandle handle, const TCache& cache) {
    TInstanceReport report(handle, CachePath(cache));
    report.Set("Caption", CacheCaption(cache));
    report.Add("Level", cache.level);
    report.Add("CacheType", cache.type.Map(NumberOf<ECacheType>));
    report.Add("Size", cache.size);
    report.Add("LineSize", cache.lineSize);
    report.Add("NumberOfWays", cache.ways);
    report.Add("ThreadList", cache.threads);
    return report.Finish();
}

kyrStatusCode ReportNode(kyrIOHandle handle, const TNumaNode& node) {
    TInstanceReport report(handle, NodePath(node));
    report.Add("ThreadList", node.threads);
    report.Add("MemorySize", node.memorySize);
    report.Add("FreeMemory", node.freeMemory);
    report.Add("Distances", node.distances);
    return report.Finish();
}

kyrStatusCode ReportVulnerability(kyrIOHandle handle, const TVulnerability& vulnerability) {
    TInstanceReport report(handle, {kVulnerability, {{"InstanceID", vulnerability.name}}});
    report.Add("State", vulnerability.state.Map(VulnerabilityState));
    report.Add("Detail", vulnerability.state);
    return report.Finish();
}

kyrStatusCode TieProcessor(kyrIOHandle handle, const TPackage& package) {
    return ReportSystemDevice(handle, "MOLTA_SystemProcessor", ProcessorPath(package));
}

kyrStatusCode TieCore(kyrIOHandle handle, const TProcessorFacts& facts, const TCore& core) {
    return ReportTie(handle, "MOLTA_CoreOfProcessor", "GroupComponent", ProcessorPath(facts.packages[core.package]),
                     "PartComponent", CorePath(core));
}

kyrStatusCode TieThread(kyrIOHandle handle, const TProcessorFacts& facts, const TThread& thread) {
    if (!thread.core) return kyrStatusOK;
    return ReportTie(handle, "MOLTA_ThreadOfCore", "GroupComponent", CorePath(facts.cores[*thread.core]),
                     "PartComponent", ThreadPath(thread));
}

kyrStatusCode TieCache(kyrIOHandle handle, const TCache& cache) {
    return ReportSystemDevice(handle, "MOLTA_SystemCacheMemory", CachePath(cache));
}

kyrStatusCode TieCacheToProcessor(kyrIOHandle handle, const TProcessorFacts& facts, const TCache& cache) {
    return ReportTie(handle, "MOLTA_AssociatedCacheMemory", "Antecedent", CachePath(cache), "Dependent",
                     ProcessorPath(facts.packages[cache.package]));
}

kyrStatusCode TieNode(kyrIOHandle handle, const TNumaNode& node) {
    return ReportTie(handle, "MOLTA_SystemNUMANode", "GroupComponent", ComputerSystem(), "PartComponent",
                     NodePath(node));
}

kyrStatusCode TieNodeToProcessors(kyrIOHandle handle, const TProcessorFacts& facts, const TNumaNode& node) {
    return ReportEach(node.packages, [&](size_t package) {
        return ReportTie(handle, "MOLTA_NUMANodeProcessor", "Antecedent", NodePath(node), "Dependent",
                         ProcessorPath(facts.packages[package]));
    });
}

using TFacts = TProcessorFacts;

const TDataPlugin<TFacts> kPlugin("processor", ReadProcessors,
                                  {
                                      {kProcessor, ForEach<&TFacts::packages, ReportProcessor>},
                                      {kCore, ForEach<&TFacts::cores, ReportCore>, &TFacts::threadListing},
                                      {kThread, ForEach<&TFacts::threads, ReportThread>, &TFacts::threadListing},
                                      {kCache, ForEach<&TFacts::caches, ReportCache>, &TFacts::cacheListing},
                                      {kNode, ForEach<&TFacts::nodes, ReportNode>, &TFacts::nodeListing},
                                      {kVulnerability, ForEach<&TFacts::vulnerabilities, ReportVulnerability>,
                                       &TFacts::vulnerabilityListing},
                                      {"MOLTA_SystemProcessor", ForEach<&TFacts::packages, TieProcessor>},
                                      {"MOLTA_CoreOfProcessor", ForEach<&TFacts::cores, TieCore>},
                                      {"MOLTA_ThreadOfCore", ForEach<&TFacts::threads, TieThread>},
                                      {"MOLTA_SystemCacheMemory", ForEach<&TFacts::caches, TieCache>},
                                      {"MOLTA_AssociatedCacheMemory", ForEach<&TFacts::caches, TieCacheToProcessor>},
                                      {"MOLTA_SystemNUMANode", ForEach<&TFacts::nodes, TieNode>},
                                      {"MOLTA_NUMANodeProcessor", ForEach<&TFacts::nodes, TieNodeToProcessors>},
                                  });

}  // namespace
