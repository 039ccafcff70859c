#include "SystemFacts.h"

namespace {

using TText = TFact<std::string>;

constexpr const char* kSysinfo = "/proc/sysinfo";

// The value of a line such as "Type:                 3931", with single blanks.
TText FindLine(const TText& sysinfo, std::string_view name) {
    if (!sysinfo) return sysinfo;
    for (const std::string_view line : Lines(*sysinfo)) {
        if (line.substr(0, name.size()) != name || line.substr(name.size(), 1) != ":") continue;
        std::string value;
        for (const std::string_view word : Split(line.substr(name.size() + 1), ' '))
            value += (value.empty() ? "" : " ") + std::string(word);
        if (!value.empty()) return TText::Of(value, sysinfo.source);
    }
    return TText::Missing(EAbsence::eNotPresent, sysinfo.source);
}

// Of one that nothing else tells. A guest has lines of its own for the machine that is made for it; a part of a
// computer has its name alone.
TText FindHypervisor(const TText& sysinfo) {
    if (const TText program = FindLine(sysinfo, "VM00 Control Program")) return program;
    return FindLine(sysinfo, "LPAR Name").Map([](const std::string&) { return std::optional<std::string>("PR/SM"); });
}

}  // namespace

// Only mainframes have the file.
void ReadSysinfo(const TSystemRoot& root, TSystemFacts& facts) {
    if (facts.manufacturer || facts.productName || !root.Exists(kSysinfo)) return;
    const TText sysinfo = root.ReadFile(kSysinfo);
    facts.manufacturer = FindLine(sysinfo, "Manufacturer");
    facts.productName = FindLine(sysinfo, "Type");
    facts.productVersion = FindLine(sysinfo, "Model");
    facts.serialNumber = FindLine(sysinfo, "Sequence Code");
    if (const TText found = FindHypervisor(sysinfo); found && !facts.hypervisor) facts.hypervisor = found;
}
