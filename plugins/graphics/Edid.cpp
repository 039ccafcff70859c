#include "Edid.h"

#include <cmath>
#include <numeric>

#include "Placeholder.h"
#include "Text.h"

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kHeader = "\x00\xff\xff\xff\xff\xff\xff\x00"sv;
constexpr size_t kBlock = 128;
constexpr size_t kDescriptors = 54;
constexpr size_t kDescriptor = 18;
constexpr size_t kNumberOfDescriptors = 4;
constexpr uint8_t kDisplayId = 0x70;  // the kind of an extension
constexpr uint32_t kWidest = 4095;    // in the first block
constexpr uint32_t kTenKiloHertz = 10'000;

// Of the descriptors that are no timings.
constexpr uint8_t kSerialNumber = 0xff;
constexpr uint8_t kText = 0xfe;
constexpr uint8_t kModel = 0xfc;

uint32_t Byte(std::string_view bytes, size_t offset) { return static_cast<uint8_t>(bytes[offset]); }
uint32_t Word(std::string_view bytes, size_t offset) { return Byte(bytes, offset) | Byte(bytes, offset + 1) << 8; }

// The bytes of a block add up to a multiple of 256.
bool IsSumRight(std::string_view block) {
    return std::accumulate(block.begin(), block.end(), 0u, [](unsigned sum, char c) { return sum + uint8_t(c); }) %
               256 ==
           0;
}

// Five bits for each of three letters, the first one in the highest.
std::string ManufacturerId(std::string_view bytes) {
    const uint32_t packed = Byte(bytes, 8) << 8 | Byte(bytes, 9);
    std::string id;
    for (const int shift : {10, 5, 0}) id += static_cast<char>('A' - 1 + (packed >> shift & 0x1f));
    const bool hasLetters = id.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ") == std::string::npos;
    return hasLetters ? id : "";
}

// None, a byte that is repeated, or a number that counts up stand for a number that was never set.
std::optional<uint32_t> IdSerialNumber(uint32_t number) {
    const bool isFiller = number == 0x01010101 || number == UINT32_MAX || IsPlaceholder(std::to_string(number));
    return isFiller ? std::nullopt : std::optional(number);
}

void ReadDate(std::string_view bytes, TEdid& edid) {
    constexpr uint8_t kModelYear = 0xff;
    const uint32_t week = Byte(bytes, 16), year = 1990 + Byte(bytes, 17);
    (week == kModelYear ? edid.modelYear : edid.year) = static_cast<uint16_t>(year);
    if (week >= 1 && week <= 54) edid.week = static_cast<uint8_t>(week);
}

void ReadInput(std::string_view bytes, TEdid& edid) {
    const uint32_t input = Byte(bytes, 20), depth = input >> 4 & 7, link = input & 0xf;
    edid.isDigital = (input & 0x80) != 0;
    const bool tellsMore = edid.isDigital && Byte(bytes, 18) == 1 && Byte(bytes, 19) >= 4;
    if (!tellsMore) return;
    if (depth >= 1 && depth <= 6) edid.bitsPerColor = static_cast<uint16_t>(4 + 2 * depth);
    if (link >= 1 && link <= 5) edid.digitalInterface = static_cast<uint16_t>(link);
}

void SetSize(TEdid& edid, uint32_t width, uint32_t height) {
    edid.width = width;
    edid.height = height;
}

// The lines of a frame are one more than twice those of a field if they are interlaced.
double Refresh(double clock, uint32_t columns, uint32_t lines, bool interlaced) {
    const double all = columns * (lines + (interlaced ? 0.5 : 0.0));
    return all > 0 ? clock / all : 0;
}

