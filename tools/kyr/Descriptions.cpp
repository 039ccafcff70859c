#include "Descriptions.h"

#include <sstream>

#include "SameName.h"
#include "VisibleText.h"
#include "kyr/ICIMAllowQualifiers.h"
#include "kyr/TCIMQualifier.h"

namespace {

// Null if there is none.
const TCIMQualifier* FindQualifier(const ICIMAllowQualifiers& carrier, const char* name) {
    for (const TCIMQualifier* qualifier : carrier.EnumerateQualifiers())
        if (IsSameName(qualifier->GetName(), name)) return qualifier;
    return nullptr;
}

// A NULL if there is none of that name and type.
TCIMValue FindText(const ICIMAllowQualifiers& carrier, const char* name, bool array) {
    const TCIMQualifier* const qualifier = FindQualifier(carrier, name);
    const int type = TCIMValue::TCIMType::eCIMString | (array ? TCIMValue::TCIMType::eCIMArrayFlag : 0);
    return qualifier != nullptr && qualifier->GetType() == type ? qualifier->GetValue() : TCIMValue();
}

}  // namespace

std::string QualifierText(const ICIMAllowQualifiers& carrier, const char* name) {
    const TCIMValue value = FindText(carrier, name, false);
    return value.IsNull() ? "" : VisibleText(static_cast<std::string>(value));
}

std::vector<std::string> QualifierTexts(const ICIMAllowQualifiers& carrier, const char* name) {
    std::vector<std::string> texts;
    const TCIMValue value = FindText(carrier, name, true);
    if (value.IsNull()) return texts;
    for (const TCIMValue& element : static_cast<std::vector<TCIMValue>&>(value))
        texts.push_back(element.IsNull() ? "" : VisibleText(element.ToString(10)));
    return texts;
}

std::string DescriptionOf(const ICIMAllowQualifiers& carrier) {
    const TCIMValue value = FindText(carrier, "Description", false);
    if (value.IsNull()) return "";
    std::istringstream words(static_cast<std::string>(value));
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
