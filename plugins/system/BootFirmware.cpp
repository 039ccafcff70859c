#include "SystemFacts.h"

// Firmware of the older kind leaves no trace but its tables. A kernel that was started without firmware, as by some
// hypervisors, has neither.
void ReadBootFirmware(const TSystemRoot& root, TSystemFacts& facts) {
    constexpr const char *kUefi = "/sys/firmware/efi", *kTables = "/sys/firmware/dmi";
    if (root.Exists(kUefi))
        facts.bootFirmware = TFact<uint16_t>::Of(kBootFirmwareUefi, kUefi);
    else if (root.Exists(kTables))
        facts.bootFirmware = TFact<uint16_t>::Of(kBootFirmwareBios, kTables);
    else
        facts.bootFirmware = TFact<uint16_t>::Missing(root.ReadFile(kUefi).absence, kUefi);
}
