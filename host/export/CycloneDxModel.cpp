#include "export/CycloneDxModel.h"

#include <cctype>
#include <utility>

#include "difference/Identity.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "model/Values.h"

namespace {

constexpr size_t kAddressDigits = 12;  // of a hardware address

// Where the hexadecimal digits that begin there end. Colons and hyphens behind every two of them belong to them.
size_t EndOfDigits(const std::string& text, size_t at, size_t& digits) {
    for (digits = 0; at < text.size(); at++) {
        const auto c = static_cast<unsigned char>(text[at]);
        const bool isSeparator = (c == ':' || c == '-') && digits % 2 == 0 && digits != 0 && digits < kAddressDigits;
        if (!isSeparator && std::isxdigit(c) == 0) break;
        digits += isSeparator ? 0 : 1;
    }
    return at;
}

// Names of devices may hold a hardware address: "enx00e04c000001", "hid-00:1f:20:00:00:01-battery".
std::string WithoutAddresses(const std::string& text) {
    std::string plain;
    for (size_t at = 0, digits = 0; at < text.size();) {
        const size_t end = EndOfDigits(text, at, digits);
        plain += digits == kAddressDigits ? "*" : text.substr(at, end - at);
        if (digits == kAddressDigits && text[end - 1] == '-') plain += '-';
        at = end;
        if (at < text.size()) plain += text[at++];
    }
    return plain;
}

// Names that firmware and drivers make may hold the serial number: "hid-4C1F22A0-battery". Shorter ones stand in other
// texts by chance.
constexpr const char* kIdentifiers[] = {"SerialNumber", "WWN", "AssetTag", "UUID", "MachineID"};
constexpr size_t kShortestHidden = 6;

std::vector<std::string> IdentifiersOf(const TCIMInstance& instance) {
    std::vector<std::string> identifiers;
    for (const char* name : kIdentifiers) {
        const TCIMProperty* const property = instance.FindProperty(name);
        if (property == nullptr || property->GetValue().IsNull()) continue;
        const std::string text = DisplayText(*property);
        if (text.size() >= kShortestHidden && !IsPlaceholder(text)) identifiers.push_back(text);
    }
    return identifiers;
}

std::string WithoutText(std::string text, const std::string& hidden) {
    for (size_t at = text.find(hidden); at != std::string::npos; at = text.find(hidden, at + 1))
        text.replace(at, hidden.size(), "*");
    return text;
}

}  // namespace

std::string TBom::Add(TBomComponent component, const TCIMInstance* instance) {
    const std::string wanted = component.ref;
    for (size_t number = 2; !fRefs.insert(component.ref).second; number++)
        component.ref = wanted + '#' + std::to_string(number);
    if (instance != nullptr) fInstances.emplace(instance, component.ref);
    fComponents.push_back(std::move(component));
    return fComponents.back().ref;
}

void TBom::AddDependency(const std::string& dependent, const std::string& antecedent) {
    if (dependent != antecedent) fDependencies[dependent].insert(antecedent);
}

std::string TBom::RefOf(const TCIMInstance* instance) const {
    const auto found = fInstances.find(instance);
    return found == fInstances.end() ? "" : found->second;
}

TBomValues::TBomValues(const TCIMInstance& instance, bool identifiers)
    : fInstance(instance),
      fProvenance(instance),
      fIdentifiers(identifiers),
      fHidden(identifiers ? std::vector<std::string>() : IdentifiersOf(instance)) {}

std::string TBomValues::Get(const char* name) const {
    const TCIMProperty* const property = fInstance.FindProperty(name);
    if (property == nullptr || property->GetValue().IsNull() || !fProvenance.AbsenceOf(name).empty()) return "";
    std::string text = DisplayText(*property);
    if (fIdentifiers) return text;
    for (const std::string& hidden : fHidden) text = WithoutText(text, hidden);
    return WithoutAddresses(text);
}

std::string TBomValues::GetFilled(const char* property) const {
    const std::string text = Get(property);
    return IsPlaceholder(text) ? "" : text;
}

std::string TBomValues::FirstOf(const std::vector<const char*>& properties) const {
    for (const char* property : properties)
        if (const std::string text = Get(property); !text.empty()) return text;
    return "";
}

std::string TBomValues::FirstFilled(const std::vector<const char*>& properties) const {
    for (const char* property : properties)
        if (const std::string text = GetFilled(property); !text.empty()) return text;
    return "";
}
