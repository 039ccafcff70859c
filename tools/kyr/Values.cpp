#include "Values.h"

#include <cstdio>
#include <cstdlib>

#include "VisibleText.h"
#include "kyr/TCIMDateTime.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TKYRException.h"

namespace {

std::string JoinElements(const TCIMProperty& property) {
    std::string text;
    for (const std::string& element : property.ToStringVector()) text += (text.empty() ? "" : ", ") + element;
    return text;
}

// Year first, and with the offset: the core's own form for people has neither.
std::string TimestampText(const TCIMDateTime& moment) {
    char text[64];
    const int offset = moment.GetUTCOffset();
    std::snprintf(text, sizeof text, "%04u-%02u-%02u %02u:%02u:%02u %c%02d:%02d", unsigned{moment.GetYear()},
                  unsigned{moment.GetMonth()}, moment.GetDay(), unsigned{moment.GetHour()},
                  unsigned{moment.GetMinute()}, unsigned{moment.GetSecond()}, offset < 0 ? '-' : '+',
                  std::abs(offset) / 60, std::abs(offset) % 60);
    return text;
}

std::string DateTimeText(const TCIMDateTime& moment) {
    return moment.IsInterval() ? moment.ToUIString() : TimestampText(moment);
}

std::string TextForPeople(const TCIMProperty& property) {
    if (property.IsArray()) return JoinElements(property);
    if (property.GetType() == TCIMValue::TCIMType::eCIMDateTime)
        return DateTimeText(static_cast<TCIMDateTime>(property.GetValue()));
    return property.ToString();
}

std::string WithoutTrailingBlanks(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

}  // namespace

std::string DisplayText(const TCIMProperty& property) {
    try {
        return VisibleText(WithoutTrailingBlanks(TextForPeople(property)));
    } catch (const TKYRException&) {
        return PlainText(property.GetValue());
    }
}

std::string PlainText(const TCIMValue& value) {
    try {
        return VisibleText(value.ToString(10));
    } catch (const TKYRException& e) {
        return std::string("(") + e.what() + ")";
    }
}
