#include "model/Provenance.h"

#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "model/Qualifiers.h"

namespace {

/// An element of a companion property: "property: note".
using TEntry = TAbsenceNote;

std::vector<TEntry> EntriesOf(const TCIMInstance& instance, const char* companion) {
    std::vector<TEntry> entries;
    const TCIMProperty* const property = instance.FindProperty(companion);
    if (property == nullptr || !property->IsArray()) return entries;
    const TCIMValue value = property->GetValue();
    if (value.IsNull()) return entries;
    for (const TCIMValue& element : static_cast<std::vector<TCIMValue>&>(value)) {
        if (element.IsNull() || element.GetType() != TCIMValue::TCIMType::eCIMString) continue;
        const std::string text = element;
        if (const size_t colon = text.find(": "); colon != std::string::npos)
            entries.push_back({text.substr(0, colon), text.substr(colon + 2)});
    }
    return entries;
}

/// The words that plugins may use in UnavailableValues and NullMeans, alone or followed by ": source" or ": text".
struct TAbsenceWord {
    const char* word;
    EReason code;
};

constexpr TAbsenceWord kAbsenceWords[] = {
    {"not present", EReason::eNotPresent},      {"no permission", EReason::eNoPermission},
    {"not supported", EReason::eNotSupported},  {"read error", EReason::eReadError},
    {"does not apply", EReason::eDoesNotApply}, {"not reported", EReason::eNotReported}};

TReason AbsenceIn(const TEntry& entry, const TCIMInstance& instance) {
    const size_t colon = entry.note.find(": ");
    TReason reason;
    reason.code = CodeOfAbsence(entry.note);
    reason.className = instance.GetClass()->GetName();
    reason.property = entry.property;
    if (colon != std::string::npos) reason.file = entry.note.substr(colon + 2);
    return reason;
}

}  // namespace

std::vector<TAbsenceNote> AbsenceNotesOf(const TCIMInstance& instance) {
    return EntriesOf(instance, "UnavailableValues");
}

std::vector<TReason> AbsencesOf(const TCIMInstance& instance) {
    std::vector<TReason> reasons;
    for (const TEntry& entry : AbsenceNotesOf(instance))
        if (const TReason reason = AbsenceIn(entry, instance)) reasons.push_back(reason);
    return reasons;
}

std::string NullMeaningOf(const TCIMPropertyDecl& declaration) { return QualifierText(declaration, "NullMeans"); }

EReason CodeOfAbsence(const std::string& text) {
    const std::string word = text.substr(0, text.find(": "));
    for (const TAbsenceWord& each : kAbsenceWords)
        if (each.word == word) return each.code;
    return EReason::eNone;
}

TProvenance::TProvenance(const TCIMInstance& instance)
    : fSources(Read(instance, "ValueSources")), fAbsences(Read(instance, "UnavailableValues")) {}

TProvenance::TNotes TProvenance::Read(const TCIMInstance& instance, const char* companion) {
    TNotes notes;
    for (const auto& [property, note] : EntriesOf(instance, companion)) notes.emplace(property, note);
    return notes;
}

std::string TProvenance::Find(const TNotes& notes, const std::string& property) {
    const auto found = notes.find(property);
    return found == notes.end() ? "" : found->second;
}
