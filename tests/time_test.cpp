#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <tuple>
#include <vector>

#include "fake_clock.hpp"
#include "fake_sleep.hpp"
#include "output_of.hpp"
#include "quil.h"
#include "vdev.hpp"
#include "vesk_time.h"

namespace {

// The board's build uses a 64-bit time_t: texts and differences past 2038
// must not wrap to 1901.
static_assert(sizeof(time_t) == 8, "the library is built with 64-bit time on every target");

using lines = std::vector<std::string>;

// The test process takes a zone for one scope (the device starts with none).
struct scoped_tz {
    explicit scoped_tz(const std::string &tz) { setenv("TZ", tz.c_str(), 1), tzset(); }
    ~scoped_tz() { unsetenv("TZ"), tzset(); }
};

// The local time of t by strftime(fmt).
std::string local_text(time_t t, const char *fmt)
{
    struct tm tm;
    char text[64] = "";
    localtime_r(&t, &tm);
    strftime(text, sizeof text, fmt, &tm);
    return text;
}

time_t utc(int y, int mo, int d, int h = 0, int mi = 0, int s = 0)
{
    struct tm tm = {};
    tm.tm_year = y - 1900, tm.tm_mon = mo - 1, tm.tm_mday = d, tm.tm_hour = h, tm.tm_min = mi, tm.tm_sec = s;
    return timegm(&tm);
}

TEST(Clock, UptimeSecondsComeFromTheFirstNumber)
{
    const struct { const char *content; unsigned int seconds; } cases[] = { // nullptr: no such file
        {"12345.98 54321.00\n", 12345}, {"4294967295.99 0\n", 4294967295u}, {"", 0}, {"-5.00 1.00\n", 0}, {nullptr, 0}};
    for (const auto &c : cases) {
        c.content ? vdev::put("/proc/uptime", c.content) : vdev::remove("/proc/uptime");
        EXPECT_EQ(vesk_get_x_time(), c.seconds) << (c.content ? c.content : "(missing)");
    }
}

TEST(Clock, MonotonicTimeLiesBetweenTwoReadingsOfTheClock)
{
    struct timespec a, b;
    struct timeval tv = {-1, -1};
    clock_gettime(CLOCK_MONOTONIC, &a);
    EXPECT_EQ(vesk_get_time_of_day(&tv) + vesk_get_time_of_day(nullptr), 0);
    clock_gettime(CLOCK_MONOTONIC, &b);
    const long long us = tv.tv_sec * 1000000LL + tv.tv_usec;
    EXPECT_TRUE(us >= a.tv_sec * 1000000LL + a.tv_nsec / 1000 && us <= b.tv_sec * 1000000LL + b.tv_nsec / 1000) << us;
}

TEST(Clock, SubtractionBorrowsOneSecondAtMost)
{
    constexpr time_t kMaxTime = std::numeric_limits<time_t>::max(), kMinTime = std::numeric_limits<time_t>::min();
    const struct { struct timeval val, sub, diff; } cases[] = {
        {{5, 100}, {2, 200}, {2, 999900}}, {{5, 200}, {2, 200}, {3, 0}}, {{2, 0}, {5, 1}, {-4, 999999}}, // negative
        {{kMaxTime, 0}, {-1, 0}, {kMinTime, 0}}, {{kMinTime, 0}, {0, 1}, {kMaxTime, 999999}}, // wraps around
    };
    for (const auto &c : cases) {
        struct timeval val = c.val;
        EXPECT_EQ(vesk_time_tv_sub(&c.sub, &val), &val);
        EXPECT_EQ(std::make_pair(val.tv_sec, val.tv_usec), std::make_pair(c.diff.tv_sec, c.diff.tv_usec));
    }
    struct timeval val = {1, 1};
    EXPECT_EQ(vesk_time_tv_sub(nullptr, &val), &val);
}

TEST(Clock, TimeTextFitsItsBufferOrIsEmpty)
{
    scoped_tz tz("UTC-8"); // eight hours east
    const time_t t = 2200000000; // 2039-09-18 23:06:40 UTC
    const char *full = "%Y/%m/%d %H:%M:%S";
    const struct { time_t t; const char *fmt; bool own_buffer; size_t size; const char *text; } cases[] = {
        {t, full, true, 20, "2039/09/19 07:06:40"}, {t, full, true, 19, ""}, {t, full, false, 100, ""}, // static: 18
        {t, "%Y/%m/%d %H:%M", false, 100, "2039/09/19 07:06"}, {-1, "%Y", true, 40, ""}, {t, nullptr, true, 40, ""}};
    for (const auto &c : cases) {
        char buf[40];
        memset(buf, 'x', sizeof buf);
        char *got = vesk_time_get_str(c.t, c.fmt, c.own_buffer ? buf : nullptr, c.size);
        EXPECT_EQ(got == buf, c.own_buffer) << c.size;
        EXPECT_STREQ(got, c.text) << c.size;
    }
    char byte = 'x'; // no room at all: nothing is written
    EXPECT_EQ(vesk_time_get_str(t, "%Y", &byte, 0), &byte);
    EXPECT_EQ(byte, 'x');
}

TEST(Clock, LocalTimeItemsTakeLowerCaseLettersOnly)
{
    scoped_tz tz("UTC+3:30");
    const time_t t = 2200000000;
    fake_clock::scoped clock(t);
    EXPECT_EQ(vesk_time_get_local_time(), local_text(t, "%Y/%m/%d %H:%M:%S"));
    const std::pair<char, const char *> good[] = {
        {'y', "%Y"}, {'m', "%m"}, {'d', "%d"}, {'h', "%H"}, {'i', "%M"}, {'s', "%S"}, {'f', "%Y/%m/%d %H:%M:%S"}};
    for (const auto &[item, fmt] : good)
        EXPECT_EQ(vesk_time_get_local_time_by_item(item), local_text(t, fmt)) << item;
    const std::string last = vesk_time_get_local_time_by_item('y');
    for (char bad : {'Y', 'e', '\0', static_cast<char>('y' | 0x80)}) {
        const char *text = nullptr;
        EXPECT_EQ(stderr_of([&] { text = vesk_time_get_local_time_by_item(bad); }),
                  "error format invesk_time_get_local_time_by_item\n");
        EXPECT_EQ(text, last) << "keeps the last good text for " << static_cast<int>(bad);
    }
}

// Day numbers of valid dates: the zone texts below, which the C library reads.
TEST(Clock, DayNumbersOfMonthsOutOfRange)
{
    EXPECT_EQ(date_to_non_zero_julian_day(0, 1), -1);
    EXPECT_EQ(date_to_non_zero_julian_day(13, 1), -1);
}

// Stores the "timedaylight" record: enable, then four little-endian words.
void store_daylight(std::array<int, 5> f)
{
    uint8_t rec[9] = {static_cast<uint8_t>(f[0])};
    for (int i = 0; i < 4; i++)
        rec[1 + 2 * i] = static_cast<uint8_t>(f[i + 1]), rec[2 + 2 * i] = static_cast<uint8_t>(f[i + 1] >> 8);
    ASSERT_EQ(quil_set_value(rec, "timedaylight"), 0);
}

TEST(TimeZone, RemovesThenWritesTheZoneTextOrRefuses)
{
    const std::string bad_date = "Error: vesk_set_time_zone date is not in range \n";
    // rec: enable -1 leaves the record unset; echo nullptr: refused, no command
    const struct { unsigned int index; std::array<int, 5> rec; const char *echo; std::string message; } cases[] = {
        {0, {1, 3, 1, 10, 31}, "echo UTC+12UTC+11,60/00:00:00,304/23:59:59 > /etc/TZ", ""},
        {0, {0, 3, 1, 10, 31}, "echo UTC+12 > /etc/TZ", ""},
        {26, {0x80, 1, 1, 12, 31}, "echo UTC+0UTC-1,0/00:00:00,365/23:59:59 > /etc/TZ", ""},
        {75, {1, 2, 31, 12, 1}, "echo UTC-13UTC-14,61/00:00:00,335/23:59:59 > /etc/TZ", ""},
        {0, {1, 12, 1, 1, 31}, "echo UTC+12UTC+11,335/00:00:00,30/23:59:59 > /etc/TZ", ""}, // January ends it
        {0, {-1}, nullptr, bad_date}, {0, {1, 3, 1, 13, 1}, nullptr, bad_date}, {0, {1, 3, 32, 10, 1}, nullptr, bad_date},
        {0, {1, 3, 31, 10, 32}, nullptr, bad_date}, {0, {1, 0, 1, 10, 1}, nullptr, bad_date},
        {0, {1, 3, 0, 10, 1}, nullptr, bad_date}, {0, {1, 3, 1, 0, 1}, nullptr, bad_date},
        {0, {1, 3, 1, 10, 0}, nullptr, bad_date}, {0, {1, 0x0103, 1, 10, 1}, nullptr, bad_date}, // the month's high byte
        {0, {1, 13, 1, 10, 1}, nullptr, bad_date}, // both months end at 12
        {76, {1, 3, 1, 10, 31}, nullptr, "Error: vesk_set_time_zone time zone index (76) not in range \n"},
        {~0u, {1, 3, 1, 10, 31}, nullptr, "Error: vesk_set_time_zone time zone index (-1) not in range \n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.index << " " << c.rec[1] << "/" << c.rec[2] << "-" << c.rec[3] << "/" << c.rec[4]);
        vdev::remove("/storage/quil.dat");
        if (c.rec[0] >= 0)
            store_daylight(c.rec);
        vdev::clear_journal();
        int result = -1;
        EXPECT_EQ(stderr_of([&] { result = vesk_set_time_zone(c.index); }), c.message);
        EXPECT_EQ(result, c.echo ? 1 : 0);
        EXPECT_EQ(vdev::commands(), (c.echo ? lines{"rm -rf /etc/TZ", c.echo} : lines{}));
    }
}

// Standard time of every zone row in hours east of UTC; daylight saving is
// one hour further east.
constexpr double kZoneHoursEast[76] = {
    -12, -11, -10, -9, -8, -7, -7, -7, -6, -6, -6, -6, -5, -5, -5, -4, -4, -4, -3.5, -3, -3, -3, -2, -1, -1, 0,
    0, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 3, 3, 3, 3, 3.5, 3.5, 4, 4, 4.5, 5, 5, 5.5, 5.75, 6, 6, 6, 6.5, 7,
    7, 8, 8, 8, 8, 8, 9, 9, 9, 9.5, 9.5, 10, 10, 10, 10, 10, 11, 12, 12, 13,
};

TEST(TimeZone, TheCLibrarySwitchesEveryRowOnTheStoredDaysOfALeapYear)
{
    const std::array<int, 5> records[] = {{1, 3, 1, 10, 31}, {1, 4, 15, 9, 15}, {1, 1, 2, 6, 30}, {1, 2, 29, 11, 30}};
    for (unsigned int i = 0; i < 76; i++) {
        const std::array<int, 5> &rec = records[i % 4];
        store_daylight(rec);
        ASSERT_EQ(vesk_set_time_zone(i), 1);
        const std::string text = vdev::read("/etc/TZ");
        ASSERT_EQ(text.empty() ? '?' : text.back(), '\n');
        scoped_tz tz(text.substr(0, text.size() - 1));
        const long east = std::lround(kZoneHoursEast[i] * 3600);
        // On at the first second of the start day in standard time, off
        // at the last second of the end day in daylight-saving time.
        const time_t on = utc(2024, rec[1], rec[2]) - east;
        const time_t off = utc(2024, rec[3], rec[4], 23, 59, 59) - (east + 3600);
        for (auto [t, dst] : {std::pair{on - 1, 0}, {on, 1}, {off - 1, 1}, {off, 0}}) {
            struct tm tm;
            localtime_r(&t, &tm);
            EXPECT_EQ(std::make_pair(tm.tm_isdst, tm.tm_gmtoff), std::make_pair(dst, east + 3600 * dst)) << i << text;
        }
    }
}

TEST(TimeZone, DateToolGetsMonthDayHourMinuteYearAndTheDebugLine)
{
    struct tm t = {};
    t.tm_mon = 5, t.tm_mday = 28, t.tm_hour = 12, t.tm_min = 30, t.tm_sec = 45, t.tm_year = 2015;
    fake_sleep::reset();
    EXPECT_EQ(vesk_set_date_time(&t, 0), 1);
    EXPECT_EQ(fake_sleep::slept_us, 200u);
    t.tm_mon = 1, t.tm_mday = 2, t.tm_hour = 3, t.tm_min = 4, t.tm_year = 999;
    EXPECT_EQ(vesk_set_date_time(&t, 7), 1);
    EXPECT_EQ(vdev::commands(), (lines{"date 052812302015 ", "date 010203040999 -u"}));
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_set_date_time(nullptr, 0), 0); }),
              "Error: vesk_set_date_time, input is NULL!\n");
    // The debug line of a broken-down time.
    t.tm_hour = 9, t.tm_min = 5, t.tm_sec = 7, t.tm_year = 115, t.tm_mon = 4, t.tm_mday = 28;
    EXPECT_EQ(stderr_of([&] { vesk_print_tm("boot", &t), vesk_print_tm(nullptr, &t), vesk_print_tm("x", nullptr); }),
              "boot: 9:5:7 date:2015/4-28 \n9:5:7 date:2015/4-28 \n");
}

