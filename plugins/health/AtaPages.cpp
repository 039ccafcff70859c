#include "AtaPages.h"

#include <algorithm>

#include "DiskPages.h"

namespace {

constexpr size_t kPageLength = 512;
constexpr size_t kAttributes = 30;
constexpr size_t kAttributeLength = 12;
constexpr size_t kFirstAttribute = 2;
constexpr size_t kSelfTest = 363;

// Of descriptors in sense data, and of sense data in the other form.
constexpr uint8_t kAtaDescriptor = 0x09;
constexpr uint8_t kAtaInformation = 0x1d;

constexpr uint8_t kStandby[] = {0x00, 0x01, 0x40};  // counts of CHECK POWER MODE

struct TAttributeName {
    uint8_t id;
    const char* name;
};

// Numbers between 170 and 183, and 201 to 239, mean something else with each maker of solid state disks.
constexpr TAttributeName kAttributeNames[] = {
    {1, "Read error rate"},
    {2, "Throughput performance"},
    {3, "Spin-up time"},
    {4, "Start/stop count"},
    {5, "Reallocated sectors"},
    {7, "Seek error rate"},
    {8, "Seek time performance"},
    {9, "Power-on hours"},
    {10, "Spin-up retries"},
    {11, "Calibration retries"},
    {12, "Power cycles"},
    {184, "End-to-end errors"},
    {187, "Reported uncorrectable errors"},
    {188, "Command timeouts"},
    {189, "High fly writes"},
    {190, "Airflow temperature"},
    {191, "Shocks"},
    {192, "Power-off retracts"},
    {193, "Load cycles"},
    {194, "Temperature"},
    {195, "Hardware ECC recovered"},
    {196, "Reallocation events"},
    {197, "Pending sectors"},
    {198, "Offline uncorrectable sectors"},
    {199, "Interface CRC errors"},
    {200, "Multi-zone error rate"},
    {240, "Head flying hours"},
    {241, "Sectors written"},
    {242, "Sectors read"},
    {254, "Free fall events"},
};

uint8_t ByteAt(std::string_view bytes, size_t offset) { return static_cast<uint8_t>(bytes[offset]); }

uint64_t WordAt(std::string_view page, size_t word) { return LittleEndianAt(page, 2 * word, 2).value_or(0); }

// Words with flags are valid if their highest two bits are these.
bool IsValid(uint64_t word) { return (word & 0xc000) == 0x4000; }

// Of what a descriptor at the offset holds.
std::optional<TAtaRegisters> ParseDescriptor(std::string_view descriptor) {
    if (descriptor.size() < 14) return std::nullopt;
    const auto at = [&](size_t offset) { return ByteAt(descriptor, offset); };
    return TAtaRegisters{at(3), at(5), at(7), at(9), at(11), at(12), at(13)};
}

std::optional<TAtaRegisters> ParseDescriptors(std::string_view sense) {
    if (sense.size() < 8) return std::nullopt;
    std::string_view rest = sense.substr(8, ByteAt(sense, 7));
    while (rest.size() >= 2) {
        if (ByteAt(rest, 0) == kAtaDescriptor) return ParseDescriptor(rest);
        rest.remove_prefix(std::min<size_t>(rest.size(), 2u + ByteAt(rest, 1)));
    }
    return std::nullopt;
}

std::optional<TAtaRegisters> ParseFixedSense(std::string_view sense) {
    if (sense.size() < 14 || ByteAt(sense, 12) != 0 || ByteAt(sense, 13) != kAtaInformation) return std::nullopt;
    const auto at = [&](size_t offset) { return ByteAt(sense, offset); };
    return TAtaRegisters{at(3), at(6), at(9), at(10), at(11), at(5), at(4)};
}

uint32_t SectorSizeOf(std::string_view page) {
    constexpr uint32_t kUsual = 512;
    const uint64_t sizes = WordAt(page, 106);
    if (!IsValid(sizes) || (sizes & 1 << 12) == 0) return kUsual;
    const uint64_t words = WordAt(page, 117) | WordAt(page, 118) << 16;
    return words == 0 || words > 1 << 20 ? kUsual : static_cast<uint32_t>(2 * words);
}

std::string_view AttributeAt(std::string_view page, size_t index) {
    return page.substr(kFirstAttribute + index * kAttributeLength, kAttributeLength);
}

}  // namespace

std::optional<TAtaRegisters> ParseAtaSense(std::string_view sense) {
    if (sense.empty()) return std::nullopt;
    const int format = ByteAt(sense, 0) & 0x7f;
    return format == 0x72 ? ParseDescriptors(sense) : format == 0x70 ? ParseFixedSense(sense) : std::nullopt;
}

