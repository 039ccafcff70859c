// Date-times and their arithmetic. The first byte selects the time zone; two date-times follow. The first byte of each
// is its kind: 0 a text of 25 bytes, 1 the fields of a timestamp, 2 the fields of an interval, 3 NULL.
#include <cstdint>
#include <cstdlib>
#include <ctime>

#include "kyr/TCIMDateTime.h"
#include "support/FuzzSupport.h"

namespace {

// Complete rules, so that no zone file is needed. The fourth has negative daylight saving time, in winter; the fifth
// shifts by half an hour.
char gZones[][64] = {
    "TZ=UTC0",
    "TZ=CET-1CEST,M3.5.0,M10.5.0/3",
    "TZ=EST5EDT,M3.2.0,M11.1.0",
    "TZ=IST-1GMT0,M10.5.0,M3.5.0/1",
    "TZ=<+1030>-10:30<+11>-11,M10.1.0,M4.1.0",
    "TZ=<+0545>-5:45",
    "TZ=<-12>12",
    "TZ=<+14>-14",
};

template <typename TAction>
bool Succeeds(TAction&& action) {
    const kyrStatusCode status = StatusOf(action);
    Require(status == kyrStatusOK || status == kyrStatusInvalidDateTime, "what fails is the date-time");
    return status == kyrStatusOK;
}

/// What a 25-character text is printed as: the days of intervals are cut to 16 bits, and a zero offset is positive.
std::string Reprinted(std::string text) {
    if (text.substr(21) == "-000") text[21] = '+';
    if (text[21] != ':') return text;
    const std::string days = std::to_string(std::strtoul(text.substr(0, 8).c_str(), nullptr, 10) % 65536);
    return text.replace(0, 8, std::string(8 - days.size(), '0') + days);
}

void SetFromText(TCIMDateTime& time, TByteReader& input) {
    const std::string text = input.Bytes(25);
    if (!Succeeds([&] { time.Set(text); })) return Require(time.IsNull(), "a bad text changes nothing");
    Require(time.ToString() == Reprinted(text), "a date-time prints as the text it came from");
}

void SetTimestamp(TCIMDateTime& time, TByteReader& input) {
    const std::uint64_t date = input.Number();
    const std::uint64_t clock = input.Number();
    Succeeds([&] {
        time.Set(static_cast<unsigned short>(date), static_cast<unsigned short>(date >> 16),
                 static_cast<unsigned int>(date >> 32), static_cast<unsigned short>(clock),
                 static_cast<unsigned short>(clock >> 16), static_cast<unsigned short>(clock >> 24),
                 static_cast<unsigned int>(clock >> 32), static_cast<short>(input.Number()));
    });
}

void SetInterval(TCIMDateTime& time, TByteReader& input) {
    const std::uint64_t days = input.Number();
    const std::uint64_t clock = input.Number();
    Succeeds([&] {
        time.Set(static_cast<unsigned int>(days), static_cast<unsigned short>(clock),
                 static_cast<unsigned short>(clock >> 16), static_cast<unsigned short>(clock >> 24),
                 static_cast<unsigned int>(clock >> 32));
    });
}

TCIMDateTime ReadDateTime(TByteReader& input) {
    constexpr void (*kKinds[])(TCIMDateTime&, TByteReader&) = {SetFromText, SetTimestamp, SetInterval,
                                                               [](TCIMDateTime&, TByteReader&) {}};
    TCIMDateTime time;
    input.Pick(kKinds)(time, input);
    return time;
}

void CheckText(const TCIMDateTime& time) {
    std::string text;
    const bool isPrinted = Succeeds([&] { text = time.ToString(); });
    Require(isPrinted == !time.IsNull(), "all but NULL has a text");
    Require(isPrinted == Succeeds([&] { time.ToUIString(); }), "all but NULL has a text for people");
    Require(isPrinted == Succeeds([&] { time.ToAbbrUIString(); }), "all but NULL has a short text");
    if (!isPrinted || text.size() != 25) return;
    TCIMDateTime read;
    if (!Succeeds([&] { read.Set(text); })) return;
    Require(read.ToString() == Reprinted(text), "a date-time's own text reads as the same text");
    if (read.ToString() == text) Require(read == time, "a date-time's own text reads as the same moment");
}

void CheckCopy(const TCIMDateTime& time) {
    const TCIMDateTime copy(time);
    Require(copy.IsNull() == time.IsNull(), "a copy is NULL as its original is");
    if (time.IsNull()) return;
    Require(copy == time && !(copy < time), "a copy is equal");
    TCIMDateTime precise(time);
    precise.SetPrecision(true);
    Require(time.ToUIString().rfind(precise.ToUIString(), 0) == 0, "the date stands in front of the time");
}

void CheckOrder(const TCIMDateTime& a, const TCIMDateTime& b) {
    const bool isComparable = !a.IsNull() && !b.IsNull() && a.IsInterval() == b.IsInterval();
    bool equal = false;
    bool less = false;
    Require(Succeeds([&] { equal = a == b; }) == isComparable, "date-times of one kind can be compared");
    Require(Succeeds([&] { less = a < b; }) == isComparable, "date-times of one kind can be ordered");
    if (isComparable) Require(equal + less + (b < a) == 1, "exactly one of less, equal and greater holds");
}

template <typename TOperation>
bool Compute(TCIMDateTime& result, TOperation&& operation) {
    return Succeeds([&] { result = operation(); });
}

/// In UTC and with fields in range, (a + b) - a is b.
void CheckDifference(const TCIMDateTime& time, const TCIMDateTime& interval, const TCIMDateTime& sum) {
    const bool isPlain = time.GetYear() >= 1970 && time.GetYear() < 10000 && time.GetMonth() >= 1 && time.GetDay() >= 1;
    if (!isPlain || time.GetMonth() > 12 || time.GetDay() > 31) return;
    if (interval.GetDay() > 49000) return;  // longer ones wrap at 32 bits of seconds
    Require(sum - time == interval, "the difference from a sum is what was added");
}

void CheckSum(const TCIMDateTime& a, const TCIMDateTime& b, bool isUniversal) {
    TCIMDateTime sum;
    TCIMDateTime swapped;
    const bool isComputed = Compute(sum, [&] { return a + b; });
    Require(isComputed == Compute(swapped, [&] { return b + a; }), "sums fail the same either way");
    if (!isComputed) return;
    Require(sum.ToString() == swapped.ToString(), "sums are the same either way");
    Require(sum.IsInterval() == (a.IsInterval() && b.IsInterval()), "only intervals make an interval");
    CheckText(sum);
    if (isUniversal && !a.IsInterval()) CheckDifference(a, b, sum);
}

void CheckSubtraction(const TCIMDateTime& a, const TCIMDateTime& b) {
    TCIMDateTime difference;
    TCIMDateTime swapped;
    const bool isComputed = Compute(difference, [&] { return a - b; });
    const bool isSwappedComputed = Compute(swapped, [&] { return b - a; });
    if (isComputed) CheckText(difference);
    if (a.IsNull() || b.IsNull()) return Require(!isComputed, "nothing is subtracted from NULL");
    if (a.IsInterval() != b.IsInterval()) return;
    Require(isComputed == isSwappedComputed, "differences fail the same either way");
    if (isComputed) Require(difference == swapped, "a difference is a magnitude");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const TRunLog log;
    TByteReader input(data, size);
    char* const zone = input.Pick(gZones);
    putenv(zone);
    tzset();
    const TCIMDateTime a = ReadDateTime(input);
    const TCIMDateTime b = ReadDateTime(input);
    CheckText(a);
    CheckCopy(a);
    CheckOrder(a, b);
    CheckSum(a, b, zone == gZones[0]);
    CheckSubtraction(a, b);
    CheckSubtraction(b, a);
    Require(StatusOf([&] {
                TCIMDateTime::GetDifference(const_cast<TCIMDateTime&>(a), const_cast<TCIMDateTime&>(b));
            }) == kyrStatusNotImplemented,
            "the named difference is not implemented");
    Require(log.Entries().empty(), "date-times do not log");
    return 0;
}
