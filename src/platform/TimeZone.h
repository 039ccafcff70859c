#ifndef KYR_PLATFORM_TIMEZONE_H
#define KYR_PLATFORM_TIMEZONE_H

#include <ctime>

/// mktime, which reads TZ again.
time_t SecondsOf(tm& fields);

/// Whether mktime would surely give a time for these fields, of standard time, and none near that of its failure, which
/// is the second before 1970. False if mktime has to be asked. Where TZ is not set, mktime looks at the file of the
/// machine's zone each time, which takes longer than all else about a date-time.
bool IsPlainStandardTime(const tm& fields);

/// What localtime does, but not in the buffer that all threads share. False if the year is beyond the fields.
bool BreakDown(time_t seconds, tm& fields);

#endif
