#include <algorithm>
#include <string_view>

#include "HealthFacts.h"

namespace {

// Attributes that mean the same with all makers.
constexpr uint8_t kReallocated = 5, kHours = 9, kCycles = 12, kAirflow = 190, kTemperature = 194, kPending = 197,
                  kUncorrectable = 198;
constexpr uint8_t kStatisticsLog = 0x04, kGeneralPage = 1, kSolidStatePage = 7;
constexpr uint64_t kHoursMask = 0xff'ffff;  // some disks count fractions of an hour in the bytes above
constexpr uint64_t kCountMask = 0xffff'ffff;

using TData = TFact<TSmartData>;

// The lowest bits of the raw value.
TFact<uint64_t> CountOf(const TData& data, uint8_t id, uint64_t mask = kCountMask) {
    return ToldBy(data, [id, mask](const TSmartData& smart) -> std::optional<uint64_t> {
        const TSmartAttribute* const attribute = smart.Find(id);
        if (attribute == nullptr) return std::nullopt;
        return attribute->raw & mask;
    });
}

// The lowest byte of the raw value; above it some disks have the lowest and the highest temperature so far.
std::optional<int16_t> TemperatureOf(const TSmartData& smart) {
    for (const uint8_t id : {kTemperature, kAirflow}) {
        const TSmartAttribute* const attribute = smart.Find(id);
        const int degrees = attribute == nullptr ? 0 : static_cast<int8_t>(attribute->raw & 0xff);
        if (attribute != nullptr && attribute->raw != 0 && degrees > -50) return static_cast<int16_t>(degrees);
    }
    return std::nullopt;
}

std::string TextFor(const TSmartAttribute& attribute) {
    const char* const name = FindAttributeName(attribute.id);
    return "attribute " + std::to_string(attribute.id) + (name == nullptr ? "" : std::string(" (") + name + ")") +
           " is at its threshold";
}

bool IsFailingNow(const TSmartAttribute& attribute) { return attribute.State() == EAttributeState::eFailingNow; }

bool PredictsFailure(const TSmartData& smart) {
    return std::any_of(smart.attributes.begin(), smart.attributes.end(), [](const TSmartAttribute& attribute) {
        return IsFailingNow(attribute) && attribute.IsPrefailure();
    });
}

std::vector<std::string> WarningsOf(const TSmartData& smart) {
    std::vector<std::string> warnings;
    for (const TSmartAttribute& attribute : smart.attributes)
        if (IsFailingNow(attribute)) warnings.push_back(TextFor(attribute));
    return warnings;
}

// The disk's own word counts, unless its attributes say worse. Without that word they cannot say that all is well.
TFact<EAssessment> Assess(const TFact<bool>& isFailing, const TData& data) {
    using TAssessment = TFact<EAssessment>;
    if (isFailing && *isFailing) return TAssessment::Of(EAssessment::eFailing, isFailing.source);
    if (data && PredictsFailure(*data)) return TAssessment::Of(EAssessment::eFailing, data.source);
    if (data && !WarningsOf(*data).empty()) return TAssessment::Of(EAssessment::eWarning, data.source);
    if (isFailing) return TAssessment::Of(EAssessment::ePassed, isFailing.source);
    return TAssessment::Missing(isFailing.absence, isFailing.source);
}

TData ReadSmartData(TDiskPages& pages) {
    TData data = pages.Ask(EDiskPage::eAtaSmartData).Map(ParseSmartData);
    if (!data) return data;
    if (const TFact<std::string> thresholds = pages.Ask(EDiskPage::eAtaSmartThresholds))
        AddThresholds(*thresholds, *data.value);
    return data;
}

void ReadSmart(TDiskPages& pages, TDiskHealth& disk) {
    const TFact<bool> isFailing =
        pages.Ask(EDiskPage::eAtaSmartStatus).Map(ParseAtaRegisters).Map([](const TAtaRegisters& registers) {
            return IsFailing(registers);
        });
    const TData data = ReadSmartData(pages);
    disk.assessment = Assess(isFailing, data);
    disk.warnings = WarningsTold(ToldBy(data, [](const TSmartData& s) { return std::optional(WarningsOf(s)); }));
    disk.selfTest = ToldBy(data, [](const TSmartData& smart) { return std::optional(smart.selfTest); });
    disk.temperature = ToldBy(data, TemperatureOf);
    disk.powerOnHours = CountOf(data, kHours, kHoursMask);
    disk.powerCycles = CountOf(data, kCycles);
    disk.reallocatedSectors = CountOf(data, kReallocated);
    disk.pendingSectors = CountOf(data, kPending);
    disk.uncorrectableSectors = CountOf(data, kUncorrectable);
    if (data) disk.attributes = data->attributes;
    disk.attributeListing = UnlessUnreadable(data);
}

TFact<uint64_t> StatisticOf(const TFact<std::string>& bytes, uint8_t page, size_t offset) {
    return ToldBy(bytes, [page, offset](const std::string& text) { return StatisticAt(text, page, offset); });
}

TFact<uint64_t> BytesOf(const TFact<std::string>& bytes, size_t offset, uint32_t sectorSize) {
    return ToldBy(bytes, [=](const std::string& text) -> std::optional<uint64_t> {
        const std::optional<uint64_t> sectors = StatisticAt(text, kGeneralPage, offset);
        if (!sectors || *sectors > UINT64_MAX / sectorSize) return std::nullopt;
        return *sectors * sectorSize;
    });
}

void ReadGeneralStatistics(const TFact<std::string>& bytes, uint32_t sectorSize, TDiskHealth& disk) {
    if (TFact<uint64_t> hours = StatisticOf(bytes, kGeneralPage, 0x10)) disk.powerOnHours = std::move(hours);
    disk.bytesWritten = BytesOf(bytes, 0x18, sectorSize);
    disk.writeCommands = StatisticOf(bytes, kGeneralPage, 0x20);
    disk.bytesRead = BytesOf(bytes, 0x28, sectorSize);
    disk.readCommands = StatisticOf(bytes, kGeneralPage, 0x30);
}

// How much of its life it has used is one byte.
void ReadSolidStateStatistics(const TFact<std::string>& bytes, TDiskHealth& disk) {
    disk.percentageUsed = ToldBy(bytes, [](const std::string& text) -> std::optional<uint16_t> {
        const std::optional<uint64_t> used = StatisticAt(text, kSolidStatePage, 8);
        if (!used) return std::nullopt;
        return static_cast<uint16_t>(*used & 0xff);
    });
}

// Each list is looked at before what it lists: a disk notes as its own error that it was asked for a log that it has
// not.
void ReadStatistics(TDiskPages& pages, uint32_t sectorSize, TDiskHealth& disk) {
    if (!HasLog(pages.Ask(EDiskPage::eAtaLogDirectory).ValueOr(""), kStatisticsLog)) return;
    const std::string list = pages.Ask(EDiskPage::eAtaStatisticsList).ValueOr("");
    if (HasStatisticsPage(list, kGeneralPage))
        ReadGeneralStatistics(pages.Ask(EDiskPage::eAtaGeneralStatistics), sectorSize, disk);
    if (HasStatisticsPage(list, kSolidStatePage))
        ReadSolidStateStatistics(pages.Ask(EDiskPage::eAtaSolidStateStatistics), disk);
}

}  // namespace

