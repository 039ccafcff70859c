#include "model/Values.h"

#include <cstdio>
#include <cstdlib>

#include "base/StatusWords.h"
#include "base/Text.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "kyr/TKYRException.h"
#include "model/Qualifiers.h"
#include "model/ValueVisitor.h"

namespace {

// Year first and with the offset from UTC. The core's own display text puts the year last and leaves the offset out.
std::string TimestampText(const TCIMDateTime& moment) {
    char text[64];
    const int offset = moment.GetUTCOffset();
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u %c%02d:%02d", unsigned{moment.GetYear()},
                  unsigned{moment.GetMonth()}, moment.GetDay(), unsigned{moment.GetHour()},
                  unsigned{moment.GetMinute()}, unsigned{moment.GetSecond()}, offset < 0 ? '-' : '+',
                  std::abs(offset) / 60, std::abs(offset) % 60);
    return text;
}

std::string FractionText(const TCIMDateTime& moment) {
    char text[16];
    std::snprintf(text, sizeof text, ".%06u", moment.GetMicroSeconds());
    return moment.GetMicroSeconds() == 0 ? "" : text;
}

std::string ISOInterval(const TCIMDateTime& length) {
    return "P" + std::to_string(length.GetDay()) + "DT" + std::to_string(length.GetHour()) + "H" +
           std::to_string(length.GetMinute()) + "M" + std::to_string(length.GetSecond()) + FractionText(length) + "S";
}

// "2026-11-21 10:55:53 +00:00" with a T in the middle, and the fraction before the offset.
std::string ISOText(const TCIMDateTime& moment) {
    if (moment.IsInterval()) return ISOInterval(moment);
    std::string text = TimestampText(moment);
    text[text.find(' ')] = 'T';
    return text.replace(text.find(' '), 1, FractionText(moment));
}

std::string DateTimeText(const TCIMDateTime& moment) {
    return moment.IsInterval() ? moment.ToUIString() : TimestampText(moment);
}

std::string TextForPeople(const TCIMProperty& property) {
    if (property.GetType() != TCIMValue::TCIMType::eCIMDateTime) return property.ToString();
    const TCIMValue value = property.GetValue();
    return value.IsNull() ? property.ToString() : DateTimeText(value);
}

std::string TrimmedVisible(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return VisibleText(text);
}

bool IsBareNumber(const std::string& text) { return text.find_first_not_of("-+.0123456789e") == std::string::npos; }

// The core's display text names the unit of bytes, bits and seconds. For other units it is the number alone, so the
// unit is appended here.
std::string WithUnit(std::string text, const TCIMProperty& property) {
    if (!IsBareNumber(text) || text.empty()) return text;
    const std::string unit = UnitOf(property.GetDeclaration());
    if (!unit.empty()) text.append(" ").append(unit);
    return text;
}

constexpr const char* kNamingProperties[] = {"Caption", "Name", "ElementName", "DeviceID"};

// Empty if there is no such property or it has no value.
std::string TextOfProperty(const TCIMInstance& instance, const char* name) {
    const TCIMProperty* const property = instance.FindProperty(name);
    return property == nullptr || property->GetValue().IsNull() ? "" : DisplayText(*property);
}

}  // namespace

std::string DisplayText(const TCIMProperty& property) {
    try {
        return WithUnit(TrimmedVisible(TextForPeople(property)), property);
    } catch (const TKYRException&) {
        return PlainText(property.GetValue());
    }
}

std::vector<std::string> DisplayElements(const TCIMProperty& property) {
    try {
        std::vector<std::string> elements = property.ToStringVector();
        for (std::string& element : elements) element = WithUnit(TrimmedVisible(element), property);
        return elements;
    } catch (const TKYRException&) {
        return {PlainText(property.GetValue())};
    }
}

std::string PlainText(const TCIMValue& value) {
    try {
        return VisibleText(value.ToString(10));
    } catch (const TKYRException& e) {
        return WithStatusInWords(e.what());
    }
}

std::string RawText(const TCIMValue& value) {
    if (value.IsNull() || value.GetType() != TCIMValue::TCIMType::eCIMDateTime) return PlainText(value);
    return ISOText(static_cast<TCIMDateTime>(value));
}

std::vector<std::string> RawElements(const TCIMValue& array) {
    std::vector<std::string> elements;
    for (const TCIMValue& element : static_cast<const std::vector<TCIMValue>&>(array))
        elements.push_back(RawText(element));
    return elements;
}

std::string ValueText(const TCIMProperty& property, bool raw) {
    if (raw) return property.IsArray() ? Join(RawElements(property.GetValue())) : RawText(property.GetValue());
    return property.IsArray() ? Join(DisplayElements(property)) : DisplayText(property);
}

std::string DisplayName(const TCIMInstance& instance) {
    for (const char* name : kNamingProperties)
        if (const std::string text = TextOfProperty(instance, name); !text.empty()) return text;
    std::string text;
    for (const std::string& key : instance.GetClass()->EnumerateKeyNames())
        text += (text.empty() ? "" : ", ") + TextOfProperty(instance, key.c_str());
    return text.empty() ? VisiblePath(instance) : text;
}

std::string VisiblePath(const TCIMInstance& instance) { return VisibleText(instance.BuildPath().GetPath()); }
