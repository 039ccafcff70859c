#ifndef TIMESPAN_H
#define TIMESPAN_H

#include <chrono>
#include <string>

using TClock = std::chrono::steady_clock;
using TMoment = TClock::time_point;

/// The moment so many seconds later; the last of all if there is no such number.
TMoment After(TMoment start, double seconds);
/// "1.5 s"
std::string SecondsText(double seconds);

#endif
