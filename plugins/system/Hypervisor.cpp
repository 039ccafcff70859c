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
};

// By product, because the maker of Hyper-V sells physical computers too.
constexpr TSign kProducts[] = {
    {"VirtualBox", "VirtualBox"},
    {"Virtual Machine", "Microsoft Hyper-V"},
    {"HVM domU", "Xen"},
    {"KVM", "KVM"},
};

constexpr TSign kKernelNames[] = {
    {"kvm-clock", "KVM"},
    {"xen", "Xen"},
    {"hyperv_clocksource", "Microsoft Hyper-V"},
    {"hyperv_clocksource_tsc_page", "Microsoft Hyper-V"},
    {"hyperv_clocksource_msr", "Microsoft Hyper-V"},
};

// Looked for last, because guests of KVM have the manufacturer QEMU too.
constexpr TSign kEmulators[] = {{"QEMU", "QEMU"}};

template <size_t N>
TText Find(const TSign (&signs)[N], const TText& words, char separator = '\0') {
    return words.Map([&](const std::string& text) -> std::optional<std::string> {
        for (const std::string_view word : Split(text, separator))
            for (const TSign& sign : signs)
                if (sign.text == word) return sign.hypervisor;
        return std::nullopt;
    });
}

// The flag "hypervisor" shows that there is one. The first entry is enough, and the whole file is long.
TText ReadProcessorFlag(const TSystemRoot& root) {
    const TText text = root.ReadFile("/proc/cpuinfo", 8192);
    if (!text) return text;
    const bool isGuest = text->find(" hypervisor") != std::string::npos;
    return TText::Missing(isGuest ? EAbsence::eNotSupported : EAbsence::eNotPresent, text.source);
}

}  // namespace

void ReadHypervisor(const TSystemRoot& root, TSystemFacts& facts) {
    const TText type = root.ReadText("/sys/hypervisor/type");
    const TText clocks = root.ReadText("/sys/devices/system/clocksource/clocksource0/available_clocksource");
    for (const TText& found :
         {Find(kVendors, facts.manufacturer), Find(kProducts, facts.productName), Find(kKernelNames, type),
          Find(kKernelNames, clocks, ' '), Find(kEmulators, facts.manufacturer)}) {
        if (!found) continue;
        facts.hypervisor = found;
        return;
    }
    facts.hypervisor = ReadProcessorFlag(root);
}
