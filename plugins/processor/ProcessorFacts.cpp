#include "ProcessorFacts.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <functional>

#include "CpuInfo.h"
#include "Topology.h"

namespace {

constexpr const char* kVulnerabilities = "/sys/devices/system/cpu/vulnerabilities";

std::optional<double> ParseReal(const std::string& text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !(number >= 0 && number < 1e9)) return {};
    return number;
}

std::optional<uint32_t> ParseMegahertz(const std::string& text) {
    const std::optional<double> number = ParseReal(text);
    if (!number) return {};
    return static_cast<uint32_t>(std::lround(*number));
}

std::optional<std::vector<std::string>> ParseWords(const std::string& text) {
    const std::vector<std::string_view> words = Split(text, ' ');
    return std::vector<std::string>(words.begin(), words.end());
}

// "46 bits physical, 48 bits virtual"
std::optional<uint16_t> ParseAddressWidth(const std::string& text, std::string_view kind) {
    for (const std::string_view part : Split(text, ','))
        if (part.find(kind) != std::string_view::npos) return ParseNumber<uint16_t>(part.substr(0, part.find(' ')));
    return {};
}

// "lm" is the flag of 64-bit long mode.
std::optional<uint16_t> DataWidthOf(const std::vector<std::string>& flags) {
    return std::find(flags.begin(), flags.end(), "lm") == flags.end() ? 32 : 64;
}

/// Fills in what is the same for all threads of a package, from one of them.
void Describe(TPackage& package, const TCpuInfo& info, uint32_t thread) {
    const TFact<std::string> addresses = info.Field(thread, "address sizes");
    package.modelName = info.Field(thread, "model name");
    package.manufacturer = info.Field(thread, "vendor_id");
    package.family = info.Field(thread, "cpu family");
    package.model = info.Field(thread, "model");
    package.stepping = info.Field(thread, "stepping");
    package.microcode = info.Field(thread, "microcode");
    package.bogoMips = info.Field(thread, "bogomips").Map(ParseReal);
    package.flags = info.Field(thread, "flags").Map(ParseWords);
    package.bugs = info.Field(thread, "bugs").Map(ParseWords);
    package.dataWidth = package.flags.Map(DataWidthOf);
    package.physicalAddressWidth =
        addresses.Map([](const std::string& text) { return ParseAddressWidth(text, "physical"); });
    package.virtualAddressWidth =
        addresses.Map([](const std::string& text) { return ParseAddressWidth(text, "virtual"); });
}

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

void ReadPackages(const TCpuInfo& info, TProcessorFacts& facts) {
    for (TThread& thread : facts.threads) {
        if (!thread.core) continue;
        const TCore& core = facts.cores[*thread.core];
        TPackage& package = facts.packages[core.package];
        if (!package.isEnabled) Describe(package, info, thread.number);
        package.isEnabled = thread.isOnline;
        thread.clock = info.Field(thread.number, "cpu MHz").Map(ParseMegahertz);
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
    ReadPackages(info, facts);
    ReadCaches(root, facts);
    ReadNumaNodes(root, facts);
    ReadVulnerabilities(root, facts);
    return facts;
}
