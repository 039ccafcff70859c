#include "text/Provenance.h"

#include <vector>

#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"

TProvenance::TProvenance(const TCIMInstance& instance)
    : fSources(Read(instance, "ValueSources")), fAbsences(Read(instance, "UnavailableValues")) {}

// Each element is "property: note".
TProvenance::TNotes TProvenance::Read(const TCIMInstance& instance, const char* companion) {
    TNotes notes;
    const TCIMProperty* const property = instance.FindProperty(companion);
    if (property == nullptr || !property->IsArray()) return notes;
    const TCIMValue value = property->GetValue();
    if (value.IsNull()) return notes;
    for (const TCIMValue& element : static_cast<std::vector<TCIMValue>&>(value)) {
        if (element.IsNull() || element.GetType() != TCIMValue::TCIMType::eCIMString) continue;
        const std::string text = element;
        if (const size_t colon = text.find(": "); colon != std::string::npos)
            notes.emplace(text.substr(0, colon), text.substr(colon + 2));
    }
    return notes;
}

std::string TProvenance::Find(const TNotes& notes, const std::string& property) {
    const auto found = notes.find(property);
    return found == notes.end() ? "" : found->second;
}
