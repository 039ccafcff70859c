#include "FirmwareIds.h"

#include <nettle/sha1.h>

#include <algorithm>
#include <cstdio>

namespace {

// 6ba7b810-9dad-11d1-80b4-00c04fd430c8
constexpr TUuid kDnsNamespace = {0x6B, 0xA7, 0xB8, 0x10, 0x9D, 0xAD, 0x11, 0xD1,
                                 0x80, 0xB4, 0x00, 0xC0, 0x4F, 0xD4, 0x30, 0xC8};

const uint8_t* BytesOf(std::string_view text) { return reinterpret_cast<const uint8_t*>(text.data()); }

}  // namespace

std::string UuidText(const TUuid& uuid) {
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < uuid.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        text += {kDigits[uuid[i] / 16], kDigits[uuid[i] % 16]};
    }
    return text;
}

std::string NameUuid(const TUuid& nameSpace, std::string_view name) {
    sha1_ctx context;
    sha1_init(&context);
    sha1_update(&context, nameSpace.size(), nameSpace.data());
    sha1_update(&context, name.size(), BytesOf(name));
    TUuid uuid;
    sha1_digest(&context, uuid.size(), uuid.data());
    uuid[6] = (uuid[6] & 0x0F) | 0x50;
    uuid[8] = (uuid[8] & 0x3F) | 0x80;
    return UuidText(uuid);
}

std::vector<std::string> FirmwareIds(const std::vector<std::string>& instanceIds) {
    std::vector<std::string> ids;
    ids.reserve(instanceIds.size());
    for (const std::string& id : instanceIds) ids.push_back(NameUuid(kDnsNamespace, id));
    return ids;
}

std::vector<std::string> PciInstanceIds(const std::string& bus, uint16_t vendor, uint16_t device,
                                        std::optional<TPciSubsystem> subsystem, std::optional<uint8_t> revision) {
    const std::string plain = bus + "\\VEN_" + UpperHex(4, vendor) + "&DEV_" + UpperHex(4, device);
    std::vector<std::string> ids;
    const auto add = [&](const std::string& id) {
        ids.push_back(id);
        if (revision) ids.push_back(id + "&REV_" + UpperHex(2, *revision));
    };
    add(plain);
    if (!subsystem) return ids;
    const std::string maker = UpperHex(4, subsystem->vendor), model = UpperHex(4, subsystem->device);
    add(plain + "&SUBSYS_" + model + maker);
    if (maker != model) add(plain + "&SUBSYS_" + maker + model);
    return ids;
}

std::string UpperHex(int digits, unsigned number) {
    char text[16];
    std::snprintf(text, sizeof text, "%0*X", digits, number);
    return text;
}
