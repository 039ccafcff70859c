// The plugin "processor": packages, cores, threads, caches, NUMA nodes and vulnerabilities.
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

// Numbers of the ValueMaps in processor.properties.xml.
constexpr uint16_t kCpuEnabled = 1;
constexpr uint16_t k64Bit = 2, kHardwareThread = 5;
constexpr uint16_t kEnabled = 2, kDisabled = 3;
constexpr uint16_t kUnknown = 0, kNotAffected = 1, kMitigated = 2, kVulnerable = 3;

/// A CPU flag of /proc/cpuinfo and its number in the ValueMap of Characteristics.
struct TCharacteristic {
    const char* flag;
    uint16_t number;
};

constexpr TCharacteristic kCharacteristics[] = {
    {"vmx", 4}, {"svm", 4}, {"nx", 6}, {"ida", 8}, {"cpb", 8},
};

/// The beginning of a file in /sys/devices/system/cpu/vulnerabilities. "KVM:" marks what concerns KVM guests only.
struct TStateWord {
    std::string_view start;
    uint16_t state;
};

constexpr TStateWord kStateWords[] = {
    {"Not affected", kNotAffected}, {"Mitigation", kMitigated},       {"KVM: Mitigation", kMitigated},
    {"Vulnerable", kVulnerable},    {"KVM: Vulnerable", kVulnerable}, {"Processor vulnerable", kVulnerable},
    {"Unknown", kUnknown},
};

// The flag "ht" does not show it: the kernel shows it for processors with one thread per core as well.
bool HasHardwareThreads(const TPackage& package) {
    return package.threadCount.ValueOr(0) > package.coreCount.ValueOr(0);
}

TFact<std::vector<uint16_t>> CharacteristicsOf(const TPackage& package) {
    return package.flags.Map([&package](const std::vector<std::string>& flags) {
        std::vector<uint16_t> numbers;
        if (package.dataWidth.ValueOr(0) == 64) numbers.push_back(k64Bit);
        for (const TCharacteristic& entry : kCharacteristics)
            if (std::find(flags.begin(), flags.end(), entry.flag) != flags.end()) numbers.push_back(entry.number);
        if (HasHardwareThreads(package)) numbers.push_back(kHardwareThread);
        return std::optional(numbers);
    });
}

// "Mitigation: Retpolines; PBRSB-eIBRS: Vulnerable; BHI: Retpoline", "Mitigation: Clear CPU buffers; SMT vulnerable"
bool LeavesPartOpen(const std::string& text) {
    for (const std::string_view part : Split(text, ';'))
        if (EndsWith(part, "Vulnerable") || EndsWith(part, " vulnerable")) return true;
    return false;
}

std::optional<uint16_t> VulnerabilityState(const std::string& text) {
    if (LeavesPartOpen(text)) return kVulnerable;
    for (const TStateWord& word : kStateWords)
        if (text.compare(0, word.start.size(), word.start) == 0) return word.state;
    return {};
}

template <typename E>
std::optional<uint16_t> NumberOf(E value) {
    return static_cast<uint16_t>(value);
}

TInstancePath ProcessorPath(const TPackage& package) { return DevicePath(kProcessor, package.name); }
TInstancePath CorePath(const TCore& core) { return {kCore, {{"InstanceID", core.name}}}; }
TInstancePath ThreadPath(const TThread& thread) {
    return {kThread, {{"InstanceID", "cpu" + std::to_string(thread.number)}}};
}
TInstancePath CachePath(const TCache& cache) { return DevicePath(kCache, cache.name); }
TInstancePath NodePath(const TNumaNode& node) { return {kNode, {{"InstanceID", node.name}}}; }

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
    report.Add("ModelName", core.modelName);
    report.Add("CoreType", core.type.Map(NumberOf<ECoreType>));
    report.Add("MinClockSpeed", core.lowestClock);
    report.Add("MaxClockSpeed", core.highestClock);
    return report.Finish();
}

kyrStatusCode ReportThread(kyrIOHandle handle, const TThread& thread) {
    TInstanceReport report(handle, ThreadPath(thread));
    report.Add("EnabledState",
               thread.isOnline.Map([](bool isOnline) { return std::optional(isOnline ? kEnabled : kDisabled); }));
    if (thread.core)
        report.Add("CurrentClockSpeed", thread.clock);
    else if (!thread.isOnline)
        report.Add("CurrentClockSpeed", thread.isOnline);
    return report.Finish();
}

const char* KindText(ECacheType type) {
    switch (type) {
        case ECacheType::eInstruction:
            return " instruction cache";
        case ECacheType::eData:
            return " data cache";
        case ECacheType::eUnified:
            break;
    }
    return " cache";
}

