#include "model/Qualifiers.h"

#include <sstream>

#include "base/Text.h"
#include "kyr/ICIMAllowQualifiers.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "model/ClassNames.h"

namespace {

// Null if there is none of that name. The interface itself can only list all of them, which takes longer.
const TCIMQualifier* FindQualifier(const ICIMAllowQualifiers& carrier, const char* name) {
    if (const auto* const declaration = dynamic_cast<const TCIMPropertyDecl*>(&carrier))
        return declaration->FindQualifier(name);
    if (const auto* const cls = dynamic_cast<const TCIMClass*>(&carrier)) return cls->FindQualifier(name);
    for (const TCIMQualifier* qualifier : carrier.EnumerateQualifiers())
        if (IsSameName(qualifier->GetName(), name)) return qualifier;
    return nullptr;
}

template <typename TCarrier>
bool IsTrue(const TCarrier& carrier, const char* name) {
    const TCIMQualifier* const qualifier = carrier.FindQualifier(name);
    return qualifier != nullptr && !qualifier->GetValue().IsNull() && qualifier->GetValue() == TCIMValue(true);
}

}  // namespace

TCIMValue QualifierValue(const ICIMAllowQualifiers& carrier, const char* name, TCIMValue::TCIMType::ECIMType type) {
    const TCIMQualifier* const qualifier = FindQualifier(carrier, name);
    const bool suits = qualifier != nullptr && qualifier->GetType() == type;
    return suits ? qualifier->GetValue() : TCIMValue(type, 0);
}

std::string QualifierString(const ICIMAllowQualifiers& carrier, const char* name) {
    const TCIMValue value = QualifierValue(carrier, name, TCIMValue::TCIMType::eCIMString);
    return value.IsNull() ? "" : static_cast<std::string>(value);
}

std::string QualifierText(const ICIMAllowQualifiers& carrier, const char* name) {
    return VisibleText(QualifierString(carrier, name));
}

std::vector<std::string> QualifierTexts(const ICIMAllowQualifiers& carrier, const char* name) {
    std::vector<std::string> texts;
    const TCIMValue value = QualifierValue(carrier, name, kStringArray);
    if (value.IsNull()) return texts;
    for (const TCIMValue& element : static_cast<std::vector<TCIMValue>&>(value))
        texts.push_back(element.IsNull() ? "" : VisibleText(element.ToString(10)));
    return texts;
}

std::string DescriptionOf(const ICIMAllowQualifiers& carrier) {
    std::istringstream description(QualifierString(carrier, "Description"));
    std::vector<std::string> words;
    for (std::string word; description >> word;) words.push_back(VisibleText(word));
    return Join(words, " ");
}

std::string OwnShortDescriptionOf(const ICIMAllowQualifiers& carrier) {
    const TCIMQualifier* const description = FindQualifier(carrier, "Description");
    if (description == nullptr || description->GetPropagated()) return "";
    const std::string text = DescriptionOf(carrier);
    const size_t end = text.find(". ");
    return end == std::string::npos ? text : text.substr(0, end + 1);
}

bool IsKey(const TCIMPropertyDecl& declaration) { return IsTrue(declaration, "Key"); }

bool IsVolatile(const TCIMPropertyDecl& declaration) { return IsTrue(declaration, "Volatile"); }

bool IsCompanion(const TCIMPropertyDecl& declaration) { return IsTrue(declaration, "Companion"); }

std::string UnitOf(const TCIMPropertyDecl& declaration) {
    const std::string unit = QualifierText(declaration, "Units");
    return unit == "Identifier" ? "" : unit;
}

bool IsCounted(const TCIMPropertyDecl& declaration) { return !UnitOf(declaration).empty(); }

bool IsIdentity(const TCIMPropertyDecl& declaration) { return IsTrue(declaration, "Identity"); }

bool IsDontCollect(const TCIMClass& cls) { return IsTrue(cls, "DONTCOLLECT"); }
bool IsOptional(const TCIMClass& cls) { return IsTrue(cls, "Optional"); }
