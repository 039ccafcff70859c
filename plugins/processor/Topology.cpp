#include "Topology.h"

#include <algorithm>
#include <map>
#include <set>

#include "CpuList.h"

namespace {

using TNumbers = std::vector<uint32_t>;

bool Contains(const TNumbers& numbers, uint32_t number) {
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

class TTopologyReader {
public:
    TTopologyReader(const TSystemRoot& root, const TCpuInfo& info, TProcessorFacts& facts)
        : fRoot(root),
          fInfo(info),
          fFacts(facts),
          fPerformance(ReadCpuList(root, "/sys/devices/cpu_core/cpus")),
          fEfficiency(ReadCpuList(root, "/sys/devices/cpu_atom/cpus")) {}

    void Read() {
        ReadThreads();
        for (TThread& thread : fFacts.threads)
            if (thread.isOnline.ValueOr(false) && !thread.core) AssignCore(thread);
        if (fFacts.cores.empty())
            fFacts.coreListing.value.reset();
        else
            fFacts.coreListing.value = true;
    }

private:
    void ReadThreads() {
        const TFact<TNumbers> online = ReadCpuList(fRoot, "/sys/devices/system/cpu/online");
        const TNumbers listed = fInfo.Numbers();
        TNumbers present =
            ReadCpuList(fRoot, "/sys/devices/system/cpu/present").ValueOr(listed.empty() ? Folders() : listed);
        std::sort(present.begin(), present.end());
        present.erase(std::unique(present.begin(), present.end()), present.end());
        fFacts.threadListing = present.empty() ? ListingOf(online) : TListing::Of(true, online.source);
        fFacts.coreListing = ListingOf(online);
        for (const uint32_t number : present) fFacts.threads.push_back({number, IsOnline(number, online, listed)});
    }

    /// The numbers of the folders cpu0, cpu1 and so on.
    TNumbers Folders() const {
        TNumbers numbers;
        for (const std::string& name : fRoot.Names("/sys/devices/system/cpu"))
            if (const auto number = ParseNumber<uint32_t>(name.substr(0, 3) == "cpu" ? name.substr(3) : "");
                number && *number < kMaxCpus)
                numbers.push_back(*number);
        return numbers;
    }

    // Some architectures write /proc/cpuinfo in another form. Only a thread that is online has a topology.
    TFact<bool> IsOnline(uint32_t number, const TFact<TNumbers>& online, const TNumbers& listed) const {
        if (online) return TFact<bool>::Of(Contains(*online, number), online.source);
        if (!listed.empty()) return TFact<bool>::Of(Contains(listed, number), "/proc/cpuinfo");
        if (const std::string topology = CpuFile(number, "topology"); fRoot.Exists(topology))
            return TFact<bool>::Of(true, topology);
        return TFact<bool>::Missing(online.absence, online.source);
    }

    // From sysfs, or from /proc/cpuinfo if sysfs lacks it.
    TFact<uint32_t> ReadId(uint32_t thread, const char* file, const char* field) const {
        const TFact<uint32_t> id = fRoot.ReadNumber<uint32_t>(CpuFile(thread, file));
        const TFact<uint32_t> other = id ? id : fInfo.NumberField<uint32_t>(thread, field);
        return other ? other : id;
    }

    // The threads of the same core. Older kernels only have the second file.
    TFact<TNumbers> ReadSiblings(uint32_t thread) const {
        TFact<TNumbers> siblings = ReadCpuList(fRoot, CpuFile(thread, "topology/core_cpus_list"));
        return siblings ? siblings : ReadCpuList(fRoot, CpuFile(thread, "topology/thread_siblings_list"));
    }

    void AssignCore(TThread& thread) {
        const TFact<uint32_t> package = ReadId(thread.number, "topology/physical_package_id", "physical id");
        const TFact<uint32_t> id = ReadId(thread.number, "topology/core_id", "core id");
        const TFact<TNumbers> siblings = ReadSiblings(thread.number);
        const auto ids = std::make_pair(package.ValueOr(0), id.ValueOr(thread.number));
        const auto sameIds = fCoresByIds.find(ids);
        if (!siblings && sameIds != fCoresByIds.end()) return AddThread(thread, sameIds->second);

        const size_t core = AddCore(thread.number, ids.first, id);
        fCoresByIds.emplace(ids, core);
        AddThread(thread, core);
        for (const uint32_t number : siblings.ValueOr({}))
            if (TThread* const sibling = FindThread(fFacts, number); sibling && NeedsCore(*sibling))
                AddThread(*sibling, core);
    }

    static bool NeedsCore(const TThread& thread) { return thread.isOnline.ValueOr(false) && !thread.core; }

    void AddThread(TThread& thread, size_t core) {
        thread.core = core;
        fFacts.cores[core].threads.push_back(thread.number);
    }

    size_t AddCore(uint32_t thread, uint32_t package, const TFact<uint32_t>& id) {
        TCore core;
        core.name = CoreName(thread, package, id.ValueOr(thread));
        core.package = PackageOf(package);
        core.id = id;
        core.type = TypeOf(thread);
        core.lowestClock = ReadClock(thread, "cpufreq/cpuinfo_min_freq");
        core.highestClock = ReadClock(thread, "cpufreq/cpuinfo_max_freq");
        fFacts.cores.push_back(std::move(core));
        return fFacts.cores.size() - 1;
    }

    // Core ids may repeat in each die of a package, and some hypervisors give all cores the same id.
    std::string CoreName(uint32_t thread, uint32_t package, uint32_t id) {
        std::string name = "socket" + std::to_string(package) + "/core" + std::to_string(id);
        if (!fNames.insert(name).second) name += "/cpu" + std::to_string(thread);
        return name;
    }

    size_t PackageOf(uint32_t id) {
        const auto [entry, isNew] = fPackages.emplace(id, fFacts.packages.size());
        if (isNew) fFacts.packages.emplace_back().id = id;
        return entry->second;
    }

    TFact<ECoreType> TypeOf(uint32_t thread) const {
        if (fPerformance && Contains(*fPerformance, thread))
            return TFact<ECoreType>::Of(ECoreType::ePerformance, fPerformance.source);
        if (fEfficiency && Contains(*fEfficiency, thread))
            return TFact<ECoreType>::Of(ECoreType::eEfficiency, fEfficiency.source);
        return {};
    }

    TFact<uint32_t> ReadClock(uint32_t thread, const char* file) const {
        const auto toMegahertz = [](uint32_t kilohertz) { return std::optional<uint32_t>(kilohertz / 1000); };
        return fRoot.ReadNumber<uint32_t>(CpuFile(thread, file)).Map(toMegahertz);
    }

    const TSystemRoot& fRoot;
    const TCpuInfo& fInfo;
    TProcessorFacts& fFacts;
    const TFact<TNumbers> fPerformance;
    const TFact<TNumbers> fEfficiency;
    std::map<std::pair<uint32_t, uint32_t>, size_t> fCoresByIds;  // by package id and core id
    std::map<uint32_t, size_t> fPackages;
    std::set<std::string> fNames;
};

}  // namespace

void ReadTopology(const TSystemRoot& root, const TCpuInfo& info, TProcessorFacts& facts) {
    TTopologyReader(root, info, facts).Read();
}

TThread* FindThread(TProcessorFacts& facts, uint32_t number) {
    const auto isBefore = [](const TThread& thread, uint32_t wanted) { return thread.number < wanted; };
    const auto found = std::lower_bound(facts.threads.begin(), facts.threads.end(), number, isBefore);
    return found == facts.threads.end() || found->number != number ? nullptr : &*found;
}

std::string CpuFile(uint32_t number, const std::string& name) {
    return "/sys/devices/system/cpu/cpu" + std::to_string(number) + "/" + name;
}
