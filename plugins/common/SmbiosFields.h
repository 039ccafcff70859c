#ifndef KYR_PLUGINS_COMMON_SMBIOSFIELDS_H
#define KYR_PLUGINS_COMMON_SMBIOSFIELDS_H

#include <algorithm>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

#include "Smbios.h"

// The fields of SMBIOS structures as facts. A field that the structure lacks is "not supported"; one that says
// "unknown", or that its maker never filled, is "not present".

template <typename T>
TFact<T> SmbiosMissing(EAbsence absence) {
    return TFact<T>::Missing(absence, kSmbiosTable);
}

template <typename T>
TFact<T> SmbiosFound(T value) {
    return TFact<T>::Of(std::move(value), kSmbiosTable);
}

template <typename TField, typename TResult = TField>
TFact<TResult> SmbiosNumber(const TSmbiosStructure& structure, size_t offset,
                            std::initializer_list<TField> unknown = {}) {
    const std::optional<TField> number = structure.FindNumber<TField>(offset);
    if (!number) return SmbiosMissing<TResult>(EAbsence::eNotSupported);
    if (std::find(unknown.begin(), unknown.end(), *number) != unknown.end())
        return SmbiosMissing<TResult>(EAbsence::eNotPresent);
    return SmbiosFound<TResult>(*number);
}

/// A number of one byte that stands for a word; 0 stands for none.
TFact<uint16_t> SmbiosEnumeration(const TSmbiosStructure& structure, size_t offset);
TFact<std::string> SmbiosText(const TSmbiosStructure& structure, size_t offset);

/// The type of a structure and its index among those of this type, as in /sys/firmware/dmi/entries.
std::string SmbiosTag(uint8_t type, size_t index);

/// Calls the function with each structure of the type that is not too short, and its tag. The index of the tag counts
/// structures that are too short as well, as the kernel does.
template <typename F>
void ForEachOfType(const std::vector<TSmbiosStructure>& structures, uint8_t type, size_t shortest, F function) {
    size_t index = 0;
    for (const TSmbiosStructure& structure : structures) {
        if (structure.GetType() != type) continue;
        if (structure.GetLength() >= shortest) function(structure, SmbiosTag(type, index));
        ++index;
    }
}

/// Whether the table could be read, to its end. A machine without DMI has none.
TListing SmbiosListing(const TSystemRoot& root, const TFact<std::string>& table);

#endif
