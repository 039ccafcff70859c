#include <nettle/hmac.h>

#include <algorithm>

#include "FirmwareIds.h"
#include "SystemFacts.h"

namespace {

/// What makes the result another one than those of other programs. It must never change: inventories know machines by
/// the result.
constexpr TUuid kApplication = {0x4B, 0x0D, 0x25, 0x0D, 0x6C, 0xFA, 0x4A, 0x48,
                                0xA9, 0x5B, 0x1A, 0x49, 0x28, 0xEE, 0x3D, 0xEA};

// Of 32 hexadecimal digits.
std::optional<TUuid> ParseId(const std::string& text) {
    TUuid id{};
    if (text.size() != 2 * id.size() || text.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        return {};
    for (size_t i = 0; i < id.size(); ++i) id[i] = *ParseNumber<uint8_t>(std::string_view(text).substr(2 * i, 2), 16);
    const bool isNull = std::all_of(id.begin(), id.end(), [](uint8_t byte) { return byte == 0; });
    return isNull ? std::nullopt : std::optional(id);
}

TUuid MarkedAsVersion4(TUuid id) {
    id[6] = (id[6] & 0x0F) | 0x40;
    id[8] = (id[8] & 0x3F) | 0x80;
    return id;
}

// The machine's own identifier is not to be passed on: whoever has it can tell what other programs derive from it. This
// is how sd_id128_get_machine_app_specific derives one, which asks the running machine only.
std::optional<std::string> DeriveMachineId(const std::string& text) {
    const std::optional<TUuid> machine = ParseId(text);
    if (!machine) return {};
    hmac_sha256_ctx context;
    hmac_sha256_set_key(&context, machine->size(), machine->data());
    hmac_sha256_update(&context, kApplication.size(), kApplication.data());
    TUuid id;
    hmac_sha256_digest(&context, id.size(), id.data());
    return UuidText(MarkedAsVersion4(id));
}

}  // namespace

void ReadMachineId(const TSystemRoot& root, TSystemFacts& facts) {
    facts.machineId = root.ReadText("/etc/machine-id").Map(DeriveMachineId);
}