std::optional<TAtaRegisters> ParseAtaRegisters(std::string_view bytes) {
    if (bytes.size() != 7) return std::nullopt;
    const auto at = [&](size_t offset) { return ByteAt(bytes, offset); };
    return TAtaRegisters{at(0), at(1), at(2), at(3), at(4), at(5), at(6)};
}

bool IsAsleep(const TAtaRegisters& registers) {
    return std::find(std::begin(kStandby), std::end(kStandby), registers.count) != std::end(kStandby);
}

std::optional<bool> IsFailing(const TAtaRegisters& registers) {
    if (registers.lbaMid == 0x4f && registers.lbaHigh == 0xc2) return false;
    if (registers.lbaMid == 0xf4 && registers.lbaHigh == 0x2c) return true;
    return std::nullopt;
}

std::optional<TAtaIdentity> ParseAtaIdentify(std::string_view page) {
    if (page.size() < kPageLength) return std::nullopt;
    const bool isSupportTold = IsValid(WordAt(page, 83)), isStateTold = IsValid(WordAt(page, 87));
    const bool hasSmart = isSupportTold && (WordAt(page, 82) & 1) != 0;
    return TAtaIdentity{hasSmart, hasSmart && isStateTold && (WordAt(page, 85) & 1) != 0,
                        isStateTold && (WordAt(page, 87) & 1 << 5) != 0, SectorSizeOf(page)};
}

// A threshold of 0 is never reached, and 254 and 255 are for tests.
std::optional<EAttributeState> TSmartAttribute::State() const {
    if (!threshold) return std::nullopt;
    if (*threshold == 0 || *threshold > 253) return EAttributeState::eGood;
    if (current <= *threshold) return EAttributeState::eFailingNow;
    return worst <= *threshold ? EAttributeState::eFailedOnce : EAttributeState::eGood;
}

const char* FindAttributeName(uint8_t id) {
    for (const TAttributeName& known : kAttributeNames)
        if (known.id == id) return known.name;
    return nullptr;
}

const TSmartAttribute* TSmartData::Find(uint8_t id) const {
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [id](const TSmartAttribute& attribute) { return attribute.id == id; });
    return found == attributes.end() ? nullptr : &*found;
}

// Of two with one number the first counts, so that each has a name of its own.
std::optional<TSmartData> ParseSmartData(std::string_view page) {
    if (page.size() < kPageLength) return std::nullopt;
    TSmartData data{{}, static_cast<uint16_t>(ByteAt(page, kSelfTest) >> 4)};
    for (size_t i = 0; i < kAttributes; ++i) {
        const std::string_view entry = AttributeAt(page, i);
        const uint8_t id = ByteAt(entry, 0);
        if (id == 0 || data.Find(id) != nullptr) continue;
        data.attributes.push_back({id, static_cast<uint16_t>(LittleEndianAt(entry, 1, 2).value_or(0)), ByteAt(entry, 3),
                                   ByteAt(entry, 4), LittleEndianAt(entry, 5, 6).value_or(0), std::nullopt});
    }
    return data;
}

void AddThresholds(std::string_view page, TSmartData& data) {
    if (page.size() < kPageLength) return;
    for (size_t i = 0; i < kAttributes; ++i) {
        const std::string_view entry = AttributeAt(page, i);
        for (TSmartAttribute& attribute : data.attributes)
            if (attribute.id == ByteAt(entry, 0)) attribute.threshold = ByteAt(entry, 1);
    }
}

bool HasLog(std::string_view directory, uint8_t log) { return LittleEndianAt(directory, 2u * log, 2).value_or(0) != 0; }

bool HasStatisticsPage(std::string_view list, uint8_t page) {
    if (list.size() < kPageLength) return false;
    const std::string_view pages = list.substr(9, ByteAt(list, 8));
    return pages.find(static_cast<char>(page)) != std::string_view::npos;
}

// The first eight bytes of the page have its number; the highest byte of a statistic has flags.
std::optional<uint64_t> StatisticAt(std::string_view bytes, uint8_t page, size_t offset) {
    constexpr uint64_t kSupportedAndValid = 0xc0;
    if (bytes.size() < kPageLength || ByteAt(bytes, 2) != page) return std::nullopt;
    const uint64_t statistic = LittleEndianAt(bytes, offset, 8).value_or(0);
    if ((statistic >> 56 & kSupportedAndValid) != kSupportedAndValid) return std::nullopt;
    return statistic & 0x00ff'ffff'ffff'ffff;
}
