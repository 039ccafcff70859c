#include "model/TCIMDateTimeImpl.h"

#include <cstring>

#include "kyr/TKYRException.h"
#include "model/NumberText.h"
#include "platform/TimeZone.h"

namespace {
constexpr unsigned long kMicroSecondsInSecond = 1000000;
constexpr long kDaylightShift = 3600;

[[noreturn]] void Refuse() { throw TKYRException(kyrStatusInvalidDateTime); }

// Unsigned arithmetic: the total of a year far in the future does not fit in 64 bits, and must wrap.
long MicroSeconds(long seconds, unsigned int microSeconds) {
    return static_cast<long>(static_cast<unsigned long>(seconds) * kMicroSecondsInSecond + microSeconds);
}
long Sum(long a, long b) { return static_cast<long>(static_cast<unsigned long>(a) + static_cast<unsigned long>(b)); }
long Difference(long a, long b) {
    return static_cast<long>(static_cast<unsigned long>(a) - static_cast<unsigned long>(b));
}
unsigned long Magnitude(long value) {
    const auto bits = static_cast<unsigned long>(value);
    return value < 0 ? 0 - bits : bits;
}

// A local time without daylight saving.
tm StandardFields(unsigned short year, unsigned short month, unsigned int day, unsigned short hour, int minute,
                  unsigned short second) {
    tm fields{};
    fields.tm_year = year - 1900;
    fields.tm_mon = month - 1;
    fields.tm_mday = static_cast<int>(day);
    fields.tm_hour = hour;
    fields.tm_min = minute;
    fields.tm_sec = second;
    fields.tm_isdst = 0;
    return fields;
}

// Seconds since 1970. mktime returns -1 for a failure and for the second before 1970; both are refused, see
// docs/oddities.md.
long StandardTime(tm fields) {
    const time_t seconds = SecondsOf(fields);
    if (seconds == -1) Refuse();
    return seconds;
}

tm LocalTime(time_t seconds) {
    tm fields;
    if (!BreakDown(seconds, fields)) Refuse();
    return fields;
}

TCIMDateTimeImpl IntervalOf(long total) {
    const unsigned long magnitude = Magnitude(total);
    return TCIMDateTimeImpl::Interval(magnitude / kMicroSecondsInSecond,
                                      static_cast<unsigned int>(magnitude % kMicroSecondsInSecond));
}

bool IsWellFormed(const std::string& text) {
    constexpr const char* kForm = "00000000000000.000000*000";
    if (text.size() != strlen(kForm) || strchr("+-:", text[21]) == nullptr || text[21] == '\0') return false;
    for (size_t i = 0; i < text.size(); ++i) {
        if (kForm[i] == '0' && (text[i] < '0' || text[i] > '9')) return false;
        if (kForm[i] == '.' && text[i] != '.') return false;
    }
    return true;
}

unsigned int Field(const std::string& text, size_t at, size_t length) {
    unsigned int value = 0;
    for (size_t i = at; i < at + length; ++i) value = value * 10 + static_cast<unsigned int>(text[i] - '0');
    return value;
}

unsigned short ShortField(const std::string& text, size_t at, size_t length) {
    return static_cast<unsigned short>(Field(text, at, length));
}

void AppendCount(std::string& text, unsigned int count, const char* unit) {
    if (count == 0) return;
    AppendPadded(text, count, 0);
    text.append(" ").append(unit).append(count == 1 ? " " : "s ");
}
}  // namespace

TCIMDateTimeImpl TCIMDateTimeImpl::Interval(unsigned long seconds, unsigned int microSeconds) {
    TCIMDateTimeImpl interval;
    interval.Set(static_cast<unsigned int>(seconds / 86400), static_cast<unsigned short>(seconds / 3600 % 24),
                 static_cast<unsigned short>(seconds / 60 % 60), static_cast<unsigned short>(seconds % 60),
                 microSeconds);
    return interval;
}

