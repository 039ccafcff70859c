#include "Topology.h"

#include <algorithm>
#include <map>
#include <set>
#include <tuple>

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
        TNumbers present = ReadPresent(listed);
        std::sort(present.begin(), present.end());
        present.erase(std::unique(present.begin(), present.end()), present.end());
        fFacts.threadListing = present.empty() ? ListingOf(online) : TListing::Of(true, online.source);
        fFacts.coreListing = ListingOf(online);
        for (const uint32_t number : present) fFacts.threads.push_back({number, IsOnline(number, online, listed)});
    }

    // Old kernels only have the folders. /proc/cpuinfo lists the threads that are online.
    TNumbers ReadPresent(const TNumbers& listed) const {
        const TFact<TNumbers> present = ReadCpuList(fRoot, "/sys/devices/system/cpu/present");
        if (present) return *present;
        TNumbers numbers = Folders();
        numbers.insert(numbers.end(), listed.begin(), listed.end());
        return numbers;
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

    // Some architectures write /proc/cpuinfo in another form. A thread that cannot be put offline has no file that
    // tells whether it is.
    TFact<bool> IsOnline(uint32_t number, const TFact<TNumbers>& online, const TNumbers& listed) const {
        if (online) return TFact<bool>::Of(Contains(*online, number), online.source);
        if (const std::string folder = "/sys/devices/system/cpu/cpu" + std::to_string(number); fRoot.Exists(folder)) {
            const TFact<bool> own = fRoot.ReadFlag(folder + "/online");
            return own || own.absence != EAbsence::eNotPresent ? own : TFact<bool>::Of(true, folder);
        }
        if (!listed.empty()) return TFact<bool>::Of(Contains(listed, number), "/proc/cpuinfo");
        return TFact<bool>::Missing(online.absence, online.source);
    }

    // From sysfs, or from /proc/cpuinfo if sysfs lacks it. Firmware that does not tell has -1.
    TFact<uint32_t> ReadId(uint32_t thread, const char* file, TFieldNames fields) const {
        const TFact<uint32_t> id = fRoot.ReadNumber<uint32_t>(CpuFile(thread, file));
        const TFact<uint32_t> other = id ? id : fInfo.NumberField<uint32_t>(thread, fields);
        return other ? other : id;
    }

    /// The threads in the first of the files that there is; lists before masks, and the names of newer kernels first.
    TFact<TNumbers> ReadFirst(uint32_t thread, const char* newName, const char* oldName) const {
        TFact<TNumbers> numbers;
        for (const std::string name : {newName, oldName})
            if (numbers = ReadCpuList(fRoot, CpuFile(thread, "topology/" + name + "_list")); numbers) return numbers;
        for (const std::string name : {newName, oldName})
            if (numbers = fRoot.ReadText(CpuFile(thread, "topology/" + name)).Map(ParseCpuMask); numbers)
                return numbers;
        return numbers;
    }

    void AssignCore(TThread& thread) {
        const size_t package = PackageOf(ReadPackageIds(thread.number));
        const TFact<uint32_t> id = ReadId(thread.number, "topology/core_id", {"core id", "core"});
        const TFact<TNumbers> siblings = ReadFirst(thread.number, "core_cpus", "thread_siblings");
        const auto ids = std::make_pair(package, id.ValueOr(thread.number));
        const auto sameIds = fCoresByIds.find(ids);
        if (!siblings && sameIds != fCoresByIds.end()) return AddThread(thread, sameIds->second);

        const size_t core = AddCore(thread.number, package, id);
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

    size_t AddCore(uint32_t thread, size_t package, const TFact<uint32_t>& id) {
        TCore core;
        core.name = CoreName(thread, package, id.ValueOr(thread));
        core.package = package;
        core.id = id;
        core.type = TypeOf(thread);
        core.lowestClock = ReadKilohertz(fRoot, CpuFile(thread, "cpufreq/cpuinfo_min_freq"));
        core.highestClock = ReadKilohertz(fRoot, CpuFile(thread, "cpufreq/cpuinfo_max_freq"));
        fFacts.cores.push_back(std::move(core));
        return fFacts.cores.size() - 1;
    }

    // Core ids may repeat in each die of a package, and some hypervisors give all cores the same id.
    std::string CoreName(uint32_t thread, size_t package, uint32_t id) {
        std::string name = fFacts.packages[package].name + "/core" + std::to_string(id);
        if (!fNames.insert(name).second) name += "/cpu" + std::to_string(thread);
        return name;
    }

    /// What tells a package from others. On mainframes packages sit in books, these in drawers, and are numbered in
    /// each of them anew.
    struct TPackageIds {
        std::optional<uint32_t> drawer, book;
        uint32_t package;

        bool operator<(const TPackageIds& other) const {
            return std::tie(drawer, book, package) < std::tie(other.drawer, other.book, other.package);
        }
    };

    TPackageIds ReadPackageIds(uint32_t thread) {
        TPackageIds ids;
        const TFact<uint32_t> package = ReadId(thread, "topology/physical_package_id", {"physical id", "package"});
        ids.package = package ? *package : NumberBySiblings(thread);
        if (!HasBooks(thread)) return ids;
        ids.drawer = ReadId(thread, "topology/drawer_id", {"drawer id"}).value;
        ids.book = ReadId(thread, "topology/book_id", {"book id"}).value;
        return ids;
    }

    bool HasBooks(uint32_t thread) {
        if (!fHasBooks)
            fHasBooks = fRoot.Exists(CpuFile(thread, "topology/book_id")) || fInfo.Field(thread, {"book id"});
        return *fHasBooks;
    }

    /// Packages without ids are numbered in the order of their first threads.
    uint32_t NumberBySiblings(uint32_t thread) {
        const TNumbers siblings = ReadFirst(thread, "package_cpus", "core_siblings").ValueOr({});
        if (siblings.empty()) return 0;
        const uint32_t first = *std::min_element(siblings.begin(), siblings.end());
        return fNumbersByFirstThread.emplace(first, static_cast<uint32_t>(fNumbersByFirstThread.size())).first->second;
    }

    static std::string PackageName(const TPackageIds& ids) {
        std::string name;
        if (ids.drawer) name += "drawer" + std::to_string(*ids.drawer) + '/';
        if (ids.book) name += "book" + std::to_string(*ids.book) + '/';
        return name + "socket" + std::to_string(ids.package);
    }

    size_t PackageOf(const TPackageIds& ids) {
        const auto [entry, isNew] = fPackages.emplace(ids, fFacts.packages.size());
        if (isNew) fFacts.packages.emplace_back().name = PackageName(ids);
        return entry->second;
    }

    TFact<ECoreType> TypeOf(uint32_t thread) const {
        if (fPerformance && Contains(*fPerformance, thread))
            return TFact<ECoreType>::Of(ECoreType::ePerformance, fPerformance.source);
        if (fEfficiency && Contains(*fEfficiency, thread))
            return TFact<ECoreType>::Of(ECoreType::eEfficiency, fEfficiency.source);
        return {};
    }

    const TSystemRoot& fRoot;
    const TCpuInfo& fInfo;
    TProcessorFacts& fFacts;
    const TFact<TNumbers> fPerformance;
    const TFact<TNumbers> fEfficiency;
    std::map<std::pair<size_t, uint32_t>, size_t> fCoresByIds;  // by package and core id
    std::map<TPackageIds, size_t> fPackages;
    std::map<uint32_t, uint32_t> fNumbersByFirstThread;
    std::optional<bool> fHasBooks;
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

TFact<uint32_t> ReadKilohertz(const TSystemRoot& root, const std::string& path) {
    const auto toMegahertz = [](uint32_t kilohertz) { return std::optional<uint32_t>(kilohertz / 1000); };
    return root.ReadNumber<uint32_t>(path).Map(toMegahertz);
}
