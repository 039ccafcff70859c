#ifndef KYR_HOST_BASE_TIMEPOINT_H
#define KYR_HOST_BASE_TIMEPOINT_H

#include <chrono>
#include <string>

using TClock = std::chrono::steady_clock;
using TTimePoint = TClock::time_point;

/// The moment so many seconds later; the last of all if there is no such number.
TTimePoint After(TTimePoint start, double seconds);
/// "1.5 s"
std::string SecondsText(double seconds);

#endif