std::optional<TEdidTiming> DetailedTiming(std::string_view bytes) {
    const uint32_t width = Byte(bytes, 2) | (Byte(bytes, 4) & 0xf0) << 4;
    const uint32_t height = Byte(bytes, 5) | (Byte(bytes, 7) & 0xf0) << 4;
    if (width == 0 || height == 0) return std::nullopt;
    const uint32_t columns = width + (Byte(bytes, 3) | (Byte(bytes, 4) & 0x0f) << 8);
    const uint32_t lines = height + (Byte(bytes, 6) | (Byte(bytes, 7) & 0x0f) << 8);
    const bool interlaced = (Byte(bytes, 17) & 0x80) != 0;
    return TEdidTiming{width, interlaced ? 2 * height : height,
                       Refresh(Word(bytes, 0) * double(kTenKiloHertz), columns, lines, interlaced), interlaced};
}

bool IsNear(uint32_t millimetres, uint32_t centimetres) {
    constexpr uint32_t kTolerance = 10;
    return millimetres != 0 && millimetres + kTolerance >= centimetres * 10 &&
           millimetres <= centimetres * 10 + kTolerance;
}

// A timing tells the size in millimetres; many monitors have none there, or 16 and 9, or that of another model. So it
// only counts if it fits the size in centimetres. One of these alone is the shape of the image.
void ReadSize(std::string_view bytes, std::string_view timing, TEdid& edid) {
    const uint32_t width = Byte(bytes, 21), height = Byte(bytes, 22);
    if (width == 0 || height == 0) return;
    SetSize(edid, width * 10, height * 10);
    if (timing.empty()) return;
    const uint32_t fineWidth = Byte(timing, 12) | (Byte(timing, 14) & 0xf0) << 4;
    const uint32_t fineHeight = Byte(timing, 13) | (Byte(timing, 14) & 0x0f) << 8;
    if (IsNear(fineWidth, width) && IsNear(fineHeight, height)) SetSize(edid, fineWidth, fineHeight);
}

std::string DescriptorText(std::string_view descriptor) {
    const std::string_view text = descriptor.substr(5);
    return std::string(Trim(text.substr(0, text.find_first_of("\n\0"sv))));
}

void ReadText(std::string_view descriptor, TEdid& edid) {
    const std::string text = DescriptorText(descriptor);
    const uint32_t kind = Byte(descriptor, 3);
    if (text.empty()) return;
    if (kind == kModel && edid.model.empty()) edid.model = text;
    if (kind == kText) edid.otherTexts.push_back(text);
    if (kind == kSerialNumber && edid.serialNumber.empty() && !IsPlaceholder(text)) edid.serialNumber = text;
}

void ReadDescriptors(std::string_view bytes, TEdid& edid) {
    std::string_view preferred;
    for (size_t i = 0; i < kNumberOfDescriptors; ++i) {
        const std::string_view descriptor = bytes.substr(kDescriptors + i * kDescriptor, kDescriptor);
        if (Word(descriptor, 0) == 0)
            ReadText(descriptor, edid);
        else if (preferred.empty())
            preferred = descriptor;
    }
    if (!preferred.empty()) edid.timing = DetailedTiming(preferred);
    ReadSize(bytes, preferred, edid);
}

/// What the DisplayID extensions tell. They describe what is too wide or high for the first block. A preferred timing
/// that is not may be that of one of the tiles of a picture.
struct TDisplayId {
    uint32_t nativeWidth = 0;
    uint32_t nativeHeight = 0;
    std::vector<TEdidTiming> timings;
    std::optional<TEdidTiming> preferred;
};

void ReadDisplayIdTiming(std::string_view bytes, uint32_t unit, bool canPrefer, TDisplayId& told) {
    const double clock = (1.0 + (Word(bytes, 0) | Byte(bytes, 2) << 16)) * unit;
    const uint32_t flags = Byte(bytes, 3), width = 1 + Word(bytes, 4), height = 1 + Word(bytes, 12);
    const bool interlaced = (flags & 0x10) != 0;
    if (interlaced) return;
    told.timings.push_back(
        {width, height, Refresh(clock, width + 1 + Word(bytes, 6), height + 1 + Word(bytes, 14), false), false});
    const bool isNew = width > kWidest || height > kWidest;
    if (canPrefer && (flags & 0x80) != 0 && isNew && !told.preferred) told.preferred = told.timings.back();
}