vesk_date ymd(int y, int m, int d) { return vesk_date{uint16_t(y), uint16_t(m), uint16_t(d), 0, 0, 0}; }

TEST(Calendar, StepsDaysThenMonthsThenYears)
{
    const struct { vesk_date base, step, result; } cases[] = {
        {ymd(2016, 2, 29), ymd(1, 0, 0), ymd(2017, 3, 1)}, {ymd(2015, 1, 31), ymd(0, 1, 0), ymd(2015, 2, 31)}, // no clamp
        {ymd(2015, 11, 5), ymd(0, 3, 0), ymd(2016, 2, 5)}, {ymd(2015, 1, 31), ymd(0, 1, 1), ymd(2015, 3, 1)}, // days first
        {ymd(2015, 13, 10), ymd(1, 1, 1), ymd(2015, 13, 10)}, {ymd(2015, 0, 10), ymd(1, 1, 1), ymd(2015, 0, 10)},
        {ymd(65535, 2, 29), ymd(101, 0, 0), ymd(100, 3, 1)}, // the year wraps in 16 bits before the leap test
    };
    for (const auto &c : cases) {
        vesk_date r = {0, 0, 0, 11, 22, 33};
        vesk_date_advance(c.base, &r, c.step);
        EXPECT_EQ(std::make_tuple(r.year, r.month, r.day, r.hour, r.minute, r.second),
                  std::make_tuple(c.result.year, c.result.month, c.result.day, 11, 22, 33))
            << c.base.year << "-" << c.base.month << "-" << c.base.day;
    }
    vesk_date_advance(ymd(2015, 1, 1), nullptr, ymd(0, 0, 1)); // no crash
}

