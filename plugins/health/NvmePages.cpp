#include "NvmePages.h"

#include <iterator>

#include "DiskPages.h"

namespace {

constexpr size_t kHealthLength = 512;
constexpr uint64_t kZeroCelsius = 273;  // in kelvin, as the standard converts
constexpr uint64_t kBytesOfUnit = 512'000;
constexpr uint8_t kTemperatureBit = 1 << 1;

constexpr const char* kWarnings[] = {"little spare is left",
                                     "it is too warm or too cold",
                                     "it is no longer reliable",
                                     "it takes no more data",
                                     "the backup of its volatile memory has failed",
                                     "its persistent memory takes no more data or is no longer reliable"};

// 0 stands for a temperature that is not told.
std::optional<int16_t> TemperatureAt(std::string_view page, size_t offset) {
    const uint64_t kelvin = LittleEndianAt(page, offset, 2).value_or(0);
    if (kelvin == 0 || kelvin > INT16_MAX) return std::nullopt;
    return static_cast<int16_t>(static_cast<int64_t>(kelvin) - static_cast<int64_t>(kZeroCelsius));
}

// A number of 16 bytes.
std::optional<uint64_t> CounterAt(std::string_view page, size_t offset) {
    if (LittleEndianAt(page, offset + 8, 8) != uint64_t{0}) return std::nullopt;
    return LittleEndianAt(page, offset, 8);
}

std::optional<uint64_t> BytesAt(std::string_view page, size_t offset) {
    const std::optional<uint64_t> units = CounterAt(page, offset);
    if (!units || *units > UINT64_MAX / kBytesOfUnit) return std::nullopt;
    return *units * kBytesOfUnit;
}

uint8_t ByteAt(std::string_view page, size_t offset) { return static_cast<uint8_t>(page[offset]); }

}  // namespace

std::optional<TNvmeHealth> ParseNvmeHealth(std::string_view page) {
    if (page.size() < kHealthLength) return std::nullopt;
    TNvmeHealth health{};
    health.criticalWarning = ByteAt(page, 0);
    health.temperature = TemperatureAt(page, 1);
    health.spare = ByteAt(page, 3);
    health.spareThreshold = ByteAt(page, 4);
    health.used = ByteAt(page, 5);
    health.bytesRead = BytesAt(page, 32);
    health.bytesWritten = BytesAt(page, 48);
    health.readCommands = CounterAt(page, 64);
    health.writeCommands = CounterAt(page, 80);
    health.powerCycles = CounterAt(page, 112);
    health.powerOnHours = CounterAt(page, 128);
    health.unsafeShutdowns = CounterAt(page, 144);
    health.mediaErrors = CounterAt(page, 160);
    health.errorLogEntries = CounterAt(page, 176);
    return health;
}

std::optional<TNvmeLimits> ParseNvmeIdentify(std::string_view page) {
    if (page.size() < 270) return std::nullopt;
    return TNvmeLimits{TemperatureAt(page, 266), TemperatureAt(page, 268)};
}

std::vector<std::string> NvmeWarnings(uint8_t criticalWarning) {
    std::vector<std::string> warnings;
    for (size_t bit = 0; bit < 8; ++bit) {
        if ((criticalWarning >> bit & 1) == 0) continue;
        const bool isKnown = bit < std::size(kWarnings);
        warnings.push_back(isKnown ? kWarnings[bit] : "warning " + std::to_string(bit) + ", which is not known");
    }
    return warnings;
}

bool IsNvmeFailing(uint8_t criticalWarning) { return (criticalWarning & ~kTemperatureBit) != 0; }
