#include "kyr/TCIMDateTime.h"

#include <stdlib.h>
#include <time.h>

#include <random>

#include "support/TestSupport.h"

namespace {
class TCIMDateTimeTest : public ::testing::Test {
protected:
    using TDate = TCIMDateTime;

    TCIMDateTimeTest() { SetZone("UTC"); }
    ~TCIMDateTimeTest() override {
        unsetenv("TZ");
        tzset();
    }
    static void SetZone(const char* zone) {
        setenv("TZ", zone, 1);
        tzset();
    }
    static std::string Sum(const char* a, const char* b) { return (TDate(a) + TDate(b)).ToString(); }
    static std::string Difference(const char* a, const char* b) { return (TDate(a) - TDate(b)).ToString(); }
};
}  // namespace

TEST_F(TCIMDateTimeTest, RefusesTextsThatAreNotOfTheForm) {
    for (const std::string text :
         {"", "20041231235959.000000+06", "20041231235959.000000+0600", "20041231235959,000000+060",
          "2004123123595*.000000+060", "20041231235959.******+060", "20041231235959.000000 060",
          "00000001020304.000005:123", "00000001240304.000005:000", "00000001026004.000005:000",
          "00000001020360.000005:000", " 0041231235959.000000+060", "20041231235959.000000+-60"}) {
        TDate dateTime(5, 4, 3, 2, 1);
        EXPECT_EQ(StatusOf([&] { dateTime.Set(text); }), kyrStatusInvalidDateTime) << text;
        EXPECT_EQ(dateTime.ToString(), "00000005040302.000001:000") << text;
    }
}

TEST_F(TCIMDateTimeTest, PrintsWhatItRead) {
    const std::pair<TDate, const char*> cases[] = {
        {TDate("20041231235959.000000+060"), "20041231235959.000000+060"},
        {TDate("20041231235959.999999-060"), "20041231235959.999999-060"},
        {TDate("20041231235959.000000-000"), "20041231235959.000000+000"},
        {TDate("20041345000000.000000+000"), "20041345000000.000000+000"},
        {TDate("00000001020304.000005:000"), "00000001020304.000005:000"},
        {TDate("00065535235959.999999:000"), "00065535235959.999999:000"},
        {TDate("00065537000000.000000:000"), "00000001000000.000000:000"},  // days from texts have 16 bits
        {TDate(65537, 0, 0, 0, 0), "00065537000000.000000:000"},
    };
    for (const auto& [dateTime, text] : cases) EXPECT_EQ(dateTime.ToString(), text);
    const TDate t("20041231215859.000007-090");
    EXPECT_EQ((std::vector<long>{t.GetYear(), t.GetMonth(), t.GetDay(), t.GetHour(), t.GetMinute(), t.GetSecond(),
                                 t.GetMicroSeconds(), t.GetUTCOffset(), t.IsInterval()}),
              (std::vector<long>{2004, 12, 31, 21, 58, 59, 7, -90, false}));
}

TEST_F(TCIMDateTimeTest, RefusesTheOneMomentThatLooksLikeAFailure) {
    EXPECT_EQ(StatusOf([] { TDate(1969, 12, 31, 23, 59, 59, 0, 0); }), kyrStatusInvalidDateTime);
    EXPECT_EQ(StatusOf([] { TDate(1970, 1, 1, 0, 59, 59, 0, 60); }), kyrStatusInvalidDateTime);
    EXPECT_EQ(StatusOf([] { TDate(1969, 12, 31, 23, 59, 58, 0, 0); }), kyrStatusOK);
}