void TCIMDateTimeImpl::Set(unsigned short year, unsigned short month, unsigned int day, unsigned short hour,
                           unsigned short minute, unsigned short second, unsigned int microSeconds, short utcOffset) {
    const tm fields = StandardFields(year, month, day, hour, minute - utcOffset, second);
    if (!IsPlainStandardTime(fields)) StandardTime(fields);
    fYear = year;
    fMonth = month;
    fDay = day;
    fHour = hour;
    fMinute = minute;
    fSecond = second;
    fMicroSeconds = microSeconds;
    fUTCOffset = utcOffset;
    fInterval = false;
    fNull = false;
}

void TCIMDateTimeImpl::Set(unsigned int days, unsigned short hours, unsigned short minutes, unsigned short seconds,
                           unsigned int microSeconds) {
    if (hours > 23 || minutes > 59 || seconds > 59 || microSeconds > 999999) Refuse();
    fDay = days;
    fHour = hours;
    fMinute = minutes;
    fSecond = seconds;
    fMicroSeconds = microSeconds;
    fInterval = true;
    fNull = false;
}

void TCIMDateTimeImpl::Set(const std::string& text) {
    if (!IsWellFormed(text)) Refuse();
    const unsigned short hour = ShortField(text, 8, 2);
    const unsigned short minute = ShortField(text, 10, 2);
    const unsigned short second = ShortField(text, 12, 2);
    const unsigned int microSeconds = Field(text, 15, 6);
    const auto offset = static_cast<short>(Field(text, 22, 3));
    if (text[21] == ':') {
        if (offset != 0) Refuse();
        Set(ShortField(text, 0, 8), hour, minute, second, microSeconds);  // days modulo 65536, see docs/oddities.md
        return;
    }
    Set(ShortField(text, 0, 4), ShortField(text, 4, 2), Field(text, 6, 2), hour, minute, second, microSeconds,
        static_cast<short>(text[21] == '-' ? -offset : offset));
}

std::string TCIMDateTimeImpl::ToString() const {
    RequireValue();
    std::string text;
    text.reserve(25);
    if (fInterval) {
        AppendPadded(text, fDay, 8);
    } else {
        AppendPadded(text, fYear, 4);
        AppendPadded(text, fMonth, 2);
        AppendPadded(text, fDay, 2);
    }
    AppendPadded(text, fHour, 2);
    AppendPadded(text, fMinute, 2);
    AppendPadded(text, fSecond, 2);
    text += '.';
    AppendPadded(text, fMicroSeconds, 6);
    if (fInterval) return text += ":000";
    text += fUTCOffset < 0 ? '-' : '+';
    AppendPadded(text, Magnitude(fUTCOffset), 3);
    return text;
}

std::string TCIMDateTimeImpl::ToUIString() const {
    RequireValue();
    if (fInterval) return IntervalToUIString();
    std::string text;
    AppendPadded(text, fMonth, 2);
    AppendPadded(text += '/', fDay, 2);
    AppendPadded(text += '/', fYear, 4);
    text += ' ';
    if (fPrecision) return text;
    AppendPadded(text, fHour, 2);
    AppendPadded(text += ':', fMinute, 2);
    AppendPadded(text += ':', fSecond, 2);
    return text;
}

std::string TCIMDateTimeImpl::ToAbbrUIString() const {
    RequireValue();
    std::string text;
    if (!fInterval) return text;
    AppendPadded(text, fDay * 24ul + fHour, 2);
    AppendPadded(text += ':', fMinute, 2);
    AppendPadded(text += ':', fSecond, 2);
    AppendPadded(text += '.', fMicroSeconds / 1000, 3);
    return text;
}

bool TCIMDateTimeImpl::operator==(const TCIMDateTimeImpl& other) const {
    RequireSameKind(other);
    return Seconds() == other.Seconds();
}

bool TCIMDateTimeImpl::operator<(const TCIMDateTimeImpl& other) const {
    RequireSameKind(other);
    return Seconds() < other.Seconds();
}

