#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#endif

#include <cstring>

#include "SystemFacts.h"

namespace {

using TText = TFact<std::string>;

struct TSign {
    std::string_view text;
    const char* hypervisor;
};

constexpr TSign kVendors[] = {
    {"VMware, Inc.", "VMware"},
    {"innotek GmbH", "VirtualBox"},
    {"Xen", "Xen"},
    {"Parallels International GmbH.", "Parallels"},
    {"Parallels Software International Inc.", "Parallels"},
    {"BHYVE", "bhyve"},
    {"Bochs", "Bochs"},
};

// By product, because the maker of Hyper-V sells physical computers too.
constexpr TSign kProducts[] = {
    {"VirtualBox", "VirtualBox"},
    {"Virtual Machine", "Microsoft Hyper-V"},
    {"HVM domU", "Xen"},
    {"KVM", "KVM"},
    {"Apple Virtualization Generic Platform", "Apple Virtualization"},
};

constexpr TSign kKernelNames[] = {
    {"kvm-clock", "KVM"},
    {"xen", "Xen"},
    {"hyperv_clocksource", "Microsoft Hyper-V"},
    {"hyperv_clocksource_tsc_page", "Microsoft Hyper-V"},
    {"hyperv_clocksource_msr", "Microsoft Hyper-V"},
};

/// What firmware of the kind without tables tells.
constexpr TSign kDeviceTree[] = {{"linux,kvm", "KVM"}, {"xen,xen", "Xen"}, {"vmware", "VMware"}};

// Looked for last, because guests of KVM have the manufacturer QEMU too.
constexpr TSign kEmulators[] = {{"QEMU", "QEMU"}, {"qemu,pseries", "QEMU"}};

// Where no clock tells of KVM, as on ARM.
constexpr TSign kClouds[] = {{"Amazon EC2", "Amazon Nitro"},
                             {"Google Compute Engine", "Google Compute Engine"},
                             {"OpenStack Nova", "KVM"},
                             {"OpenStack Compute", "KVM"},
                             {"KubeVirt", "KVM"}};

/// What hypervisors answer to the instruction CPUID.
constexpr TSign kAnswers[] = {
    {"KVMKVMKVM", "KVM"},        {"Linux KVM Hv", "KVM"},        {"TCGTCGTCGTCG", "QEMU"},
    {"XenVMMXenVMM", "Xen"},     {"VMwareVMware", "VMware"},     {"bhyve bhyve", "bhyve"},
    {"ACRNACRNACRN", "ACRN"},    {"VBoxVBoxVBox", "VirtualBox"}, {"prl hyperv", "Parallels"},
    {"lrpepyh vr", "Parallels"}, {"QNXQVMBSQG", "QNX"},          {"Microsoft Hv", "Microsoft Hyper-V"},
};

template <size_t N>
TText Find(const TSign (&signs)[N], const TText& words, char separator = '\0') {
    return words.Map([&](const std::string& text) -> std::optional<std::string> {
        for (const std::string_view word : Split(text, separator))
            for (const TSign& sign : signs)
                if (sign.text == word) return sign.hypervisor;
        return std::nullopt;
    });
}

// The first domain of Xen, which drives the hardware and runs the others, is no guest although it runs on Xen. The bit
// is XENFEAT_dom0.
bool IsXenHost(const TSystemRoot& root, const TText& type) {
    if (type.ValueOr("") != "xen") return false;
    if (root.ReadText("/proc/xen/capabilities").ValueOr("").find("control_d") != std::string::npos) return true;
    const TFact<uint32_t> features = root.ReadNumber<uint32_t>("/sys/hypervisor/properties/features", 16);
    return (features.ValueOr(0) >> 11 & 1) != 0;
}

// Computers that a cloud lets as a whole have the same manufacturer.
TText FindCloud(const TSystemFacts& facts) {
    const bool isWhole = facts.productName.ValueOr("").find(".metal") != std::string::npos;
    const TText maker = Find(kClouds, facts.manufacturer), product = Find(kClouds, facts.productName);
    return isWhole ? TText() : maker ? maker : product;
}

// Partitions of POWER machines. QEMU names them as well.
TText FindPartition(const TSystemRoot& root, const TText& tree) {
    constexpr const char* kName = "/proc/device-tree/ibm,partition-name";
    return root.Exists(kName) && !Find(kEmulators, tree) ? TText::Of("PowerVM", kName) : TText();
}

// "VM00 Control Program: z/VM    7.3.0"
std::optional<std::string> FindControlProgram(const std::string& text) {
    constexpr std::string_view kName = "Control Program:";
    const size_t at = text.find(kName);
    if (at == std::string::npos) return {};
    const std::string_view name = Trim(std::string_view(text).substr(at + kName.size(), 16));
    if (name.substr(0, 4) == "z/VM") return "z/VM";
    return name.substr(0, 3) == "KVM" ? std::optional<std::string>("KVM") : std::nullopt;
}

#if defined(__x86_64__) || defined(__i386__)
TText AskProcessor() {
    constexpr unsigned kFirst = 0x40000000;
    unsigned leaf = 0, words[3] = {}, flags = 0;
    if (__get_cpuid(1, &leaf, &words[0], &flags, &words[2]) == 0 || (flags >> 31) == 0) return {};
    __cpuid(kFirst, leaf, words[0], words[1], words[2]);
    char name[sizeof words + 1] = "";
    std::memcpy(name, words, sizeof words);
    return Find(kAnswers, TText::Of(std::string(Trim(name)), "CPUID"));
}
#else
TText AskProcessor() { return {}; }
#endif

// The flag "hypervisor" shows that there is one. Processors of other kinds have no such flag, and only firmware that
// would name it shows that there is none. The first entry is enough, and the whole file is long.
TText ReadProcessorFlag(const TSystemRoot& root, bool wouldBeNamed) {
    const TText text = root.ReadFile("/proc/cpuinfo", 8192);
    if (!text) return text;
    const bool isGuest = text->find(" hypervisor") != std::string::npos;
    const bool isKnown = !isGuest && (wouldBeNamed || text->find("flags") != std::string::npos);
    return TText::Missing(isKnown ? EAbsence::eNotPresent : EAbsence::eNotSupported, text.source);
}

}  // namespace

void ReadHypervisor(const TSystemRoot& root, TSystemFacts& facts) {
    const TText type = root.ReadText("/sys/hypervisor/type");
    if (IsXenHost(root, type)) {
        facts.hypervisor = TText::Missing(EAbsence::eNotPresent, "/proc/xen/capabilities");
        return;
    }
    const TText clocks = root.ReadText("/sys/devices/system/clocksource/clocksource0/available_clocksource"),
                node = root.ReadText("/proc/device-tree/hypervisor/compatible"),
                tree = root.ReadText("/proc/device-tree/compatible");
    for (const TText& found : {Find(kVendors, facts.manufacturer), Find(kProducts, facts.productName),
                               Find(kKernelNames, type), Find(kKernelNames, clocks, ' '), Find(kDeviceTree, node),
                               FindPartition(root, tree), root.ReadText("/proc/sysinfo").Map(FindControlProgram),
                               FindCloud(facts), Find(kEmulators, facts.manufacturer), Find(kEmulators, tree),
                               root.IsRunningMachine() ? AskProcessor() : TText()}) {
        if (!found) continue;
        facts.hypervisor = found;
        return;
    }
    const bool hasTree = tree || root.Exists("/sys/firmware/devicetree/base");
    facts.hypervisor = ReadProcessorFlag(root, hasTree || root.Exists("/proc/sysinfo"));
}
