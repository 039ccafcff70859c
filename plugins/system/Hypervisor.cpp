#include "SystemFacts.h"

namespace {

using TText = TFact<std::string>;

struct TTrace {
    std::string_view text;
    const char* hypervisor;
};

constexpr TTrace kVendors[] = {
    {"VMware, Inc.", "VMware"},
    {"innotek GmbH", "VirtualBox"},
    {"Xen", "Xen"},
    {"Parallels International GmbH.", "Parallels"},
    {"Parallels Software International Inc.", "Parallels"},
    {"BHYVE", "bhyve"},
};

// The maker of Hyper-V makes real computers too.
constexpr TTrace kProducts[] = {
    {"VirtualBox", "VirtualBox"},
    {"Virtual Machine", "Microsoft Hyper-V"},
    {"HVM domU", "Xen"},
    {"KVM", "KVM"},
};

constexpr TTrace kKernelNames[] = {
    {"kvm-clock", "KVM"},
    {"xen", "Xen"},
    {"hyperv_clocksource", "Microsoft Hyper-V"},
    {"hyperv_clocksource_tsc_page", "Microsoft Hyper-V"},
    {"hyperv_clocksource_msr", "Microsoft Hyper-V"},
};

// It names itself even where KVM runs the guest, which counts more.
constexpr TTrace kEmulators[] = {{"QEMU", "QEMU"}};

template <size_t N>
TText Find(const TTrace (&traces)[N], const TText& words, char separator = '\0') {
    return words.Map([&](const std::string& text) -> std::optional<std::string> {
        for (const std::string_view word : Split(text, separator))
            for (const TTrace& trace : traces)
                if (trace.text == word) return trace.hypervisor;
        return std::nullopt;
    });
}

// In the first entry; the kernel need not make the rest, which is long.
TText AskProcessor(const TSystemRoot& root) {
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
    facts.hypervisor = AskProcessor(root);
}
