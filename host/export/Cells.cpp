#include "export/Cells.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <ctime>

#include "base/Text.h"
#include "kyr/TCIMDateTime.h"

namespace {

using TWriter = rapidjson::Writer<rapidjson::StringBuffer>;

std::string DigitsOf(TWideInteger number) {
    if (number < 0) return "-" + DigitsOf(-number);
    const std::string last(1, static_cast<char>('0' + static_cast<int>(number % 10)));
    return number < 10 ? last : DigitsOf(number / 10) + last;
}

void WriteText(TWriter& json, const std::string& text) {
    json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

// JSON has no word for what is no number.
void WriteReal(TWriter& json, double real) {
    if (!std::isfinite(real)) return WriteText(json, std::isnan(real) ? "NaN" : real < 0 ? "-Infinity" : "Infinity");
    char digits[64];
    const char* const end = std::to_chars(digits, digits + sizeof digits, real).ptr;
    json.RawValue(digits, static_cast<size_t>(end - digits), rapidjson::kNumberType);
}

void WriteCell(TWriter& json, const TCell& cell) {
    switch (cell.kind) {
        case TCell::eNull:
            return (void)json.Null();
        case TCell::eInteger:
            return (void)json.Int64(cell.integer);
        case TCell::eDigits:
            return (void)json.RawValue(cell.text.data(), cell.text.size(), rapidjson::kNumberType);
        case TCell::eReal:
            return WriteReal(json, cell.real);
        default:
            return WriteText(json, cell.text);
    }
}

bool IsInRange(unsigned value, unsigned first, unsigned last) { return value >= first && value <= last; }

unsigned DaysIn(unsigned month, unsigned year) {
    const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    if (month == 2) return isLeap ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

}  // namespace

std::string CellText(const std::string& text) {
    std::string valid = ValidText(text);
    for (size_t at = 0; (at = valid.find('\0', at)) != std::string::npos;) valid.replace(at, 1, "\\x00");
    return valid;
}

TCell TextCell(const std::string& text) {
    TCell cell;
    cell.kind = text.empty() ? TCell::eNull : TCell::eText;
    cell.text = CellText(text);
    return cell;
}

TCell IntegerCell(int64_t integer) {
    TCell cell;
    cell.kind = TCell::eInteger;
    cell.integer = integer;
    return cell;
}

TCell NumberCell(TWideInteger number) {
    if (number >= INT64_MIN && number <= INT64_MAX) return IntegerCell(static_cast<int64_t>(number));
    TCell cell;
    cell.kind = TCell::eDigits;
    cell.text = DigitsOf(number);
    return cell;
}

TCell RealCell(double real) {
    TCell cell;
    cell.kind = TCell::eReal;
    cell.real = real;
    return cell;
}

double Widened(float number) {
    if (!std::isfinite(number)) return static_cast<double>(number);
    char digits[64];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    double wide = 0;
    std::from_chars(digits, end, wide);
    return wide;
}

TCell JsonCell(const std::vector<TCell>& elements) {
    rapidjson::StringBuffer buffer;
    TWriter json(buffer);
    json.StartArray();
    for (const TCell& element : elements) WriteCell(json, element);
    json.EndArray();
    TCell cell;
    cell.kind = TCell::eText;
    cell.text.assign(buffer.GetString(), buffer.GetSize());
    return cell;
}

// The offset is at most what PostgreSQL takes.
bool Exists(const TCIMDateTime& moment) {
    return IsInRange(moment.GetYear(), 1, 9999) && IsInRange(moment.GetMonth(), 1, 12) &&
           IsInRange(moment.GetDay(), 1, DaysIn(moment.GetMonth(), moment.GetYear())) && moment.GetHour() < 24 &&
           moment.GetMinute() < 60 && moment.GetSecond() < 60 && std::abs(moment.GetUTCOffset()) < 16 * 60;
}

int64_t MicrosecondsOf(const TCIMDateTime& moment) {
    tm fields{};
    fields.tm_year = moment.GetYear() - 1900;
    fields.tm_mon = moment.GetMonth() - 1;
    fields.tm_mday = static_cast<int>(moment.GetDay());
    fields.tm_hour = moment.GetHour();
    fields.tm_min = moment.GetMinute() - moment.GetUTCOffset();
    fields.tm_sec = moment.GetSecond();
    return int64_t{timegm(&fields)} * 1000000 + moment.GetMicroSeconds();
}
