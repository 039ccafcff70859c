#include "check/Units.h"

#include <algorithm>
#include <string_view>

#include "base/NearMatches.h"
#include "base/Text.h"
#include "check/Schema.h"

namespace {

constexpr std::string_view kMagnitudes[] = {"Peta", "Tera", "Giga", "Mega", "Kilo", "Milli", "Micro", "Nano"};

// The units of measure in CIM schemas, without a magnitude in front.
constexpr const char* kUnits[] = {"Bytes",
                                  "Bits",
                                  "Bytes per Second",
                                  "Bits per Second",
                                  "Seconds",
                                  "Minutes",
                                  "Hours",
                                  "Days",
                                  "Weeks",
                                  "Hertz",
                                  "Volts",
                                  "Amps",
                                  "Amperes",
                                  "Watts",
                                  "WattHours",
                                  "AmpereHours",
                                  "Joules",
                                  "Ohms",
                                  "Degrees C",
                                  "Degrees F",
                                  "Degrees K",
                                  "Percent",
                                  "Percentage",
                                  "Revolutions per Minute",
                                  "Revolutions per Second",
                                  "Packets per Second",
                                  "Transfers per Second",
                                  "Operations per Second",
                                  "Frames per Second",
                                  "Pixels",
                                  "Pixels per Inch",
                                  "Meters",
                                  "Inches",
                                  "Grams",
                                  "Pounds",
                                  "Decibels",
                                  "Lumen",
                                  "Identifier"};

// What people write in place of them.
struct TSpelling {
    const char* word;
    const char* unit;
};
constexpr TSpelling kSpellings[] = {{"B", "Bytes"},
                                    {"KB", "KiloBytes"},
                                    {"kB", "KiloBytes"},
                                    {"MB", "MegaBytes"},
                                    {"GB", "GigaBytes"},
                                    {"TB", "TeraBytes"},
                                    {"KiB", "KiloBytes"},
                                    {"MiB", "MegaBytes"},
                                    {"GiB", "GigaBytes"},
                                    {"TiB", "TeraBytes"},
                                    {"KBytes", "KiloBytes"},
                                    {"MBytes", "MegaBytes"},
                                    {"GBytes", "GigaBytes"},
                                    {"Octet", "Octets"},
                                    {"bps", "Bits per Second"},
                                    {"Kbps", "KiloBits per Second"},
                                    {"Mbps", "MegaBits per Second"},
                                    {"Gbps", "GigaBits per Second"},
                                    {"Mbit/s", "MegaBits per Second"},
                                    {"Gbit/s", "GigaBits per Second"},
                                    {"B/s", "Bytes per Second"},
                                    {"MB/s", "MegaBytes per Second"},
                                    {"s", "Seconds"},
                                    {"sec", "Seconds"},
                                    {"ms", "MilliSeconds"},
                                    {"us", "MicroSeconds"},
                                    {"ns", "NanoSeconds"},
                                    {"min", "Minutes"},
                                    {"h", "Hours"},
                                    {"Hz", "Hertz"},
                                    {"KHz", "KiloHertz"},
                                    {"kHz", "KiloHertz"},
                                    {"MHz", "MegaHertz"},
                                    {"GHz", "GigaHertz"},
                                    {"V", "Volts"},
                                    {"mV", "MilliVolts"},
                                    {"A", "Amps"},
                                    {"mA", "MilliAmps"},
                                    {"W", "Watts"},
                                    {"mW", "MilliWatts"},
                                    {"Wh", "WattHours"},
                                    {"mWh", "MilliWattHours"},
                                    {"Ah", "AmpereHours"},
                                    {"C", "Degrees C"},
                                    {"Celsius", "Degrees C"},
                                    {"\xC2\xB0"
                                     "C",
                                     "Degrees C"},
                                    {"Fahrenheit", "Degrees F"},
                                    {"Kelvin", "Degrees K"},
                                    {"%", "Percent"},
                                    {"RPM", "Revolutions per Minute"},
                                    {"rpm", "Revolutions per Minute"},
                                    {"Id", "Identifier"},
                                    {"ID", "Identifier"},
                                    {"None", "Identifier"}};

struct TSplitUnit {
    std::string magnitude;
    std::string base;
};

TSplitUnit Split(const std::string& unit) {
    const std::string lower = LowerName(unit);
    for (const std::string_view magnitude : kMagnitudes)
        if (StartsWith(lower, LowerName(std::string(magnitude))) && unit.size() > magnitude.size())
            return {std::string(magnitude), unit.substr(magnitude.size())};
    return {"", unit};
}

bool IsUnit(const std::string& base) {
    return std::any_of(std::begin(kUnits), std::end(kUnits), [&base](const char* unit) { return base == unit; });
}

// One letter of a short word may be another word; of a long one, two are a slip.
bool IsMisspelt(const std::string& base, const std::string& unit) {
    constexpr size_t kShort = 5, kLong = 9, kLongest = 60;
    if (base.size() > kLongest) return false;
    const std::string a = LowerName(base), b = LowerName(unit);
    const size_t errors = EditDistance(a, b);
    if (a + "s" == b || errors == 0) return true;
    return base.size() >= kShort && errors <= (base.size() >= kLong ? 2 : 1);
}

std::string Write(const std::string& unit) { return "write '" + unit + "'"; }

}  // namespace

std::string RemedyForUnit(const std::string& unit) {
    for (const TSpelling& spelling : kSpellings)
        if (unit == spelling.word) return Write(spelling.unit);
    const auto [magnitude, base] = Split(unit);
    if (base == "Seconds" && !magnitude.empty() && magnitude != "Milli" && magnitude != "Micro" && magnitude != "Nano")
        return "the display fails on it: write 'Seconds'";
    if (IsUnit(base)) return StartsWith(unit, magnitude) ? "" : Write(magnitude + base);
    for (const char* const known : kUnits)
        if (IsMisspelt(base, known)) return Write(magnitude + known);
    return "";
}

std::string UnitInName(const std::vector<std::string>& words, const std::string& unit) {
    struct TEnding {
        std::string_view word;
        std::string_view unit;  // a part of it, in lower case
    };
    constexpr TEnding kEndings[] = {{"bytes", "bytes"},     {"kb", "kilobytes"},    {"mb", "megabytes"},
                                    {"gb", "gigabytes"},    {"bits", "bits"},       {"seconds", "seconds"},
                                    {"ms", "milliseconds"}, {"minutes", "minutes"}, {"hours", "hours"},
                                    {"hz", "hertz"},        {"khz", "kilohertz"},   {"mhz", "megahertz"},
                                    {"ghz", "gigahertz"},   {"hertz", "hertz"},     {"percent", "percent"},
                                    {"volts", "volts"},     {"watts", "watts"},     {"rpm", "revolutions per minute"}};
    const std::string last = words.empty() ? "" : words.back();
    for (const TEnding& ending : kEndings)
        if (last == ending.word)
            return LowerName(unit).find(ending.unit) == std::string::npos ? std::string(ending.unit) : "";
    return "";
}
