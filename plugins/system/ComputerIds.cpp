#include <algorithm>
#include <map>

#include "FirmwareIds.h"
#include "HardwareIds.h"
#include "SystemFacts.h"

namespace {

// 70ffd812-4c7f-4c7d-0000-000000000000
constexpr TUuid kNamespace = {0x70, 0xFF, 0xD8, 0x12, 0x4C, 0x7F, 0x4C, 0x7D};

enum EPart : unsigned {
    eMaker = 1,
    eFamily = 2,
    eProduct = 4,
    eSku = 8,
    eBios = 16,  ///< its vendor, version, and major and minor release
    eBoard = 32,
    eEnclosure = 64
};

/// HardwareID-0 to HardwareID-14.
constexpr unsigned kIds[] = {eMaker | eFamily | eProduct | eSku | eBios,
                             eMaker | eFamily | eProduct | eBios,
                             eMaker | eProduct | eBios,
                             eMaker | eFamily | eProduct | eSku | eBoard,
                             eMaker | eFamily | eProduct | eSku,
                             eMaker | eFamily | eProduct,
                             eMaker | eSku | eBoard,
                             eMaker | eSku,
                             eMaker | eProduct | eBoard,
                             eMaker | eProduct,
                             eMaker | eFamily | eBoard,
                             eMaker | eFamily,
                             eMaker | eEnclosure,
                             eMaker | eBoard,
                             eMaker};

// Catalogues leave out zeros in front, such as that of the SKU "0A3F".
std::string WithoutLeadingZeros(const std::string& text) {
    return text.substr(std::min(text.find_first_not_of('0'), text.size()));
}

// "2.10" as "02&0a".
std::string ReleaseText(const std::string& text) {
    const size_t point = text.find('.');
    if (point == std::string::npos) return "";
    const auto major = ParseNumber<uint8_t>(text.substr(0, point)),
               minor = ParseNumber<uint8_t>(text.substr(point + 1));
    return major && minor ? HexText(2, *major) + '&' + HexText(2, *minor) : "";
}

std::string EnclosureText(const std::string& text) {
    const auto kind = ParseNumber<uint8_t>(text);
    return kind ? HexText(1, *kind) : "";
}

struct TField {
    EPart part;
    const char* file;
    std::string (*convert)(const std::string& text);
};

/// In the order in which an id has them.
constexpr TField kFields[] = {{eMaker, "sys_vendor", WithoutLeadingZeros},
                              {eFamily, "product_family", WithoutLeadingZeros},
                              {eProduct, "product_name", WithoutLeadingZeros},
                              {eSku, "product_sku", WithoutLeadingZeros},
                              {eBios, "bios_vendor", WithoutLeadingZeros},
                              {eBios, "bios_version", WithoutLeadingZeros},
                              {eBios, "bios_release", ReleaseText},
                              {eBoard, "board_vendor", WithoutLeadingZeros},
                              {eBoard, "board_name", WithoutLeadingZeros},
                              {eEnclosure, "chassis_type", EnclosureText}};

using TTexts = std::map<std::string_view, std::string>;

// Also what other properties leave out as a placeholder: the ids are made of what the firmware has.
TTexts ReadTexts(const TSystemRoot& root) {
    TTexts texts;
    for (const TField& field : kFields)
        texts[field.file] = field.convert(root.ReadText(std::string("/sys/class/dmi/id/") + field.file).ValueOr(""));
    return texts;
}

bool IsAscii(std::string_view text) {
    for (const char c : text)
        if ((c & 0x80) != 0) return false;
    return true;
}

// Empty if one of the parts is missing or is not ASCII, for which no encoding is agreed on.
std::string Join(unsigned parts, const TTexts& texts) {
    std::string joined;
    for (const TField& field : kFields) {
        if ((parts & field.part) == 0) continue;
        const std::string& text = texts.at(field.file);
        if (text.empty() || !IsAscii(text)) return "";
        joined += (joined.empty() ? "" : "&") + text;
    }
    return joined;
}

// Of ASCII, in the order of bytes that the ids are made in.
std::string Utf16(std::string_view text) {
    std::string wide;
    for (const char c : text) wide += {c, '\0'};
    return wide;
}

}  // namespace

void ReadComputerIds(const TSystemRoot& root, TSystemFacts& facts) {
    const TTexts texts = ReadTexts(root);
    std::vector<std::string> ids;
    for (const unsigned parts : kIds)
        if (const std::string text = Join(parts, texts); !text.empty())
            ids.push_back(NameUuid(kNamespace, Utf16(text)));
    using TIds = TFact<std::vector<std::string>>;
    const TFact<std::string>& maker = facts.manufacturer;
    facts.firmwareIds = ids.empty() ? TIds::Missing(maker.absence, maker.source) : TIds::Of(std::move(ids), "");
}
