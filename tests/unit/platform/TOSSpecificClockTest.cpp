#include <cstdlib>
#include <ctime>

#include "kyr/TOSSpecific.h"
#include "support/TestSupport.h"

namespace {

long MinuteOfDay(time_t utc, int offset) { return (utc / 60 + offset) % (24 * 60); }

/// The exit status of a process in the zone: 0 if its clock shows the right time.
[[noreturn]] void ReadClock(const char* zone, int offset) {
    setenv("TZ", zone, 1);
    const time_t before = time(nullptr);
    const TCIMDateTime now = TOSSpecific::GetLocalTime();
    const long minute = now.GetHour() * 60 + now.GetMinute();
    if (now.GetUTCOffset() != offset) exit(1);
    if (minute != MinuteOfDay(before, offset) && minute != MinuteOfDay(time(nullptr), offset)) exit(2);
    exit(now.GetMicroSeconds() % 1000 == 0 ? 0 : 3);
}

TEST(TOSSpecificClockTest, TheOffsetIsThatOfTheZoneDaylightSavingIncluded) {
    ::testing::FLAGS_gtest_death_test_style = "threadsafe";
    // Zones written out, so that the season does not matter: those with two names have daylight saving all year.
    // clang-format off
    const std::pair<const char*, int> cases[] = {
        {"CET-1CEST,0/0,J365/25", 120}, {"<+0545>-5:45", 345}, {"NST3:30NDT,0/0,J365/25", -150},
        {"<+1030>-10:30<+11>-11,0/0,J365/25", 660}, {"IST-1GMT0,0/0,J365/25", 0}};
    // clang-format on
    for (const auto& [zone, offset] : cases)
        EXPECT_EXIT(ReadClock(zone, offset), ::testing::ExitedWithCode(0), "") << zone;
}

}  // namespace
