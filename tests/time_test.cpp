// Clock, time zones and calendar against the emulated device and the real
// C library's idea of local time.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <array>
#include <string>
#include <vector>

#include "fake_sleep.hpp"
#include "quil.h"
#include "vdev.hpp"
#include "vesk_time.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

// Puts the test process in a zone of its own choosing for one scope.
class scoped_tz {
public:
    explicit scoped_tz(const char *tz)
    {
        const char *old = getenv("TZ");
        had_ = old != nullptr;
        if (had_)
            old_ = old;
        setenv("TZ", tz, 1);
        tzset();
    }
    ~scoped_tz()
    {
        if (had_)
            setenv("TZ", old_.c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
    }

private:
    bool had_ = false;
    std::string old_;
};

std::string local_text(time_t t, const char *fmt)
{
    struct tm tm;
    char buf[64] = "";
    localtime_r(&t, &tm);
    strftime(buf, sizeof buf, fmt, &tm);
    return buf;
}

// Calls fn until the wall clock stays in one second around it, so that its
// text can be compared with the C library's for that second.
template <typename F> std::pair<std::string, time_t> within_one_second(F fn)
{
    for (int attempt = 0; attempt < 5; attempt++) {
        time_t before = time(nullptr);
        std::string text = fn();
        if (time(nullptr) == before)
            return {text, before};
    }
    ADD_FAILURE() << "the wall clock did not hold still for a second";
    return {"", 0};
}

// ---- Clock -------------------------------------------------------------------

TEST(Clock, UptimeSecondsComeFromTheFirstNumber)
{
    const struct {
        const char *content; // nullptr: no such file
        unsigned int seconds;
    } cases[] = {
        {"12345.67 54321.00\n", 12345},
        {"12345.98 1.00\n", 12345}, // dropped, not rounded
        {"0.00 0.00\n", 0},
        {"7\n", 7},
        {"4294967295.99 0.00\n", 4294967295u},
        {"", 0},
        {"uptime\n", 0},
        {"-5.00 1.00\n", 0},
        {nullptr, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.content ? c.content : "(missing)");
        if (c.content)
            vdev::put("/proc/uptime", c.content);
        else
            vdev::remove("/proc/uptime");
        CaptureStderr();
        EXPECT_EQ(vesk_get_x_time(), c.seconds);
        EXPECT_EQ(GetCapturedStderr(), "");
    }
}

TEST(Clock, MonotonicTimeLiesBetweenTwoReadingsOfTheClock)
{
    struct timespec a, b;
    struct timeval tv = {-1, -1};
    clock_gettime(CLOCK_MONOTONIC, &a);
    EXPECT_EQ(vesk_get_time_of_day(&tv), 0);
    clock_gettime(CLOCK_MONOTONIC, &b);
    const long long us = tv.tv_sec * 1000000LL + tv.tv_usec;
    EXPECT_GE(us, a.tv_sec * 1000000LL + a.tv_nsec / 1000);
    EXPECT_LE(us, b.tv_sec * 1000000LL + b.tv_nsec / 1000);
    EXPECT_GE(tv.tv_usec, 0);
    EXPECT_LT(tv.tv_usec, 1000000);
    EXPECT_EQ(vesk_get_time_of_day(nullptr), 0);
}

TEST(Clock, SubtractionBorrowsOneSecondAtMost)
{
    const struct {
        struct timeval val, sub, diff;
    } cases[] = {
        {{5, 100}, {2, 200}, {2, 999900}},
        {{5, 300}, {2, 200}, {3, 100}},
        {{5, 0}, {5, 0}, {0, 0}},
        {{2, 0}, {5, 1}, {-4, 999999}}, // earlier than sub: negative seconds
        {{0, 0}, {0, 999999}, {-1, 1}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.val.tv_sec << "." << c.val.tv_usec << " - " << c.sub.tv_sec << "."
                                        << c.sub.tv_usec);
        struct timeval val = c.val;
        EXPECT_EQ(vesk_time_tv_sub(&c.sub, &val), &val);
        EXPECT_EQ(val.tv_sec, c.diff.tv_sec);
        EXPECT_EQ(val.tv_usec, c.diff.tv_usec);
    }
    struct timeval val = {1, 1};
    EXPECT_EQ(vesk_time_tv_sub(nullptr, &val), &val);
    EXPECT_EQ(val.tv_sec, 1);
    EXPECT_EQ(vesk_time_tv_sub(&val, nullptr), nullptr);
}

TEST(Clock, TimeTextFitsItsBufferOrIsEmpty)
{
    scoped_tz tz("UTC0");
    const time_t t = 1432816245; // 2015-05-28 12:30:45 UTC
    char buf[40];
    const struct {
        const char *name;
        time_t t;
        const char *fmt;
        bool own_buffer;
        size_t size;
        const char *text;
    } cases[] = {
        {"full form in a caller's buffer", t, "%Y/%m/%d %H:%M:%S", true, 40, "2015/05/28 12:30:45"},
        {"exact fit", t, "%Y/%m/%d %H:%M:%S", true, 20, "2015/05/28 12:30:45"},
        {"one byte short", t, "%Y/%m/%d %H:%M:%S", true, 19, ""},
        {"static buffer takes 18 characters", t, "%Y/%m/%d %H:%M:%S", false, 100, ""},
        {"short form in the static buffer", t, "%Y/%m/%d %H:%M", false, 100, "2015/05/28 12:30"},
        {"day of the log files", t, "%Y%m%d", false, 0, "20150528"},
        {"failed time()", -1, "%Y", true, 40, ""},
        {"no format", t, nullptr, true, 40, ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        memset(buf, 'x', sizeof buf);
        char *got = vesk_time_get_str(c.t, c.fmt, c.own_buffer ? buf : nullptr, c.size);
        if (c.own_buffer) {
            EXPECT_EQ(got, buf);
        }
        EXPECT_STREQ(got, c.text);
    }
    EXPECT_EQ(vesk_time_get_str(t, "%Y", nullptr, 0), vesk_time_get_str(t, "%m", nullptr, 0));

    // No room at all: the caller's byte stays as it was.
    buf[0] = 'x';
    EXPECT_EQ(vesk_time_get_str(t, "%Y", buf, 0), buf);
    EXPECT_EQ(buf[0], 'x');
}

TEST(Clock, TimeTextFollowsTheZone)
{
    const time_t t = 1432816245;
    scoped_tz tz("UTC-8"); // eight hours east
    char buf[40];
    EXPECT_STREQ(vesk_time_get_str(t, "%Y/%m/%d %H:%M:%S", buf, sizeof buf), "2015/05/28 20:30:45");
}

TEST(Clock, LocalTimeIsTheCurrentWallClock)
{
    scoped_tz tz("UTC-5:45");
    auto [text, t] = within_one_second([] { return std::string(vesk_time_get_local_time()); });
    EXPECT_EQ(text, local_text(t, "%Y/%m/%d %H:%M:%S"));
    EXPECT_EQ(vesk_time_get_local_time(), vesk_time_get_local_time());
}

TEST(Clock, LocalTimeItemsTakeLowerCaseLettersOnly)
{
    scoped_tz tz("UTC+3:30");
    const struct {
        char item;
        const char *fmt;
    } good[] = {{'y', "%Y"}, {'m', "%m"}, {'d', "%d"}, {'h', "%H"}, {'i', "%M"}, {'s', "%S"},
                {'f', "%Y/%m/%d %H:%M:%S"}};
    for (const auto &g : good) {
        SCOPED_TRACE(g.item);
        CaptureStderr();
        auto [text, t] = within_one_second([&] { return std::string(vesk_time_get_local_time_by_item(g.item)); });
        EXPECT_EQ(GetCapturedStderr(), "");
        EXPECT_EQ(text, local_text(t, g.fmt));
    }

    const std::string last = vesk_time_get_local_time_by_item('y');
    for (char bad : {'Y', 'e', 'j', 'F', '\0', static_cast<char>('y' | 0x80)}) {
        SCOPED_TRACE(static_cast<int>(bad));
        CaptureStderr();
        const char *text = vesk_time_get_local_time_by_item(bad);
        EXPECT_EQ(GetCapturedStderr(), "error format invesk_time_get_local_time_by_item\n");
        EXPECT_EQ(text, last) << "keeps the last good text";
        EXPECT_EQ(text, vesk_time_get_local_time_by_item('y'));
    }
}

TEST(Clock, DayNumbersCountALeapYearFromZero)
{
    const struct {
        int month, day, number;
    } cases[] = {
        {1, 1, 0}, {1, 31, 30}, {2, 1, 31}, {2, 29, 59}, {3, 1, 60}, {4, 31, 121}, {5, 1, 121},
        {12, 31, 365}, {0, 1, -1}, {13, 1, -1}, {-1, 1, -1},
    };
    for (const auto &c : cases)
        EXPECT_EQ(date_to_non_zero_julian_day(c.month, c.day), c.number) << c.month << "/" << c.day;

    // Every date of a leap year gets the C library's day of the year.
    for (time_t t = 1704067200; t < 1735689600; t += 86400) { // 2024
        struct tm tm;
        gmtime_r(&t, &tm);
        ASSERT_EQ(date_to_non_zero_julian_day(tm.tm_mon + 1, tm.tm_mday), tm.tm_yday) << tm.tm_mon + 1 << "/"
                                                                                      << tm.tm_mday;
    }
}

// ---- Time zones --------------------------------------------------------------

// The store's "timedaylight" record, 16-bit fields in little-endian order.
std::array<uint8_t, 9> daylight(int enable, int start_month, int start_day, int end_month, int end_day)
{
    std::array<uint8_t, 9> rec = {static_cast<uint8_t>(enable)};
    const int fields[] = {start_month, start_day, end_month, end_day};
    for (int i = 0; i < 4; i++) {
        rec[1 + 2 * i] = static_cast<uint8_t>(fields[i] & 0xFF);
        rec[2 + 2 * i] = static_cast<uint8_t>(fields[i] >> 8 & 0xFF);
    }
    return rec;
}

void store_daylight(const std::array<uint8_t, 9> &rec) { ASSERT_EQ(quil_set_value(rec.data(), "timedaylight"), 0); }

constexpr const char *kRangeMessage = "Error: vesk_set_time_zone date is not in range \n";

TEST(TimeZone, WritesTheZoneTextOrRefuses)
{
    const struct {
        const char *name;
        unsigned int index;
        std::array<uint8_t, 9> rec; // enable 0xEE: leave the record unset
        int result;
        const char *tz; // nullptr: /etc/TZ untouched
        std::string message;
    } cases[] = {
        {"March to October", 0, daylight(1, 3, 1, 10, 31), 1, "UTC+12UTC+11,60/00:00:00,304/23:59:59\n", ""},
        {"daylight saving off", 0, daylight(0, 3, 1, 10, 31), 1, "UTC+12\n", ""},
        {"any non-zero enables", 26, daylight(0x80, 1, 1, 12, 31), 1, "UTC+0UTC-1,0/00:00:00,365/23:59:59\n", ""},
        {"half hours", 18, daylight(1, 4, 1, 9, 30), 1, "UTC+3:30UTC+2:30,91/00:00:00,273/23:59:59\n", ""},
        {"February 31 is March 2", 50, daylight(1, 2, 31, 2, 1), 1, "UTC-5:45UTC-6:45,61/00:00:00,31/23:59:59\n",
         ""},
        {"last zone", 75, daylight(0, 1, 1, 1, 1), 1, "UTC-13\n", ""},
        {"unset record", 0, daylight(0xEE, 0, 0, 0, 0), 0, nullptr, kRangeMessage},
        {"all-zero record, off", 0, daylight(0, 0, 0, 0, 0), 0, nullptr, kRangeMessage},
        {"end month 13", 0, daylight(1, 3, 1, 13, 1), 0, nullptr, kRangeMessage},
        {"start day 32", 0, daylight(1, 3, 32, 10, 1), 0, nullptr, kRangeMessage},
        {"end day 0", 0, daylight(1, 3, 1, 10, 0), 0, nullptr, kRangeMessage},
        {"negative month", 0, daylight(1, -1, 1, 10, 1), 0, nullptr, kRangeMessage},
        {"month in the high byte", 0, daylight(1, 0x0103, 1, 10, 1), 0, nullptr, kRangeMessage},
        {"closing row", 76, daylight(1, 3, 1, 10, 31), 0, nullptr,
         "Error: vesk_set_time_zone time zone index (76) not in range \n"},
        {"negative index", static_cast<unsigned int>(-1), daylight(1, 3, 1, 10, 31), 0, nullptr,
         "Error: vesk_set_time_zone time zone index (-1) not in range \n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vdev::put("/etc/TZ", "OLD0\n");
        vdev::remove("/storage/quil.dat");
        if (c.rec[0] != 0xEE)
            store_daylight(c.rec);
        CaptureStderr();
        EXPECT_EQ(vesk_set_time_zone(c.index), c.result);
        EXPECT_EQ(GetCapturedStderr(), c.message);
        EXPECT_EQ(vdev::read("/etc/TZ"), c.tz ? c.tz : "OLD0\n");
    }
}

TEST(TimeZone, ReturnsOneWhateverTheShellMadeOfIt)
{
    store_daylight(daylight(0, 1, 1, 1, 1));
    // A directory in the file's place goes with rm -rf.
    ASSERT_EQ(vdev::sh("rm -f /etc/TZ && mkdir -p /etc/TZ/x"), 0);
    EXPECT_EQ(vesk_set_time_zone(3), 1);
    EXPECT_EQ(vdev::read("/etc/TZ"), "UTC+9\n");
    // A read-only file can be neither removed nor written.
    ASSERT_EQ(vdev::sh("mount --bind /etc/TZ /etc/TZ && mount -o remount,ro,bind /etc/TZ"), 0);
    EXPECT_EQ(vesk_set_time_zone(4), 1);
    EXPECT_EQ(vdev::read("/etc/TZ"), "UTC+9\n");
    EXPECT_EQ(vdev::sh("umount /etc/TZ"), 0);
}

// The offset east of UTC that the C library gives the zone text at t.
struct local_state {
    long gmtoff;
    int isdst;
};
local_state state_at(time_t t)
{
    struct tm tm;
    localtime_r(&t, &tm);
    return {tm.tm_gmtoff, tm.tm_isdst};
}

time_t utc(int y, int mo, int d, int h, int mi, int s)
{
    struct tm tm = {};
    tm.tm_year = y - 1900;
    tm.tm_mon = mo - 1;
    tm.tm_mday = d;
    tm.tm_hour = h;
    tm.tm_min = mi;
    tm.tm_sec = s;
    return timegm(&tm);
}

TEST(TimeZone, CLibrarySwitchesOnTheStoredDaysOfALeapYear)
{
    const struct {
        const char *name;
        unsigned int index;
        long std_east; // seconds east of UTC in standard time
        int start_month, start_day, end_month, end_day;
        int year;
    } cases[] = {
        {"UTC, March to October", 25, 0, 3, 1, 10, 31, 2024},
        {"twelve hours west", 0, -12 * 3600, 4, 15, 9, 15, 2024},
        {"five three quarters east", 50, 20700, 1, 2, 6, 30, 2016},
        {"three and a half west, leap day", 18, -12600, 2, 29, 11, 30, 2024},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        store_daylight(daylight(1, c.start_month, c.start_day, c.end_month, c.end_day));
        ASSERT_EQ(vesk_set_time_zone(c.index), 1);
        std::string text = vdev::read("/etc/TZ");
        ASSERT_FALSE(text.empty());
        text.pop_back(); // the newline of echo
        scoped_tz tz(text.c_str());

        // Begins at the first second of the start day, standard time.
        const time_t on = utc(c.year, c.start_month, c.start_day, 0, 0, 0) - c.std_east;
        EXPECT_EQ(state_at(on - 1).isdst, 0) << text;
        EXPECT_EQ(state_at(on - 1).gmtoff, c.std_east);
        EXPECT_EQ(state_at(on).isdst, 1) << text;
        EXPECT_EQ(state_at(on).gmtoff, c.std_east + 3600);
        // Ends at the last second of the end day, daylight-saving time.
        const time_t off = utc(c.year, c.end_month, c.end_day, 23, 59, 59) - (c.std_east + 3600);
        EXPECT_EQ(state_at(off - 1).isdst, 1) << text;
        EXPECT_EQ(state_at(off).isdst, 0) << text;
        EXPECT_EQ(state_at(off + 86400).gmtoff, c.std_east);
    }
}

TEST(TimeZone, CommonYearsSwitchADayLaterAfterFebruary)
{
    store_daylight(daylight(1, 3, 1, 10, 31));
    ASSERT_EQ(vesk_set_time_zone(25), 1);
    std::string text = vdev::read("/etc/TZ");
    text.pop_back();
    scoped_tz tz(text.c_str());
    EXPECT_EQ(state_at(utc(2023, 3, 1, 12, 0, 0)).isdst, 0);
    EXPECT_EQ(state_at(utc(2023, 3, 2, 0, 0, 0)).isdst, 1);
    EXPECT_EQ(state_at(utc(2023, 11, 1, 12, 0, 0)).isdst, 1);
    EXPECT_EQ(state_at(utc(2023, 11, 2, 0, 0, 0)).isdst, 0);
}

TEST(TimeZone, SouthernSummerSpansTheNewYear)
{
    store_daylight(daylight(1, 10, 1, 3, 31));
    ASSERT_EQ(vesk_set_time_zone(62), 1); // nine hours east
    std::string text = vdev::read("/etc/TZ");
    text.pop_back();
    scoped_tz tz(text.c_str());
    EXPECT_EQ(state_at(utc(2024, 1, 15, 0, 0, 0)).gmtoff, 10 * 3600);
    EXPECT_EQ(state_at(utc(2024, 6, 15, 0, 0, 0)).gmtoff, 9 * 3600);
    EXPECT_EQ(state_at(utc(2024, 12, 15, 0, 0, 0)).gmtoff, 10 * 3600);
}

TEST(TimeZone, EveryZoneSavesOneHourEastAndZonesRunWestToEast)
{
    store_daylight(daylight(1, 6, 1, 6, 30));
    const time_t winter = utc(2024, 1, 15, 12, 0, 0), summer = utc(2024, 6, 15, 12, 0, 0);
    long previous = -12 * 3600;
    for (unsigned int i = 0; i < 76; i++) {
        SCOPED_TRACE(i);
        ASSERT_EQ(vesk_set_time_zone(i), 1);
        std::string text = vdev::read("/etc/TZ");
        ASSERT_FALSE(text.empty());
        text.pop_back();
        scoped_tz tz(text.c_str());
        const local_state std_state = state_at(winter), dst_state = state_at(summer);
        EXPECT_EQ(std_state.isdst, 0) << text;
        EXPECT_EQ(dst_state.isdst, 1) << text;
        EXPECT_EQ(dst_state.gmtoff - std_state.gmtoff, 3600) << text;
        EXPECT_GE(std_state.gmtoff, previous) << text;
        EXPECT_EQ(std_state.gmtoff % 900, 0) << text;
        previous = std_state.gmtoff;
    }
    EXPECT_EQ(previous, 13 * 3600);
}

TEST(TimeZone, DateToolGetsMonthDayHourMinuteYear)
{
    struct tm t = {};
    t.tm_mon = 5; // the calendar month here
    t.tm_mday = 28;
    t.tm_hour = 12;
    t.tm_min = 30;
    t.tm_sec = 45; // not used
    t.tm_year = 2015;
    const time_t before = time(nullptr);
    fake_sleep::reset();
    EXPECT_EQ(vesk_set_date_time(&t, 0), 1);
    EXPECT_EQ(fake_sleep::slept_us, 200u);
    EXPECT_EQ(vesk_set_date_time(&t, 7), 1);
    t.tm_mon = 1;
    t.tm_mday = 2;
    t.tm_hour = 3;
    t.tm_min = 4;
    t.tm_year = 999;
    EXPECT_EQ(vesk_set_date_time(&t, 1), 1);
    EXPECT_EQ(vdev::journal(),
              (std::vector<std::string>{"date 052812302015", "date 052812302015 -u", "date 010203040999 -u"}));
    EXPECT_GE(time(nullptr), before) << "the clock is never set";

    CaptureStderr();
    EXPECT_EQ(vesk_set_date_time(nullptr, 0), 0);
    EXPECT_EQ(GetCapturedStderr(), "Error: vesk_set_date_time, input is NULL!\n");
}

TEST(TimeZone, DateStandInAnswersQueries)
{
    EXPECT_EQ(vdev::sh("test \"$(date -u -d @86400 +%F)\" = 1970-01-02"), 0);
    EXPECT_EQ(vdev::sh("date 052812302015.30 && date -s '2015-05-28 12:30'"), 0);
    EXPECT_EQ(vdev::sh("test \"$(date +%Y)\" -ge 2024"), 0);
}

// ---- Calendar ----------------------------------------------------------------

TEST(Calendar, LeapYearsFollowTheGregorianRule)
{
    for (int y : {2000, 2016, 2024, 1600, 4, 0})
        EXPECT_EQ(vesk_is_leap_year(y), 1) << y;
    for (int y : {1900, 2015, 2100, 1700, 2023, 1})
        EXPECT_EQ(vesk_is_leap_year(y), 0) << y;
    EXPECT_EQ(vesk_fix_feb_29(2016, 2), 1);
    EXPECT_EQ(vesk_fix_feb_29(2016, 3), 0);
    EXPECT_EQ(vesk_fix_feb_29(2015, 2), 0);
    EXPECT_EQ(vesk_fix_feb_29(1900, 2), 0);
}

vesk_date ymd(int y, int m, int d)
{
    return vesk_date{static_cast<uint16_t>(y), static_cast<uint16_t>(m), static_cast<uint16_t>(d), 0, 0, 0};
}

TEST(Calendar, StepsDaysThenMonthsThenYears)
{
    const struct {
        const char *name;
        vesk_date base, step, result;
    } cases[] = {
        {"into March", ymd(2015, 2, 28), ymd(0, 0, 1), ymd(2015, 3, 1)},
        {"into the leap day", ymd(2016, 2, 28), ymd(0, 0, 1), ymd(2016, 2, 29)},
        {"into the new year", ymd(2015, 12, 31), ymd(0, 0, 1), ymd(2016, 1, 1)},
        {"leap day plus a year", ymd(2016, 2, 29), ymd(1, 0, 0), ymd(2017, 3, 1)},
        {"leap day plus four years", ymd(2016, 2, 29), ymd(4, 0, 0), ymd(2020, 2, 29)},
        {"no clamp to February", ymd(2015, 1, 31), ymd(0, 1, 0), ymd(2015, 2, 31)},
        {"January 29 plus a month", ymd(2015, 1, 29), ymd(0, 1, 0), ymd(2015, 3, 1)},
        {"months wrap the year", ymd(2015, 11, 5), ymd(0, 3, 0), ymd(2016, 2, 5)},
        {"days before months", ymd(2015, 1, 31), ymd(0, 1, 1), ymd(2015, 3, 1)},
        {"zero step", ymd(2015, 6, 15), ymd(0, 0, 0), ymd(2015, 6, 15)},
        {"zero step mends a false leap day", ymd(2015, 2, 29), ymd(0, 0, 0), ymd(2015, 3, 1)},
        {"a day that no month has", ymd(2015, 4, 40), ymd(0, 0, 1), ymd(2015, 5, 1)},
        {"month 0 is left alone", ymd(2015, 0, 10), ymd(1, 1, 1), ymd(2015, 0, 10)},
        {"month 13 is left alone", ymd(2015, 13, 10), ymd(1, 1, 1), ymd(2015, 13, 10)},
        {"year wraps in 16 bits", ymd(65535, 3, 1), ymd(2, 0, 0), ymd(1, 3, 1)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vesk_date r = {0, 0, 0, 11, 22, 33};
        vesk_date_advance(c.base, &r, c.step);
        EXPECT_EQ(r.year, c.result.year);
        EXPECT_EQ(r.month, c.result.month);
        EXPECT_EQ(r.day, c.result.day);
        EXPECT_EQ(r.hour, 11); // the time of day stays the caller's
        EXPECT_EQ(r.minute, 22);
        EXPECT_EQ(r.second, 33);
    }
    vesk_date_advance(ymd(2015, 1, 1), nullptr, ymd(0, 0, 1)); // no crash
}

TEST(Calendar, DayStepsAgreeWithTheCLibrary)
{
    // 1999 to 2101 holds both century rules; steps of 1 and 400 days.
    for (int stride : {1, 400}) {
        for (time_t t = 915148800; t < 4133980800; t += 86400 * 7) {
            struct tm a, b;
            gmtime_r(&t, &a);
            const time_t later = t + 86400LL * stride;
            gmtime_r(&later, &b);
            vesk_date r = {};
            vesk_date_advance(ymd(a.tm_year + 1900, a.tm_mon + 1, a.tm_mday), &r, ymd(0, 0, stride));
            ASSERT_EQ(r.year * 10000 + r.month * 100 + r.day,
                      (b.tm_year + 1900) * 10000 + (b.tm_mon + 1) * 100 + b.tm_mday)
                << stride << " days after " << a.tm_year + 1900 << "/" << a.tm_mon + 1 << "/" << a.tm_mday;
        }
    }
}

TEST(Calendar, DurationTexts)
{
    const struct {
        unsigned int seconds;
        int compact;
        const char *text;
    } cases[] = {
        {0, 0, "0 secs"},
        {1, 0, "1 sec"},
        {59, 0, "59 secs"},
        {60, 0, "1 min 0 secs"},
        {61, 0, "1 min 1 sec"},
        {120, 0, "2 min 0 secs"},
        {3600, 0, "1 hours 0 min 0 secs"},
        {3661, 0, "1 hours 1 min 1 sec"},
        {7322, 0, "2 hours 2 min 2 secs"},
        {86400, 0, "1 day 0 hours 0 mins 0 secs"},
        {90061, 0, "1 day 1 hour 1 min 1 sec"},
        {172800, 0, "2 days 0 hours 0 mins 0 secs"},
        {4294967295u, 0, "49710 days 6 hours 28 mins 15 secs"},
        {4294944000u, 0, "49710 days 0 hours 0 mins 0 secs"},
        {4294967295u - 375, 0, "49710 days 6 hours 22 mins 0 secs"},
        {0, 1, "00:00:00 "},
        {3661, 1, "01:01:01 "},
        {86399, 1, "23:59:59 "},
        {90061, 1, "1 day 01:01:01 "},
        {200000, 1, "2 days 07:33:20 "},
        {4294967295u, -1, "49710 days 06:28:15 "},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.seconds << " compact " << c.compact);
        EXPECT_STREQ(vesk_transfer_time_format(c.seconds, c.compact), c.text);
    }
    EXPECT_EQ(vesk_transfer_time_format(1, 0), vesk_transfer_time_format(2, 1));
}

TEST(Calendar, LongestDurationTextFitsItsBuffer)
{
    // 49709 days 23 hours 59 mins 59 secs: every field at its widest.
    const char *text = vesk_transfer_time_format(49709u * 86400 + 86399, 0);
    EXPECT_STREQ(text, "49709 days 23 hours 59 mins 59 secs");
    EXPECT_EQ(strlen(text), 35u);
}

TEST(Calendar, DebugLineOfABrokenDownTime)
{
    struct tm t = {};
    t.tm_hour = 9;
    t.tm_min = 5;
    t.tm_sec = 7;
    t.tm_year = 115;
    t.tm_mon = 4; // printed as it stands, not as a calendar month
    t.tm_mday = 28;
    const struct {
        const char *prefix;
        const struct tm *t;
        const char *line;
    } cases[] = {
        {"boot", &t, "boot: 9:5:7 date:2015/4-28 \n"},
        {nullptr, &t, "9:5:7 date:2015/4-28 \n"},
        {"", &t, ": 9:5:7 date:2015/4-28 \n"},
        {"x", nullptr, ""},
    };
    for (const auto &c : cases) {
        CaptureStderr();
        vesk_print_tm(c.prefix, c.t);
        EXPECT_EQ(GetCapturedStderr(), c.line);
    }
}

} // namespace
