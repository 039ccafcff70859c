#include <sys/utsname.h>

#include "SystemFacts.h"

namespace {

TFact<std::string> UnameField(const char* text) {
    const std::string_view trimmed = Trim(text);
    if (trimmed.empty()) return TFact<std::string>::Missing(EAbsence::eNotPresent, "uname(2)");
    return TFact<std::string>::Of(std::string(trimmed), "uname(2)");
}

void ReadUname(TSystemFacts& facts) {
    struct utsname name {};
    uname(&name);
    facts.hostName = UnameField(name.nodename);
    facts.kernelRelease = UnameField(name.release);
    facts.kernelVersion = UnameField(name.version);
    facts.architecture = UnameField(name.machine);
}

// The same values for a recorded machine.
void ReadKernelFiles(const TSystemRoot& root, TSystemFacts& facts) {
    facts.hostName = root.ReadText("/proc/sys/kernel/hostname");
    facts.kernelRelease = root.ReadText("/proc/sys/kernel/osrelease");
    facts.kernelVersion = root.ReadText("/proc/sys/kernel/version");
    facts.architecture = root.ReadText("/proc/sys/kernel/arch");
}

// The line "btime 1700000000".
std::optional<int64_t> FindBootTime(const std::string& text) {
    constexpr std::string_view kName = "\nbtime ";
    const size_t start = text.find(kName);
    if (start == std::string::npos) return {};
    const std::string_view rest = std::string_view(text).substr(start + kName.size());
    const std::optional<int64_t> seconds = ParseNumber<int64_t>(rest.substr(0, rest.find('\n')));
    return seconds && *seconds > 0 ? seconds : std::nullopt;
}

// "12345.67 ..."
std::optional<uint64_t> ParseUpTime(const std::string& text) {
    return ParseNumber<uint64_t>(std::string_view(text).substr(0, text.find('.')));
}

}  // namespace

void ReadKernel(const TSystemRoot& root, TSystemFacts& facts) {
    if (facts.isRunning)
        ReadUname(facts);
    else
        ReadKernelFiles(root, facts);
    const TFact<std::string> statistics = NeverEmpty(root.ReadFile("/proc/stat"));
    facts.kernelListing = ListingOf(statistics);
    facts.bootTime = statistics.Map(FindBootTime);
    facts.upTime = root.ReadText("/proc/uptime").Map(ParseUpTime);
}
