#include "base/TimePoint.h"

#include <sstream>

TTimePoint After(TTimePoint start, double seconds) {
    constexpr double kCentury = 3.2e9;  // in seconds
    if (!(seconds < kCentury)) return TTimePoint::max();
    return start + std::chrono::duration_cast<TClock::duration>(std::chrono::duration<double>(seconds));
}

std::string SecondsText(double seconds) {
    std::ostringstream text;
    text << seconds << " s";
    return text.str();
}