TCIMDateTimeImpl TCIMDateTimeImpl::operator+(const TCIMDateTimeImpl& other) const {
    RequireValue();
    other.RequireValue();
    if (fInterval && other.fInterval) return IntervalOf(Sum(IntervalTotal(), other.IntervalTotal()));
    if (!fInterval && !other.fInterval) Refuse();
    const TCIMDateTimeImpl& timestamp = fInterval ? other : *this;
    const TCIMDateTimeImpl& interval = fInterval ? *this : other;
    return timestamp.TimestampOf(
        Sum(MicroSeconds(timestamp.LocalSeconds(), timestamp.fMicroSeconds), interval.IntervalTotal()));
}

TCIMDateTimeImpl TCIMDateTimeImpl::operator-(const TCIMDateTimeImpl& other) const {
    RequireValue();
    other.RequireValue();
    if (fInterval && other.fInterval) return IntervalOf(Difference(other.IntervalTotal(), IntervalTotal()));
    if (!fInterval && !other.fInterval) {
        const long left = MicroSeconds(LocalSeconds() - fUTCOffset * 60L, fMicroSeconds);
        const long right = MicroSeconds(other.LocalSeconds() - other.fUTCOffset * 60L, other.fMicroSeconds);
        return IntervalOf(Difference(right, left));
    }
    const TCIMDateTimeImpl& timestamp = fInterval ? other : *this;
    const TCIMDateTimeImpl& interval = fInterval ? *this : other;
    // Compatibility: the microseconds are those of the left and right operand, whichever of them is the interval; see
    // docs/oddities.md.
    return timestamp.TimestampOf(Difference(MicroSeconds(timestamp.LocalSeconds(), fMicroSeconds),
                                            MicroSeconds(interval.IntervalSeconds(), other.fMicroSeconds)));
}

void TCIMDateTimeImpl::RequireValue() const {
    if (fNull) Refuse();
}

void TCIMDateTimeImpl::RequireSameKind(const TCIMDateTimeImpl& other) const {
    RequireValue();
    other.RequireValue();
    if (fInterval != other.fInterval) Refuse();
}

TCIMDateTimeImpl::TSeconds TCIMDateTimeImpl::Seconds() const {
    if (fInterval) return {IntervalSeconds(), fMicroSeconds};
    return {StandardTime(StandardFields(fYear, fMonth, fDay, fHour, fMinute - fUTCOffset, fSecond)), fMicroSeconds};
}

long TCIMDateTimeImpl::LocalSeconds() const {
    return StandardTime(StandardFields(fYear, fMonth, fDay, fHour, fMinute, fSecond));
}

// Compatibility: in 32 bits, which wrap after 49710 days; see docs/oddities.md.
unsigned int TCIMDateTimeImpl::IntervalSeconds() const {
    return fDay * 86400u + fHour * 3600u + fMinute * 60u + fSecond;
}

long TCIMDateTimeImpl::IntervalTotal() const { return MicroSeconds(IntervalSeconds(), fMicroSeconds); }

// The timestamp of so many microseconds since 1970, in local standard time and with the UTC offset of this one.
TCIMDateTimeImpl TCIMDateTimeImpl::TimestampOf(long total) const {
    const unsigned long magnitude = Magnitude(total);
    const auto seconds = static_cast<long>(magnitude / kMicroSecondsInSecond);
    tm fields = LocalTime(seconds);
    if (fields.tm_isdst > 0) fields = LocalTime(seconds - kDaylightShift);
    TCIMDateTimeImpl timestamp;
    timestamp.Set(static_cast<unsigned short>(fields.tm_year + 1900), static_cast<unsigned short>(fields.tm_mon + 1),
                  static_cast<unsigned int>(fields.tm_mday), static_cast<unsigned short>(fields.tm_hour),
                  static_cast<unsigned short>(fields.tm_min), static_cast<unsigned short>(fields.tm_sec),
                  static_cast<unsigned int>(magnitude % kMicroSecondsInSecond), fUTCOffset);
    return timestamp;
}

std::string TCIMDateTimeImpl::IntervalToUIString() const {
    std::string text;
    AppendCount(text, fDay, "day");
    AppendCount(text, fHour, "hour");
    AppendCount(text, fMinute, "minute");
    AppendCount(text, fSecond, "second");
    AppendCount(text, fMicroSeconds / 1000, "millisecond");
    AppendCount(text, fMicroSeconds % 1000, "microsecond");
    return text;
}
