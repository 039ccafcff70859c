#include <nettle/hmac.h>

#include <algorithm>
#include <array>

#include "SystemFacts.h"

namespace {

using TId128 = std::array<uint8_t, 16>;

/// What makes the result another one than those of other programs. It must never change: inventories know machines by
/// the result.
constexpr TId128 kApplication = {0x4B, 0x0D, 0x25, 0x0D, 0x6C, 0xFA, 0x4A, 0x48,
                                 0xA9, 0x5B, 0x1A, 0x49, 0x28, 0xEE, 0x3D, 0xEA};

// Of 32 hexadecimal digits.
std::optional<TId128> ParseId(const std::string& text) {
    TId128 id{};
    if (text.size() != 2 * id.size() || text.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        return {};
    for (size_t i = 0; i < id.size(); ++i) id[i] = *ParseNumber<uint8_t>(std::string_view(text).substr(2 * i, 2), 16);
    const bool isNull = std::all_of(id.begin(), id.end(), [](uint8_t byte) { return byte == 0; });
    return isNull ? std::nullopt : std::optional(id);
}

// Marked as a UUID of version 4 and of the usual variant.
std::string UuidText(TId128 id) {
    id[6] = (id[6] & 0x0F) | 0x40;
    id[8] = (id[8] & 0x3F) | 0x80;
    constexpr const char* kDigits = "0123456789abcdef";
    std::string text;
    for (size_t i = 0; i < id.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) text += '-';
        text += {kDigits[id[i] / 16], kDigits[id[i] % 16]};
    }
    return text;
}

// The machine's own identifier is not to be passed on: whoever has it can tell what other programs derive from it. This
// is how sd_id128_get_machine_app_specific derives one, which asks the running machine only.
std::optional<std::string> DeriveMachineId(const std::string& text) {
    const std::optional<TId128> machine = ParseId(text);
    if (!machine) return {};
    hmac_sha256_ctx context;
    hmac_sha256_set_key(&context, machine->size(), machine->data());
    hmac_sha256_update(&context, kApplication.size(), kApplication.data());
    TId128 id;
    hmac_sha256_digest(&context, id.size(), id.data());
    return UuidText(id);
}

}  // namespace

void ReadMachineId(const TSystemRoot& root, TSystemFacts& facts) {
    facts.machineId = root.ReadText("/etc/machine-id").Map(DeriveMachineId);
}
