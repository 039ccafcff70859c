#include "model/Qualifiers.h"

#include <sstream>

#include "base/Text.h"
#include "kyr/ICIMAllowQualifiers.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TCIMQualifier.h"
#include "model/ClassNames.h"

namespace {

// Null if there is none.
const TCIMQualifier* FindQualifier(const ICIMAllowQualifiers& carrier, const char* name) {
    for (const TCIMQualifier* qualifier : carrier.EnumerateQualifiers())
        if (IsSameName(qualifier->GetName(), name)) return qualifier;
    return nullptr;
}

template <typename TCarrier>
bool IsMarked(const TCarrier& carrier, const char* name) {
    const TCIMQualifier* const mark = carrier.FindQualifier(name);
    return mark != nullptr && !mark->GetValue().IsNull() && mark->GetValue() == TCIMValue(true);
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
    std::istringstream words(QualifierString(carrier, "Description"));
    std::string text, word;
    while (words >> word) text += (text.empty() ? "" : " ") + VisibleText(word);
    return text;
}

std::string OwnShortDescriptionOf(const ICIMAllowQualifiers& carrier) {
    const TCIMQualifier* const description = FindQualifier(carrier, "Description");
    if (description == nullptr || description->GetPropagated()) return "";
    const std::string text = DescriptionOf(carrier);
    const size_t end = text.find(". ");
    return end == std::string::npos ? text : text.substr(0, end + 1);
}

bool IsKey(const TCIMPropertyDecl& declaration) { return IsMarked(declaration, "Key"); }

bool IsVolatile(const TCIMPropertyDecl& declaration) { return IsMarked(declaration, "Volatile"); }

bool IsCompanion(const TCIMPropertyDecl& declaration) { return IsMarked(declaration, "Companion"); }

bool IsMarkedDontCollect(const TCIMClass& cls) { return IsMarked(cls, "DONTCOLLECT"); }
