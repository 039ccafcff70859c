#include "ProcessorFacts.h"

#include <algorithm>
#include <functional>

#include "CpuInfo.h"
#include "Models.h"
#include "Topology.h"

namespace {

constexpr const char* kVulnerabilities = "/sys/devices/system/cpu/vulnerabilities";

/// Replaces `kept` if `other` is better, or if `kept` has nothing yet, not even a reason.
template <typename F>
void KeepBetter(TFact<uint32_t>& kept, const TFact<uint32_t>& other, F isBetter) {
    if (kept.source.empty() || (other && (!kept || isBetter(*other, *kept)))) kept = other;
}

void Count(TFact<uint32_t>& count, uint32_t more, const std::string& source) {
    count = TFact<uint32_t>::Of(count.ValueOr(0) + more, source);
}

/// Adds one core to the totals of its package.
void AddCore(TPackage& package, const TCore& core, const std::string& source) {
    Count(package.coreCount, 1, source);
    Count(package.threadCount, static_cast<uint32_t>(core.threads.size()), source);
    KeepBetter(package.lowestClock, core.lowestClock, std::less<>());
    KeepBetter(package.highestClock, core.highestClock, std::greater<>());
}

// Where /proc/cpuinfo does not tell it, the driver that sets it does.
TFact<uint32_t> ReadClock(const TSystemRoot& root, const TCpuInfo& info, uint32_t thread) {
    const TFact<uint32_t> clock = ClockOf(info, thread);
    return clock ? clock : EitherOf(clock, ReadKilohertz(root, CpuFile(thread, "cpufreq/scaling_cur_freq")));
}

void ReadPackages(const TSystemRoot& root, const TCpuInfo& info, TProcessorFacts& facts) {
    for (TThread& thread : facts.threads) {
        if (!thread.core) continue;
        const TCore& core = facts.cores[*thread.core];
        TPackage& package = facts.packages[core.package];
        if (!package.isEnabled) DescribePackage(info, thread.number, package);
        package.isEnabled = thread.isOnline;
        thread.clock = ReadClock(root, info, thread.number);
        KeepBetter(package.clock, thread.clock, std::greater<>());
        if (core.threads.front() == thread.number) AddCore(package, core, thread.isOnline.source);
    }
}

void ReadVulnerabilities(const TSystemRoot& root, TProcessorFacts& facts) {
    const TFact<std::vector<std::string>> names = root.Exists(kVulnerabilities)
                                                      ? NeverEmpty(root.List(kVulnerabilities))
                                                      : root.ListKind(kVulnerabilities, kVulnerabilities);
    facts.vulnerabilityListing = ListingOf(names);
    for (const std::string& name : names.ValueOr({}))
        facts.vulnerabilities.push_back({name, root.ReadText(std::string(kVulnerabilities) + "/" + name)});
}

}  // namespace

TProcessorFacts ReadProcessors(const TSystemRoot& root) {
    TProcessorFacts facts;
    const TFact<std::string> file = NeverEmpty(root.ReadFile("/proc/cpuinfo"));
    const TCpuInfo info(file);
    facts.cpuInfoListing = ListingOf(file);
    facts.cpuListing = ListingOf(NeverEmpty(root.ListKind("/sys/devices/system/cpu")));
    ReadTopology(root, info, facts);
    ReadPackages(root, info, facts);
    DescribeMixedCores(info, facts);
    ReadCaches(root, facts);
    ReadNumaNodes(root, facts);
    ReadVulnerabilities(root, facts);
    return facts;
}