TEST(Calendar, DayStepsAndLeapYearsAgreeWithTheCLibrary)
{
    // 1999 to 2101 holds both century rules.
    for (int stride : {1, 400}) {
        for (time_t t = utc(1999, 1, 1); t < utc(2101, 1, 1); t += 86400 * 7) {
            struct tm a, b;
            const time_t later = t + 86400LL * stride;
            gmtime_r(&t, &a);
            gmtime_r(&later, &b);
            vesk_date r = {};
            vesk_date_advance(ymd(a.tm_year + 1900, a.tm_mon + 1, a.tm_mday), &r, ymd(0, 0, stride));
            ASSERT_EQ(r.year * 10000 + r.month * 100 + r.day,
                      (b.tm_year + 1900) * 10000 + (b.tm_mon + 1) * 100 + b.tm_mday)
                << stride << " days after " << t;
        }
    }
    // The exported checks that the day steps above go through.
    EXPECT_EQ(std::make_tuple(vesk_is_leap_year(1900), vesk_is_leap_year(2000), vesk_fix_feb_29(2024, 2)),
              std::make_tuple(0, 1, 1));
}

TEST(Calendar, DurationTexts)
{
    const struct { unsigned int seconds; int compact; const char *text; } cases[] = {
        {0, 0, "0 secs"}, {1, 0, "1 sec"}, {61, 0, "1 min 1 sec"}, {120, 0, "2 min 0 secs"},
        {3600, 0, "1 hours 0 min 0 secs"}, {3661, 0, "1 hours 1 min 1 sec"}, {86400, 0, "1 day 0 hours 0 mins 0 secs"},
        {90061, 0, "1 day 1 hour 1 min 1 sec"}, {49709u * 86400 + 86399, 0, "49709 days 23 hours 59 mins 59 secs"},
        {0, 1, "00:00:00 "}, {90061, 1, "1 day 01:01:01 "}, {4294967295u, -1, "49710 days 06:28:15 "}};
    for (const auto &c : cases)
        EXPECT_STREQ(vesk_transfer_time_format(c.seconds, c.compact), c.text) << c.seconds << " " << c.compact;
}

} // namespace
