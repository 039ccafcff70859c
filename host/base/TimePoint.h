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

/// How long plugins may take.
struct TRunLimits {
    double timeout = 30;  ///< seconds for each plugin
    double deadline = 0;  ///< seconds for all of them together; 0: none
    TTimePoint start = TClock::now();

    TTimePoint Latest() const { return deadline > 0 ? After(start, deadline) : TTimePoint::max(); }
};

#endif
