#include "difference/Identity.h"

#include <algorithm>
#include <cctype>
#include <set>
#include <utility>

#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "model/ClassNames.h"
#include "model/Qualifiers.h"
#include "model/Values.h"

namespace {

// In small letters, without all that is neither letter nor digit.
constexpr const char* kPlaceholders[] = {
    "none",      "unknown",       "notspecified",    "notavailable",       "notapplicable",
    "default",   "defaultstring", "tobefilledbyoem", "0123456789",         "1234567890",
    "123456789", "12345678",      "serialnumber",    "systemserialnumber", "na",
    "oem"};

std::string LettersAndDigits(const std::string& text) {
    std::string plain;
    for (const char c : text)
        if (std::isalnum(static_cast<unsigned char>(c)) != 0)
            plain += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return plain;
}

// Of a property that is no text: a number, or nothing.
std::string NumberText(const TCIMProperty& property) {
    return property.GetValue().IsNull() || property.IsArray() ? "" : PlainText(property.GetValue());
}

bool IsText(const TCIMProperty& property) { return property.GetType() == TCIMValue::TCIMType::eCIMString; }

// Empty if there is none that says anything.
std::string TextIn(const TCIMProperty& property) {
    const TCIMValue value = property.GetValue();
    std::string text = value.IsNull() ? "" : static_cast<std::string>(value);
    return IsPlaceholder(text) ? "" : text;
}

}  // namespace

// A single letter or digit, however often, is the filling of an empty field.
bool IsPlaceholder(const std::string& text) {
    const std::string plain = LettersAndDigits(text);
    if (std::set<char>(plain.begin(), plain.end()).size() < 2) return true;
    return std::any_of(std::begin(kPlaceholders), std::end(kPlaceholders),
                       [&plain](const char* placeholder) { return plain == placeholder; });
}

std::vector<std::string> IdentityPropertiesOf(const TCIMClass& before, const TCIMClass& after) {
    std::set<std::string, TNameLess> names;
    for (const TCIMClass* cls : {&before, &after})
        for (const TCIMPropertyDecl* declaration : cls->EnumeratePropertyDecls())
            if (IsIdentity(*declaration)) names.insert(declaration->GetName());
    return {names.begin(), names.end()};
}

TIdentities::TIdentities(const TCIMClass& cls, std::vector<std::string> properties)
    : fProperties(std::move(properties)) {
    if (fProperties.empty()) return;
    for (const TCIMInstance* instance : cls.EnumerateInstances(false))
        for (const std::string& name : fProperties) Enter(name, *instance);
}

void TIdentities::Enter(const std::string& name, const TCIMInstance& instance) {
    const TCIMProperty* const property = instance.FindProperty(name);
    if (property == nullptr || !IsText(*property)) return;
    const std::string text = TextIn(*property);
    if (text.empty()) return;
    // Kernels have written the same UUID in capitals and in small letters.
    const auto [owner, isFirst] = fOwners[name].emplace(LowerCase(text), &instance);
    if (!isFirst) owner->second = nullptr;
}

std::string TIdentities::ValueOf(const TCIMInstance& instance, const std::string& name) const {
    const TCIMProperty* const property = instance.FindProperty(name);
    if (property == nullptr) return "";
    if (!IsText(*property)) return NumberText(*property);
    std::string text = TextIn(*property);
    return Find(name, text) == &instance ? text : "";
}

const TCIMInstance* TIdentities::Find(const std::string& property, const std::string& text) const {
    const auto owners = fOwners.find(property);
    if (owners == fOwners.end()) return nullptr;
    const auto owner = owners->second.find(LowerCase(text));
    return owner == owners->second.end() ? nullptr : owner->second;
}

bool AreDifferentThings(const TIdentities& before, const TCIMInstance& old, const TIdentities& after,
                        const TCIMInstance& present) {
    return std::any_of(before.Properties().begin(), before.Properties().end(), [&](const std::string& property) {
        const std::string was = before.ValueOf(old, property);
        if (was.empty()) return false;
        const std::string is = after.ValueOf(present, property);
        return !is.empty() && !IsSameName(was, is);
    });
}
