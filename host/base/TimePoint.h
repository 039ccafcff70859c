#ifndef KYR_HOST_BASE_TIMEPOINT_H
#define KYR_HOST_BASE_TIMEPOINT_H

#include <chrono>
#include <string>

using TClock = std::chrono::steady_clock;
using TTimePoint = TClock::time_point;

/// The time that many seconds after the start. TTimePoint::max() for NaN, infinity and whatever the clock cannot hold.
TTimePoint After(TTimePoint start, double seconds);
/// The seconds with their unit, such as "1.5 s".
std::string SecondsText(double seconds);

#endif
