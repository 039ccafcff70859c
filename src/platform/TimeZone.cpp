#include "platform/TimeZone.h"

#include <cstdlib>
#include <cstring>

#include "platform/Sanitizers.h"

#ifdef KYR_THREAD_SANITIZER
#include <mutex>
namespace {
// The C library's calls lock by themselves, but ThreadSanitizer sees no lock inside the C library.
std::mutex gTimeZoneMutex;
}  // namespace
#define KYR_USE_TIME_ZONE const std::lock_guard<std::mutex> lock(gTimeZoneMutex)
#else
#define KYR_USE_TIME_ZONE
#endif

namespace {

constexpr long kDay = 86400;
constexpr long kFar = 4 * kDay;          // further than any two zones are apart
constexpr unsigned int kMostUses = 256;  // then mktime looks whether the zone's file is another one now

/// The zone in which mktime gave a standard time last.
class TKnownZone {
public:
    void Learn(const tm& standardTime) {
        const char* const name = std::getenv("TZ");
        fIsKnown = name == nullptr || std::strlen(name) < sizeof fName;
        if (!fIsKnown) return;
        fHasName = name != nullptr;
        std::strcpy(fName, fHasName ? name : "");
        for (int i = 0; i < 2; ++i) fAbbreviations[i] = tzname[i];
        fTimeZone = timezone;
        fOffset = standardTime.tm_gmtoff;
        fUses = 0;
    }

    bool IsPresent() {
        if (!fIsKnown || ++fUses > kMostUses) return false;
        const char* const name = std::getenv("TZ");
        const bool isSame = fHasName ? name != nullptr && std::strcmp(name, fName) == 0 : name == nullptr;
        if (isSame && fHasName)
            tzset();  // the host may have used another zone meanwhile; it looks at no file for this one
        return isSame && tzname[0] == fAbbreviations[0] && tzname[1] == fAbbreviations[1] && timezone == fTimeZone;
    }

    long Offset() const { return fOffset; }

private:
    bool fIsKnown = false;
    bool fHasName = false;  // TZ is set
    char fName[64] = {};
    const char* fAbbreviations[2] = {};  // the C library has others when it has read another zone
    long fTimeZone = 0;
    long fOffset = 0;
    unsigned int fUses = 0;
};

thread_local TKnownZone gZone;

// Of the Gregorian calendar, from 1970-01-01. The month is 0 to 11, the day any number.
long DaysTo(long year, long month, long day) {
    constexpr int kDaysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
    const long years = month < 2 ? year - 1 : year;  // those whose leap day, if they have one, is past
    const long leapDays = years / 4 - years / 100 + years / 400 - (1969 / 4 - 1969 / 100 + 1969 / 400);
    return (year - 1970) * 365 + leapDays + kDaysBefore[month] + day - 1;
}

}  // namespace

time_t SecondsOf(tm& fields) {
    KYR_USE_TIME_ZONE;
    const time_t seconds = mktime(&fields);
    if (seconds != -1 && fields.tm_isdst == 0) gZone.Learn(fields);
    return seconds;
}

bool IsPlainStandardTime(const tm& fields) {
    KYR_USE_TIME_ZONE;
    const long year = fields.tm_year + 1900L;
    if (year < 1 || fields.tm_mon < 0 || fields.tm_mon > 11 || fields.tm_sec > 59 || !gZone.IsPresent()) return false;
    const long days = DaysTo(year, fields.tm_mon, fields.tm_mday);
    const time_t seconds = days * kDay + fields.tm_hour * 3600L + fields.tm_min * 60L + fields.tm_sec - gZone.Offset();
    tm found;
    if (std::labs(seconds) < kFar || localtime_r(&seconds, &found) == nullptr) return false;
    // In a zone that counts leap seconds the seconds differ.
    return found.tm_isdst == 0 && found.tm_gmtoff == gZone.Offset() && found.tm_sec == fields.tm_sec;
}

bool BreakDown(time_t seconds, tm& fields) {
    KYR_USE_TIME_ZONE;
    tzset();  // localtime_r need not read TZ again
    return localtime_r(&seconds, &fields) != nullptr;
}
