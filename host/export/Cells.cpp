#include "export/Cells.h"

#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <ctime>

#include "base/Text.h"
#include "export/CellText.h"
#include "kyr/TCIMDateTime.h"
#include "model/DateFaults.h"

namespace {

using TWriter = rapidjson::Writer<rapidjson::StringBuffer>;

std::string DigitsOf(TWideInteger number) {
    if (number < 0) return "-" + DigitsOf(-number);
    const std::string last(1, static_cast<char>('0' + static_cast<int>(number % 10)));
    return number < 10 ? last : DigitsOf(number / 10) + last;
}

// JSON has no word for what is no number.
void WriteCell(TWriter& json, const TCell& cell, EColumn kind) {
    if (cell.kind == TCell::eNull) return (void)json.Null();
    const std::string text = TextOfCell(cell, kind);
    const bool isWhole = cell.kind == TCell::eInteger || cell.kind == TCell::eDigits;
    if (isWhole || (cell.kind == TCell::eReal && std::isfinite(cell.real)))
        return (void)json.RawValue(text.data(), text.size(), rapidjson::kNumberType);
    json.String(text.data(), static_cast<rapidjson::SizeType>(text.size()));
}

}  // namespace

std::string CellText(const std::string& text) {
    std::string valid = ValidText(text);
    for (size_t at = 0; (at = valid.find('\0', at)) != std::string::npos;) valid.replace(at, 1, "\\x00");
    return valid;
}

TCell TextCell(const std::string& text) { return {text.empty() ? TCell::eNull : TCell::eText, 0, 0, CellText(text)}; }

TCell IntegerCell(int64_t integer) { return {TCell::eInteger, integer}; }

TCell NumberCell(TWideInteger number) {
    if (number >= INT64_MIN && number <= INT64_MAX) return IntegerCell(static_cast<int64_t>(number));
    return {TCell::eDigits, 0, 0, DigitsOf(number)};
}

TCell RealCell(double real) { return {TCell::eReal, 0, real}; }

double Widened(float number) {
    if (!std::isfinite(number)) return static_cast<double>(number);
    char digits[64];
    const char* const end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    double wide = 0;
    std::from_chars(digits, end, wide);
    return wide;
}

TCell JsonCell(const std::vector<TCell>& elements, EColumn kind) {
    rapidjson::StringBuffer buffer;
    TWriter json(buffer);
    json.StartArray();
    for (const TCell& element : elements) WriteCell(json, element, kind);
    json.EndArray();
    return {TCell::eText, 0, 0, {buffer.GetString(), buffer.GetSize()}};
}

// PostgreSQL takes no year 0 and no such offset, and SQLite no leap second.
bool Exists(const TCIMDateTime& moment) {
    return DateFaultOf(moment).empty() && moment.GetYear() > 0 && moment.GetSecond() < 60 &&
           std::abs(moment.GetUTCOffset()) < 16 * 60;
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