TEST_F(TCIMDateTimeTest, ShowsIntervalsInWordsAndInShort) {
    const std::tuple<TDate, std::string, std::string> cases[] = {
        {TDate(1, 2, 0, 0, 0), "1 day 2 hours ", "26:00:00.000"},
        {TDate(0, 0, 0, 0, 0), "", "00:00:00.000"},
        {TDate(0, 1, 1, 1, 1001), "1 hour 1 minute 1 second 1 millisecond 1 microsecond ", "01:01:01.001"},
        {TDate(~0u, 23, 0, 0, 999), "4294967295 days 23 hours 999 microseconds ", "103079215103:00:00.000"},
    };
    for (const auto& [span, words, abbreviated] : cases)
        EXPECT_EQ(span.ToUIString() + span.ToAbbrUIString(), words + abbreviated);
}

TEST_F(TCIMDateTimeTest, ShowsTimestampsAsStored) {
    TDate timestamp("20040102030405.000000+060");
    EXPECT_EQ(timestamp.ToUIString() + timestamp.ToAbbrUIString(), "01/02/2004 03:04:05");
    timestamp.SetPrecision(true);
    EXPECT_EQ(timestamp.ToUIString(), "01/02/2004 ");
    const TDate copy(timestamp);
    timestamp.Set(std::string("20050102030405.000000+060"));
    EXPECT_EQ(std::tuple(timestamp.GetPrecision(), copy.GetPrecision()), std::tuple(true, false));
}

TEST_F(TCIMDateTimeTest, IsCopiedWholeAndRefusesEverythingWhenNull) {
    TDate null(1, 0, 0, 0, 0), assigned;
    const TDate day(null);
    assigned = null;
    null.Clear();
    EXPECT_EQ(day.ToString() + assigned.ToString(), "00000001000000.000000:00000000001000000.000000:000");
    for (const auto& show : {&TDate::ToString, &TDate::ToUIString, &TDate::ToAbbrUIString})
        EXPECT_EQ(StatusOf([&] { (null.*show)(); }), kyrStatusInvalidDateTime);
    for (const auto& [a, b] : {std::pair<TDate&, const TDate&>(null, day), {assigned, null}}) {
        EXPECT_EQ(StatusOf([&, &x = a, &y = b] { (void)(x == y); }), kyrStatusInvalidDateTime);
        EXPECT_EQ(StatusOf([&, &x = a, &y = b] { (void)(x < y); }), kyrStatusInvalidDateTime);
        EXPECT_EQ(StatusOf([&, &x = a, &y = b] { x + y; }), kyrStatusInvalidDateTime);
        EXPECT_EQ(StatusOf([&, &x = a, &y = b] { x - y; }), kyrStatusInvalidDateTime);
    }
    EXPECT_EQ(StatusOf([&] { TDate::GetDifference(null, assigned); }), kyrStatusNotImplemented);
}

TEST_F(TCIMDateTimeTest, ComparesMomentsAndLengths) {
    const TDate noon("20040701120000.000000+000"), past("20040701120000.000001+000"), day(1, 0, 0, 0, 0);
    EXPECT_EQ(Order(noon, TDate("20040701140000.000000+120")), "==");
    EXPECT_EQ(Order(noon, past) + Order(noon, TDate("20040701120000.999999+060")), "<>");
    EXPECT_EQ(Order(day, TDate(1, 0, 0, 1, 0)), "<");
    EXPECT_EQ(Order(TDate(49710, 6, 28, 16, 0), TDate(0, 0, 0, 0, 0)), "==") << "32 bits of seconds";
    EXPECT_EQ(StatusOf([&] { (void)(noon == day); }), kyrStatusInvalidDateTime);
    EXPECT_EQ(StatusOf([&] { (void)(noon < day); }), kyrStatusInvalidDateTime);
}

TEST_F(TCIMDateTimeTest, AddsIntervals) {
    EXPECT_EQ(Sum("00000001235959.600000:000", "00000000000000.500000:000"), "00000002000000.100000:000");
    EXPECT_EQ(Sum("20040228120000.750000+060", "00000001000000.500000:000"), "20040229120001.250000+060");
    EXPECT_EQ(Sum("00000001000000.500000:000", "20040228120000.750000+060"), "20040229120001.250000+060");
    EXPECT_EQ(Sum("19600101000000.000000+000", "00000000000000.500000:000"), "19800101235959.500000+000");
    const char* const moment = "20040228120000.000000+000";
    EXPECT_EQ(StatusOf([&] { Sum(moment, moment); }), kyrStatusInvalidDateTime);
}