// Nobody knows then whether it has attributes.
void LeaveAsleep(TDiskHealth& disk) {
    disk.attributeListing = TListing::Missing(EAbsence::eNotSupported, SourceOf(disk.name, EDiskPage::eAtaSmartData));
}

// The disk is not asked for more than its state if that would wake it.
void ReadAtaHealth(TDiskPages& pages, TDiskHealth& disk) {
    disk.isAsleep = ToldBy(pages.Ask(EDiskPage::eAtaPowerMode).Map(ParseAtaRegisters),
                           [](const TAtaRegisters& registers) { return std::optional(IsAsleep(registers)); });
    if (disk.isAsleep.ValueOr(false)) return LeaveAsleep(disk);
    const TFact<TAtaIdentity> identity = pages.Ask(EDiskPage::eAtaIdentify).Map(ParseAtaIdentify);
    disk.isSmartEnabled = ToldBy(identity, [](const TAtaIdentity& told) { return std::optional(told.isSmartEnabled); });
    disk.attributeListing = UnlessUnreadable(identity);
    if (!identity || !identity->isSmartEnabled) {
        disk.assessment =
            TFact<EAssessment>::Missing(identity ? EAbsence::eNotSupported : identity.absence, identity.source);
        return;
    }
    ReadSmart(pages, disk);
    if (identity->hasLogs) ReadStatistics(pages, identity->sectorSize, disk);
}
