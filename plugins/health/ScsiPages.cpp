#include "ScsiPages.h"

#include "DiskPages.h"

namespace {

constexpr size_t kHeader = 4;  // of a page, and of a parameter
constexpr uint8_t kTemperaturePage = 0x0d, kSolidStatePage = 0x11, kBackgroundScanPage = 0x15, kExceptionsPage = 0x2f;

uint8_t ByteAt(std::string_view bytes, size_t offset) { return static_cast<uint8_t>(bytes[offset]); }

// What follows the header of the page; empty if it is another page.
std::string_view BodyOf(std::string_view bytes, uint8_t page) {
    if (bytes.size() < kHeader || (ByteAt(bytes, 0) & 0x3f) != page) return {};
    return bytes.substr(kHeader, BigEndianAt(bytes, 2, 2).value_or(0));
}

std::optional<int16_t> TemperatureIn(std::string_view bytes, uint16_t code) {
    constexpr uint8_t kUnknown = 0xff;
    const std::string_view value = FindScsiParameter(bytes, kTemperaturePage, code);
    if (value.size() < 2 || ByteAt(value, 1) == kUnknown) return std::nullopt;
    return ByteAt(value, 1);
}

}  // namespace

bool HasScsiLogPage(std::string_view list, uint8_t page) {
    return BodyOf(list, 0).find(static_cast<char>(page)) != std::string_view::npos;
}

std::string_view FindScsiParameter(std::string_view bytes, uint8_t page, uint16_t code) {
    std::string_view rest = BodyOf(bytes, page);
    while (rest.size() >= kHeader) {
        const std::string_view value = rest.substr(kHeader, ByteAt(rest, 3));
        if (BigEndianAt(rest, 0, 2) == code) return value;
        rest.remove_prefix(kHeader + value.size());
    }
    return {};
}

// 5Dh: a failure is predicted, 0Bh: a warning. 5Dh/FFh is a test of the prediction.
std::optional<EScsiException> ParseScsiExceptions(std::string_view bytes) {
    const std::string_view value = FindScsiParameter(bytes, kExceptionsPage, 0);
    if (value.size() < 2) return std::nullopt;
    const uint8_t code = ByteAt(value, 0), qualifier = ByteAt(value, 1);
    if (code == 0x5d && qualifier != 0xff) return EScsiException::eFailure;
    return code == 0x0b ? EScsiException::eWarning : EScsiException::eNone;
}

std::optional<int16_t> ScsiTemperature(std::string_view bytes) { return TemperatureIn(bytes, 0); }
std::optional<int16_t> ScsiReferenceTemperature(std::string_view bytes) { return TemperatureIn(bytes, 1); }

std::optional<uint16_t> ScsiPercentageUsed(std::string_view bytes) {
    const std::string_view value = FindScsiParameter(bytes, kSolidStatePage, 1);
    if (value.size() < 4) return std::nullopt;
    return ByteAt(value, 3);
}

std::optional<uint64_t> ScsiPowerOnHours(std::string_view bytes) {
    const std::optional<uint64_t> minutes = BigEndianAt(FindScsiParameter(bytes, kBackgroundScanPage, 0), 0, 4);
    if (!minutes) return std::nullopt;
    return *minutes / 60;
}