// From revision 2 of timings on, the flag that a timing is preferred has another meaning.
void ReadDisplayIdData(uint32_t kind, uint32_t revision, std::string_view data, TDisplayId& told) {
    constexpr size_t kTiming = 20;
    const bool isParameters = kind == 0x01 || kind == 0x21, isTimings = kind == 0x03 || kind == 0x22;
    if (isParameters && told.nativeWidth == 0 && data.size() >= 8 && Word(data, 4) != 0 && Word(data, 6) != 0) {
        told.nativeWidth = Word(data, 4);
        told.nativeHeight = Word(data, 6);
    }
    for (; isTimings && data.size() >= kTiming; data.remove_prefix(kTiming))
        ReadDisplayIdTiming(data, kind == 0x03 ? kTenKiloHertz : 1000, revision < 2, told);
}

void ReadDisplayId(std::string_view block, TDisplayId& told) {
    std::string_view data = block.substr(5, std::min<size_t>(Byte(block, 2), kBlock - 7));
    while (data.size() >= 3) {
        const size_t length = Byte(data, 2);
        if (length > data.size() - 3) return;
        ReadDisplayIdData(Byte(data, 0), Byte(data, 1) & 7, data.substr(3, length), told);
        data.remove_prefix(3 + length);
    }
}

// The refresh rate of a native resolution is that of a timing which has this resolution.
void PreferDisplayId(const TDisplayId& told, TEdid& edid) {
    if (told.preferred) edid.timing = told.preferred;
    const auto isNative = [&told](const TEdidTiming& timing) {
        return timing.width == told.nativeWidth && timing.height == told.nativeHeight;
    };
    if (told.nativeWidth == 0 || (edid.timing && isNative(*edid.timing))) return;
    edid.timing = TEdidTiming{told.nativeWidth, told.nativeHeight, 0, false};
    for (const TEdidTiming& timing : told.timings)
        if (isNative(timing)) {
            edid.timing = timing;
            return;
        }
}

void ReadExtensions(std::string_view bytes, TEdid& edid) {
    TDisplayId told;
    edid.extensions = static_cast<uint8_t>(Byte(bytes, kBlock - 2));
    for (size_t i = 1; i <= edid.extensions && (i + 1) * kBlock <= bytes.size(); ++i) {
        const std::string_view block = bytes.substr(i * kBlock, kBlock);
        if (!IsSumRight(block)) edid.state = EEdidState::eWrongChecksum;
        edid.extensionKinds.push_back(static_cast<uint16_t>(Byte(block, 0)));
        if (Byte(block, 0) == kDisplayId) ReadDisplayId(block, told);
    }
    if (edid.extensionKinds.size() < edid.extensions) edid.state = EEdidState::eTruncated;
    PreferDisplayId(told, edid);
}

}  // namespace

std::optional<TEdid> ParseEdid(std::string_view bytes) {
    if (bytes.size() < kBlock || bytes.substr(0, kHeader.size()) != kHeader) return std::nullopt;
    TEdid edid;
    if (!IsSumRight(bytes.substr(0, kBlock))) edid.state = EEdidState::eWrongChecksum;
    edid.version = std::to_string(Byte(bytes, 18)) + '.' + std::to_string(Byte(bytes, 19));
    edid.manufacturerId = ManufacturerId(bytes);
    edid.productCode = static_cast<uint16_t>(Word(bytes, 10));
    edid.idSerialNumber = IdSerialNumber(Word(bytes, 12) | Word(bytes, 14) << 16);
    ReadDate(bytes, edid);
    ReadInput(bytes, edid);
    if (const uint32_t gamma = Byte(bytes, 23); gamma != 0xff) edid.gamma = 1 + gamma / 100.0;
    ReadDescriptors(bytes, edid);
    ReadExtensions(bytes, edid);
    return edid;
}

double DiagonalInches(uint32_t width, uint32_t height) {
    constexpr double kMillimetres = 25.4;
    return std::round(std::hypot(width, height) / kMillimetres * 10) / 10;
}
