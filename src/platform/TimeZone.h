#ifndef KYR_PLATFORM_TIMEZONE_H
#define KYR_PLATFORM_TIMEZONE_H

#include <ctime>

#include "platform/Sanitizers.h"

#ifdef KYR_THREAD_SANITIZER
#include <mutex>
// The C library's calls lock by themselves, but ThreadSanitizer sees no lock inside the C library.
inline std::mutex gTimeZoneMutex;
#define KYR_USE_TIME_ZONE const std::lock_guard<std::mutex> lock(gTimeZoneMutex)
#else
#define KYR_USE_TIME_ZONE
#endif

/// mktime, which reads TZ again.
inline time_t SecondsOf(tm& fields) {
    KYR_USE_TIME_ZONE;
    return mktime(&fields);
}

/// What localtime does, but not in the buffer that all threads share. False if the year is beyond the fields.
inline bool BreakDown(time_t seconds, tm& fields) {
    KYR_USE_TIME_ZONE;
    tzset();  // localtime_r need not read TZ again
    return localtime_r(&seconds, &fields) != nullptr;
}

#undef KYR_USE_TIME_ZONE

#endif