TEST_F(TCIMDateTimeTest, SubtractsToMagnitudes) {
    EXPECT_EQ(Difference("00000000000001.000000:000", "00000000000003.500000:000"), "00000000000002.500000:000");
    EXPECT_EQ(Difference("20040101000000.000000-060", "20040101000000.250000+060"), "00000000015959.750000:000");
    EXPECT_EQ(Difference("20040301000000.750000+060", "00000001000000.250000:000"), "20040229000000.500000+060");
    // Microseconds go with the side: with the interval on the left, its own are the ones that count up.
    EXPECT_EQ(Difference("00000001000000.750000:000", "20040301000000.250000+060"), "20040229000000.500000+060");
}

TEST_F(TCIMDateTimeTest, CalculatesInStandardTime) {
    SetZone("Europe/Berlin");
    EXPECT_EQ(Sum("20260701120000.000000+060", "00000000010000.000000:000"), "20260701130000.000000+060");
    EXPECT_EQ(Sum("20260101120000.000000+060", "00000000010000.000000:000"), "20260101130000.000000+060");
    EXPECT_EQ(Difference("20260701120000.000000+060", "00000181000000.000000:000"), "20260101120000.000000+060");
}

// mktime decides, though it is asked as rarely as possible.
TEST_F(TCIMDateTimeTest, IsRefusedWhereTheCLibraryRefusesIt) {
    const char* const zones[] = {
        nullptr,          "UTC",          "EST5EDT,M3.2.0,M11.1.0", "XST-13:45XDT,M9.5.0/2:45,M4.1.0/3:45",
        "Europe/Berlin",  "Pacific/Apia", "Africa/Monrovia",        "right/Pacific/Fakaofo",
        ":/etc/localtime"};
    std::mt19937 random(1);
    const auto below = [&](unsigned int end) { return static_cast<unsigned int>(random() % end); };
    size_t refused = 0;
    for (int i = 0; i < 60000; ++i) {
        if (below(30) == 0) {
            const char* const zone = zones[below(std::size(zones))];
            zone == nullptr ? unsetenv("TZ") : setenv("TZ", zone, 1);
            if (below(2) == 0) tzset();
        }
        const bool isNear1970 = below(4) == 0;
        const auto year = static_cast<unsigned short>(isNear1970 ? 1969 + below(2) : below(3000));
        const auto month = static_cast<unsigned short>(isNear1970 ? 1 + below(2) * 11 : 1 + below(13));
        const unsigned int day = isNear1970 ? 31 - below(2) * 30 : below(40);
        const auto hour = static_cast<unsigned short>(isNear1970 ? 23 * below(2) : below(30));
        const auto minute = static_cast<unsigned short>(isNear1970 ? 59 * below(2) : below(61));
        const auto second = static_cast<unsigned short>(isNear1970 ? 59 : below(62));
        const auto offset = static_cast<short>(isNear1970 ? 0 : static_cast<int>(below(1800)) - 900);
        TDate dateTime;
        const bool isSet =
            StatusOf([&] { dateTime.Set(year, month, day, hour, minute, second, 0, offset); }) == kyrStatusOK;
        tm fields{};
        fields.tm_year = year - 1900;
        fields.tm_mon = month - 1;
        fields.tm_mday = static_cast<int>(day);
        fields.tm_hour = hour;
        fields.tm_min = minute - offset;
        fields.tm_sec = second;
        ASSERT_EQ(isSet, mktime(&fields) != -1) << year << '-' << month << '-' << day << ' ' << hour << ':' << minute;
        refused += !isSet;
    }
    EXPECT_GT(refused, 10u);
}
