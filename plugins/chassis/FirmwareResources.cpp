// What the firmware can update: the EFI system resource table.
#include "ChassisFacts.h"

namespace {

constexpr const char *kEfi = "/sys/firmware/efi", *kEntries = "/sys/firmware/efi/esrt/entries";

// A computer without UEFI has no such table, nor has UEFI that updates in another way.
TFact<std::vector<std::string>> ListEntries(const TSystemRoot& root) {
    TFact<std::vector<std::string>> entries = root.List(kEntries);
    if (entries || entries.absence != EAbsence::eNotPresent) return entries;
    if (!root.Exists(kEfi)) return root.ListKind(kEfi, kEfi);
    entries.value.emplace();
    return entries;
}

std::optional<uint32_t> ParseFlags(const std::string& text) { return ParseNumber<uint32_t>(text, 16); }

THardware ReadEntry(const TSystemRoot& root, const std::string& name) {
    const std::string folder = std::string(kEntries) + '/' + name + '/';
    THardware resource;
    resource.tag = name;
    resource.caption = "Firmware " + name;
    const auto number = [&](const char* file) { return root.ReadNumber<uint32_t>(folder + file); };
    resource.properties = {{"FirmwareClass", root.ReadText(folder + "fw_class")},
                           {"FirmwareType", root.ReadNumber<uint16_t>(folder + "fw_type")},
                           {"FirmwareVersion", number("fw_version")},
                           {"LowestVersion", number("lowest_supported_fw_version")},
                           {"LastAttemptVersion", number("last_attempt_version")},
                           {"LastAttemptStatus", root.ReadNumber<uint16_t>(folder + "last_attempt_status")},
                           {"CapsuleFlags", root.ReadText(folder + "capsule_flags").Map(ParseFlags)}};
    return resource;
}

}  // namespace

void ReadFirmwareResources(const TSystemRoot& root, TChassisFacts& facts) {
    const auto entries = ListEntries(root);
    facts.firmwareListing = ListingOf(entries);
    for (const std::string& name : entries.ValueOr({})) facts.firmware.push_back(ReadEntry(root, name));
}