/// "L1 data cache of CPU 0,4"
std::string CacheCaption(const TCache& cache) {
    const std::string text =
        "L" + std::to_string(cache.level.ValueOr(0)) + KindText(cache.type.ValueOr(ECacheType::eUnified));
    return cache.threads ? text + " of CPU " + *cache.threads : text;
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

kyrStatusCode ReportProcessors(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportEach(handle, facts.packages, ReportProcessor);
}

kyrStatusCode ReportCores(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportEach(handle, facts.cores, ReportCore);
}

kyrStatusCode ReportThreads(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportEach(handle, facts.threads, ReportThread);
}

kyrStatusCode ReportCaches(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportEach(handle, facts.caches, ReportCache);
}

kyrStatusCode ReportNodes(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportEach(handle, facts.nodes, ReportNode);
}

kyrStatusCode ReportVulnerabilities(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportEach(handle, facts.vulnerabilities, ReportVulnerability);
}

kyrStatusCode ReportSystemProcessors(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportSystemDevices(handle, "MOLTA_SystemProcessor", facts.packages, ProcessorPath);
}

kyrStatusCode ReportCoresOfProcessors(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportEach(facts.cores, [&](const TCore& core) {
        return ReportAssociation(handle, "MOLTA_CoreOfProcessor", "GroupComponent",
                                 ProcessorPath(facts.packages[core.package]), "PartComponent", CorePath(core));
    });
}

kyrStatusCode ReportThreadsOfCores(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportEach(facts.threads, [&](const TThread& thread) {
        if (!thread.core) return kyrStatusOK;
        return ReportAssociation(handle, "MOLTA_ThreadOfCore", "GroupComponent", CorePath(facts.cores[*thread.core]),
                                 "PartComponent", ThreadPath(thread));
    });
}

kyrStatusCode ReportSystemCaches(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportSystemDevices(handle, "MOLTA_SystemCacheMemory", facts.caches, CachePath);
}

kyrStatusCode ReportCachesOfProcessors(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportEach(facts.caches, [&](const TCache& cache) {
        return ReportAssociation(handle, "MOLTA_AssociatedCacheMemory", "Antecedent", CachePath(cache), "Dependent",
                                 ProcessorPath(facts.packages[cache.package]));
    });
}

kyrStatusCode ReportSystemNodes(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportEach(facts.nodes, [&](const TNumaNode& node) {
        return ReportAssociation(handle, "MOLTA_SystemNUMANode", "GroupComponent", ComputerSystem(), "PartComponent",
                                 NodePath(node));
    });
}

kyrStatusCode ReportProcessorsOfNodes(kyrIOHandle handle, const TProcessorFacts& facts) {
    return ReportEach(facts.nodes, [&](const TNumaNode& node) {
        return ReportEach(node.packages, [&](size_t package) {
            return ReportAssociation(handle, "MOLTA_NUMANodeProcessor", "Antecedent", NodePath(node), "Dependent",
                                     ProcessorPath(facts.packages[package]));
        });
    });
}

TListing CpuInfo(const TProcessorFacts& facts) { return facts.cpuInfoListing; }
TListing Cpus(const TProcessorFacts& facts) { return facts.cpuListing; }
TListing Cores(const TProcessorFacts& facts) { return facts.coreListing; }
TListing Threads(const TProcessorFacts& facts) { return facts.threadListing; }
TListing Caches(const TProcessorFacts& facts) { return facts.cacheListing; }
TListing Nodes(const TProcessorFacts& facts) { return facts.nodeListing; }
TListing Vulnerabilities(const TProcessorFacts& facts) { return facts.vulnerabilityListing; }

const TDataPlugin<TProcessorFacts> gPlugin(
    "processor", ReadProcessors,
    {{kProcessor, ReportProcessors, {CpuInfo, Cpus, Cores}},
     {kCore, ReportCores, {Cpus, Cores}},
     {kThread, ReportThreads, {Cpus, Threads}},
     {kCache, ReportCaches, {Cpus, Caches}},
     {kNode, ReportNodes, {Nodes}},
     {kVulnerability, ReportVulnerabilities, {Vulnerabilities}},
     {"MOLTA_SystemProcessor", ReportSystemProcessors, {Cpus, Cores}},
     {"MOLTA_CoreOfProcessor", ReportCoresOfProcessors, {Cpus, Cores}},
     {"MOLTA_ThreadOfCore", ReportThreadsOfCores, {Cpus, Cores, Threads}},
     {"MOLTA_SystemCacheMemory", ReportSystemCaches, {Cpus, Caches}},
     {"MOLTA_AssociatedCacheMemory", ReportCachesOfProcessors, {Cpus, Caches, Cores}},
     {"MOLTA_SystemNUMANode", ReportSystemNodes, {Nodes}},
     {"MOLTA_NUMANodeProcessor", ReportProcessorsOfNodes, {Nodes, Cores}}});

}  // namespace
