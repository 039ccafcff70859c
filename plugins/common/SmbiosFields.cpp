#include "SmbiosFields.h"

#include "Placeholder.h"

TFact<uint16_t> SmbiosEnumeration(const TSmbiosStructure& structure, size_t offset) {
    return SmbiosNumber<uint8_t, uint16_t>(structure, offset, {0});
}

TFact<std::string> SmbiosText(const TSmbiosStructure& structure, size_t offset) {
    const std::optional<std::string_view> text = structure.FindText(offset);
    if (!text) return SmbiosMissing<std::string>(EAbsence::eNotSupported);
    std::string trimmed(Trim(*text));
    if (trimmed.empty() || IsPlaceholder(trimmed)) return SmbiosMissing<std::string>(EAbsence::eNotPresent);
    return SmbiosFound(std::move(trimmed));
}

std::string SmbiosTag(uint8_t type, size_t index) { return std::to_string(type) + "-" + std::to_string(index); }

TListing SmbiosListing(const TSystemRoot& root, const TFact<std::string>& table) {
    if (table && !IsWholeSmbiosTable(*table)) return TListing::Missing(EAbsence::eReadError, table.source);
    if (table || table.absence != EAbsence::eNotPresent) return ListingOf(table);
    const TFact<std::vector<std::string>> dmi = root.ListKind("/sys/class/dmi", "/sys/class/dmi");
    return dmi && !dmi->empty() ? ListingOf(table) : ListingOf(dmi);
}
