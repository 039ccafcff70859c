#ifndef KYR_PLUGINS_COMMON_SMBIOS_H
#define KYR_PLUGINS_COMMON_SMBIOS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "SystemRoot.h"

constexpr const char* kSmbiosTable = "/sys/firmware/dmi/tables/DMI";

template <typename T>
std::optional<T> FindLittleEndian(std::string_view bytes, size_t offset) {
    if (offset + sizeof(T) > bytes.size()) return std::nullopt;
    uint64_t number = 0;
    for (size_t i = sizeof(T); i-- > 0;) number = number << 8 | static_cast<uint8_t>(bytes[offset + i]);
    return static_cast<T>(number);
}

/// A view of one SMBIOS structure: a type, a handle, fields at fixed offsets from its first byte, and texts behind
/// them. It refers to the table that was parsed. Structures of older SMBIOS versions are shorter and lack later fields.
class TSmbiosStructure {
public:
    TSmbiosStructure(std::string_view fields, std::string_view texts) : fFields(fields), fTexts(texts) {}

    uint8_t GetType() const { return static_cast<uint8_t>(fFields[0]); }
    uint16_t GetHandle() const { return *FindNumber<uint16_t>(2); }
    size_t GetLength() const { return fFields.size(); }

    template <typename T>
    std::optional<T> FindNumber(size_t offset) const {
        return FindLittleEndian<T>(fFields, offset);
    }

    /// The text whose number is in the field. Empty if the number is 0 or too great; nothing if the structure lacks the
    /// field.
    std::optional<std::string_view> FindText(size_t offset) const;
    /// All texts, also those that no field refers to.
    std::vector<std::string_view> GetTexts() const;

private:
    std::string_view fFields;
    std::string_view fTexts;
};

/// The (maximum) length of the table in a 32-bit or 64-bit entry point; nothing if the content is neither.
std::optional<size_t> ParseSmbiosEntryPoint(std::string_view content);

/// The structures up to the end marker, the end of the table, or the first malformed one.
std::vector<TSmbiosStructure> ParseSmbiosTable(std::string_view table);

/// Whether nothing is missing: the structures follow each other up to the end marker, or, in tables of the first
/// versions, up to the end of the table.
bool IsWholeSmbiosTable(std::string_view table);

/// The table, cut to the length in the entry point if that can be read.
TFact<std::string> ReadSmbiosTable(const TSystemRoot& root);

#endif
