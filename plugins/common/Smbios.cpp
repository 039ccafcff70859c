#include "Smbios.h"

#include <algorithm>

namespace {

constexpr uint8_t kEndOfTable = 127;
constexpr size_t kHeaderSize = 4;
constexpr size_t kEntryPointLimit = 64;
constexpr size_t kTableLimit = 1 << 19;  // far larger than real tables

// The position of the double NUL that ends the texts of a structure.
size_t FindTextsEnd(std::string_view table, size_t fieldsEnd) {
    return std::min(table.find(std::string_view("\0\0", 2), fieldsEnd), table.size());
}

std::string_view NthText(std::string_view texts, uint8_t number) {
    while (--number > 0) {
        const size_t end = texts.find('\0');
        if (end == std::string_view::npos) return "";
        texts.remove_prefix(end + 1);
    }
    return texts.substr(0, texts.find('\0'));
}

// What is left of the table behind the end marker is of no concern.
std::string_view ParseStructures(std::string_view table, std::vector<TSmbiosStructure>& structures) {
    while (table.size() >= kHeaderSize) {
        const size_t length = static_cast<uint8_t>(table[1]);
        if (length < kHeaderSize || length > table.size()) break;
        const size_t end = FindTextsEnd(table, length);
        structures.emplace_back(table.substr(0, length), table.substr(length, end - length));
        if (structures.back().GetType() == kEndOfTable) return "";
        if (end == table.size()) break;
        table.remove_prefix(end + 2);
    }
    return table;
}

}  // namespace

std::optional<std::string_view> TSmbiosStructure::FindText(size_t offset) const {
    const std::optional<uint8_t> number = FindNumber<uint8_t>(offset);
    if (!number) return std::nullopt;
    return *number == 0 ? std::string_view() : NthText(fTexts, *number);
}

std::vector<std::string_view> TSmbiosStructure::GetTexts() const { return Split(fTexts, '\0'); }

std::optional<size_t> ParseSmbiosEntryPoint(std::string_view content) {
    if (StartsWith(content, "_SM_")) return FindLittleEndian<uint16_t>(content, 0x16);
    if (StartsWith(content, "_SM3_")) return FindLittleEndian<uint32_t>(content, 0x0C);
    return std::nullopt;
}

std::vector<TSmbiosStructure> ParseSmbiosTable(std::string_view table) {
    std::vector<TSmbiosStructure> structures;
    ParseStructures(table, structures);
    return structures;
}

bool IsWholeSmbiosTable(std::string_view table) {
    std::vector<TSmbiosStructure> structures;
    const std::string_view rest = ParseStructures(table, structures);
    return !structures.empty() && rest.find_first_not_of('\0') == std::string_view::npos;
}

TFact<std::string> ReadSmbiosTable(const TSystemRoot& root) {
    TFact<std::string> table = root.ReadFile(kSmbiosTable, kTableLimit);
    if (!table) return table;
    const TFact<std::string> entryPoint =
        root.ReadFile("/sys/firmware/dmi/tables/smbios_entry_point", kEntryPointLimit);
    const std::optional<size_t> length = ParseSmbiosEntryPoint(entryPoint.ValueOr(""));
    if (length && *length < table->size()) table.value->resize(*length);
    return table;
}
