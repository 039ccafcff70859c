#include "model/DateFaults.h"

#include "kyr/TCIMClass.h"
#include "kyr/TCIMDateTime.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "model/Values.h"

namespace {

unsigned DaysIn(unsigned year, unsigned month) {
    constexpr unsigned kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    return month == 2 && isLeap ? 29 : kDays[month - 1];
}

}  // namespace

// A minute may have a leap second, and the text form of a timestamp has no room for more digits of the year and the
// offset.
std::string DateFaultOf(const TCIMDateTime& date) {
    if (date.IsNull() || date.IsInterval()) return "";
    const unsigned month = date.GetMonth();
    const bool isMonth = month >= 1 && month <= 12;
    const struct {
        const char* name;
        unsigned value, lowest, highest;
    } parts[] = {{"year", date.GetYear(), 0, 9999},
                 {"month", month, 1, 12},
                 {"day", date.GetDay(), 1, isMonth ? DaysIn(date.GetYear(), month) : 31},
                 {"hour", date.GetHour(), 0, 23},
                 {"minute", date.GetMinute(), 0, 59},
                 {"second", date.GetSecond(), 0, 60},
                 {"microsecond", date.GetMicroSeconds(), 0, 999999}};
    for (const auto& part : parts)
        if (part.value < part.lowest || part.value > part.highest)
            return std::string(part.name) + " " + std::to_string(part.value);
    return "";
}

std::vector<TDateFault> FindDateFaults(const TCIMClass& cls) {
    std::vector<TDateFault> faults;
    for (const TCIMPropertyDecl* declaration : cls.EnumeratePropertyDecls()) {
        if (declaration->GetType() != TCIMValue::TCIMType::eCIMDateTime) continue;
        TDateFault fault{declaration->GetName(), "", "", 0};
        for (const TCIMInstance* instance : cls.EnumerateInstances(false)) {
            const TCIMProperty* const property = instance->FindProperty(fault.property);
            const TCIMValue value = property == nullptr ? TCIMValue() : property->GetValue();
            const std::string part = value.IsNull() ? "" : DateFaultOf(value);
            if (part.empty() || fault.count++ > 0) continue;
            fault.text = '"' + PlainText(value) + "\" is no date that exists: " + part;
            fault.path = VisiblePath(*instance);
        }
        if (fault.count > 0) faults.push_back(fault);
    }
    return faults;
}
