#include "isolation/TimeSpan.h"

#include <sstream>

TMoment After(TMoment start, double seconds) {
    constexpr double kCentury = 3.2e9;
    if (!(seconds < kCentury)) return TMoment::max();
    return start + std::chrono::duration_cast<TClock::duration>(std::chrono::duration<double>(seconds));
}

std::string SecondsText(double seconds) {
    std::ostringstream text;
    text << seconds << " s";
    return text.str();
}
