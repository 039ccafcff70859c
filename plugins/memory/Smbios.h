#ifndef KYR_PLUGINS_MEMORY_SMBIOS_H
#define KYR_PLUGINS_MEMORY_SMBIOS_H

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

/// One structure of the firmware's table: a type, a handle, fields at fixed offsets, and texts behind them. Looks into
/// the table that it was parsed from. The offset of a field counts from the structure's first byte; a structure of an
/// older firmware ends before the fields that came later.
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

    /// The text whose number stands at the offset, as the firmware has it. A field that refers to none, or to one that
    /// is not there, has the empty text; a field that is not there has nothing.
    std::optional<std::string_view> FindText(size_t offset) const;

private:
    std::string_view fFields;
    std::string_view fTexts;
};

/// How long the table is at most, by an entry point of the 32-bit or the 64-bit kind; nothing for any other content.
std::optional<size_t> ParseSmbiosEntryPoint(std::string_view content);

/// The structures up to the end marker, the end of the table, or the first that cannot be one.
std::vector<TSmbiosStructure> ParseSmbiosTable(std::string_view table);

/// The table as the entry point bounds it; all that there is if the entry point cannot be read.
TFact<std::string> ReadSmbiosTable(const TSystemRoot& root);

#endif
