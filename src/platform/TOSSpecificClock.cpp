#include <sys/time.h>

#include "kyr/TOSSpecific.h"
#include "platform/TimeZone.h"

TCIMDateTime TOSSpecific::GetLocalTime() {
    timeval now;
    gettimeofday(&now, nullptr);
    tm local;
    BreakDown(now.tv_sec, local);
    return TCIMDateTime(static_cast<unsigned short>(local.tm_year + 1900),
                        static_cast<unsigned short>(local.tm_mon + 1), static_cast<unsigned int>(local.tm_mday),
                        static_cast<unsigned short>(local.tm_hour), static_cast<unsigned short>(local.tm_min),
                        static_cast<unsigned short>(local.tm_sec), static_cast<unsigned int>(now.tv_usec / 1000 * 1000),
                        static_cast<short>(local.tm_gmtoff / 60));
}

void TOSSpecific::OutputLogString(const std::string&) {}
