#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <array>
#include <limits>
#include <string>
#include <vector>

#include "fake_sleep.hpp"
#include "quil.h"
#include "vdev.hpp"
#include "vesk_time.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

// The test process takes a zone for one scope (the device starts with none).
struct scoped_tz {
    explicit scoped_tz(const std::string &tz) { setenv("TZ", tz.c_str(), 1), tzset(); }
    ~scoped_tz() { unsetenv("TZ"), tzset(); }
};

std::string local_text(time_t t, const char *fmt)
{
    struct tm tm;
    char buf[64] = "";
    localtime_r(&t, &tm);
    strftime(buf, sizeof buf, fmt, &tm);
    return buf;
}

// fn's text and the second it ran in, retried until no second boundary
// fell inside the call.
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

time_t utc(int y, int mo, int d, int h = 0, int mi = 0, int s = 0)
{
    struct tm tm = {};
    tm.tm_year = y - 1900, tm.tm_mon = mo - 1, tm.tm_mday = d, tm.tm_hour = h, tm.tm_min = mi, tm.tm_sec = s;
    return timegm(&tm);
}

TEST(Clock, UptimeSecondsComeFromTheFirstNumber)
{
    const struct {
        const char *content; // nullptr: no such file
        unsigned int seconds;
    } cases[] = {
        {"12345.98 54321.00\n", 12345}, {"7\n", 7}, {"4294967295.99 0\n", 4294967295u},
        {"", 0}, {"uptime\n", 0}, {"-5.00 1.00\n", 0}, {nullptr, 0},
    };
    for (const auto &c : cases) {
        if (c.content)
            vdev::put("/proc/uptime", c.content);
        else
            vdev::remove("/proc/uptime");
        EXPECT_EQ(vesk_get_x_time(), c.seconds) << (c.content ? c.content : "(missing)");
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
    EXPECT_EQ(vesk_get_time_of_day(nullptr), 0);
}

TEST(Clock, SubtractionBorrowsOneSecondAtMost)
{
    constexpr time_t kMaxTime = std::numeric_limits<time_t>::max(), kMinTime = std::numeric_limits<time_t>::min();
    const struct { struct timeval val, sub, diff; } cases[] = {
        {{5, 100}, {2, 200}, {2, 999900}}, {{5, 300}, {2, 200}, {3, 100}},
        {{2, 0}, {5, 1}, {-4, 999999}}, // earlier than sub: negative seconds
        // Beyond the range: wraps around instead of overflowing.
        {{kMaxTime, 0}, {-1, 0}, {kMinTime, 0}}, {{kMinTime, 0}, {0, 1}, {kMaxTime, 999999}},
    };
    for (const auto &c : cases) {
        struct timeval val = c.val;
        EXPECT_EQ(vesk_time_tv_sub(&c.sub, &val), &val);
        EXPECT_EQ(std::make_pair(val.tv_sec, val.tv_usec), std::make_pair(c.diff.tv_sec, c.diff.tv_usec));
    }
    struct timeval val = {1, 1};
    EXPECT_EQ(vesk_time_tv_sub(nullptr, &val), &val);
    EXPECT_EQ(vesk_time_tv_sub(&val, nullptr), nullptr);
}

TEST(Clock, TimeTextFitsItsBufferOrIsEmpty)
{
    scoped_tz tz("UTC-8"); // eight hours east
    const time_t t = 1432787445; // 2015-05-28 04:30:45 UTC
    const char *full = "%Y/%m/%d %H:%M:%S";
    const struct {
        const char *name;
        time_t t;
        const char *fmt;
        bool own_buffer;
        size_t size;
        const char *text;
    } cases[] = {
        {"exact fit", t, full, true, 20, "2015/05/28 12:30:45"},
        {"one byte short", t, full, true, 19, ""},
        {"static buffer takes 18 characters", t, full, false, 100, ""},
        {"short form in the static buffer", t, "%Y/%m/%d %H:%M", false, 100, "2015/05/28 12:30"},
        {"failed time()", -1, "%Y", true, 40, ""},
        {"no format", t, nullptr, true, 40, ""},
    };
    for (const auto &c : cases) {
        char buf[40];
        memset(buf, 'x', sizeof buf);
        char *got = vesk_time_get_str(c.t, c.fmt, c.own_buffer ? buf : nullptr, c.size);
        EXPECT_EQ(got == buf, c.own_buffer) << c.name;
        EXPECT_STREQ(got, c.text) << c.name;
    }
    EXPECT_EQ(vesk_time_get_str(t, "%Y", nullptr, 0), vesk_time_get_str(t, "%m", nullptr, 0));
    char byte = 'x'; // no room at all: nothing is written
    EXPECT_EQ(vesk_time_get_str(t, "%Y", &byte, 0), &byte);
    EXPECT_EQ(byte, 'x');
}

TEST(Clock, LocalTimeItemsTakeLowerCaseLettersOnly)
{
    scoped_tz tz("UTC+3:30");
    auto [now, t] = within_one_second([] { return std::string(vesk_time_get_local_time()); });
    EXPECT_EQ(now, local_text(t, "%Y/%m/%d %H:%M:%S"));
    const std::pair<char, const char *> good[] = {{'y', "%Y"}, {'m', "%m"}, {'d', "%d"}, {'h', "%H"},
                                                  {'i', "%M"}, {'s', "%S"}, {'f', "%Y/%m/%d %H:%M:%S"}};
    for (const auto &[item, fmt] : good) {
        auto [text, when] = within_one_second([&] { return std::string(vesk_time_get_local_time_by_item(item)); });
        EXPECT_EQ(text, local_text(when, fmt)) << item;
    }
    const std::string last = vesk_time_get_local_time_by_item('y');
    for (char bad : {'Y', 'e', 'j', '\0', static_cast<char>('y' | 0x80)}) {
        CaptureStderr();
        const char *text = vesk_time_get_local_time_by_item(bad);
        EXPECT_EQ(GetCapturedStderr(), "error format invesk_time_get_local_time_by_item\n");
        EXPECT_EQ(text, last) << "keeps the last good text for " << static_cast<int>(bad);
    }
}

TEST(Clock, DayNumbersCountALeapYearFromZero)
{
    EXPECT_EQ(date_to_non_zero_julian_day(4, 31), date_to_non_zero_julian_day(5, 1));
    EXPECT_EQ(date_to_non_zero_julian_day(0, 1), -1);
    EXPECT_EQ(date_to_non_zero_julian_day(13, 1), -1);
    for (time_t t = utc(2024, 1, 1); t < utc(2025, 1, 1); t += 86400) {
        struct tm tm;
        gmtime_r(&t, &tm);
        ASSERT_EQ(date_to_non_zero_julian_day(tm.tm_mon + 1, tm.tm_mday), tm.tm_yday) << tm.tm_yday;
    }
}

// Stores the "timedaylight" record: enable, then four little-endian words.
void store_daylight(int enable, int start_month, int start_day, int end_month, int end_day)
{
    uint8_t rec[9] = {static_cast<uint8_t>(enable)};
    const int fields[] = {start_month, start_day, end_month, end_day};
    for (int i = 0; i < 4; i++)
        rec[1 + 2 * i] = static_cast<uint8_t>(fields[i]), rec[2 + 2 * i] = static_cast<uint8_t>(fields[i] >> 8);
    ASSERT_EQ(quil_set_value(rec, "timedaylight"), 0);
}

// The zone text that vesk_set_time_zone wrote, without echo's newline.
std::string zone_text()
{
    std::string text = vdev::read("/etc/TZ");
    EXPECT_EQ(text.empty() ? '?' : text.back(), '\n');
    return text.substr(0, text.size() - 1);
}

// The zone's standard and daylight-saving state at t, by the C library.
std::pair<int, long> zone_state(time_t t)
{
    struct tm tm;
    localtime_r(&t, &tm);
    return {tm.tm_isdst, tm.tm_gmtoff};
}

TEST(TimeZone, WritesTheZoneTextOrRefuses)
{
    const std::string bad_date = "Error: vesk_set_time_zone date is not in range \n";
    const struct {
        const char *name;
        unsigned int index;
        std::array<int, 5> rec; // enable -1: leave the record unset
        const char *tz;         // nullptr: refused, /etc/TZ untouched
        std::string message;
    } cases[] = {
        {"March to October", 0, {1, 3, 1, 10, 31}, "UTC+12UTC+11,60/00:00:00,304/23:59:59", ""},
        {"daylight saving off", 0, {0, 3, 1, 10, 31}, "UTC+12", ""},
        {"any non-zero enables", 26, {0x80, 1, 1, 12, 31}, "UTC+0UTC-1,0/00:00:00,365/23:59:59", ""},
        {"February 31 is March 2", 50, {1, 2, 31, 2, 1}, "UTC-5:45UTC-6:45,61/00:00:00,31/23:59:59", ""},
        {"unset record", 0, {-1}, nullptr, bad_date},
        {"all-zero record, off", 0, {0, 0, 0, 0, 0}, nullptr, bad_date},
        {"end month 13", 0, {1, 3, 1, 13, 1}, nullptr, bad_date},
        {"start day 32", 0, {1, 3, 32, 10, 1}, nullptr, bad_date},
        {"month in the high byte", 0, {1, 0x0103, 1, 10, 1}, nullptr, bad_date},
        {"closing row", 76, {1, 3, 1, 10, 31}, nullptr, "Error: vesk_set_time_zone time zone index (76) not in range \n"},
        {"negative index", static_cast<unsigned int>(-1), {1, 3, 1, 10, 31}, nullptr,
         "Error: vesk_set_time_zone time zone index (-1) not in range \n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vdev::put("/etc/TZ", "OLD0\n");
        vdev::remove("/storage/quil.dat");
        if (c.rec[0] >= 0)
            store_daylight(c.rec[0], c.rec[1], c.rec[2], c.rec[3], c.rec[4]);
        CaptureStderr();
        EXPECT_EQ(vesk_set_time_zone(c.index), c.tz ? 1 : 0);
        EXPECT_EQ(GetCapturedStderr(), c.message);
        EXPECT_EQ(zone_text(), c.tz ? c.tz : "OLD0");
    }
}

TEST(TimeZone, ReturnsOneWhateverTheShellMadeOfIt)
{
    store_daylight(0, 1, 1, 1, 1);
    vdev::put("/etc/TZ", "UTC0\n");
    ASSERT_EQ(vdev::sh("mount --bind /etc/TZ /etc/TZ && mount -o remount,ro,bind /etc/TZ"), 0);
    EXPECT_EQ(vesk_set_time_zone(4), 1);
    EXPECT_EQ(zone_text(), "UTC0");
    EXPECT_EQ(vdev::sh("umount /etc/TZ"), 0);
}

TEST(TimeZone, CLibrarySwitchesOnTheStoredDaysOfALeapYear)
{
    const struct {
        unsigned int index;
        long std_east; // seconds east of UTC in standard time
        int start_month, start_day, end_month, end_day;
    } cases[] = {
        {25, 0, 3, 1, 10, 31}, {0, -12 * 3600, 4, 15, 9, 15}, {50, 20700, 1, 2, 6, 30}, {18, -12600, 2, 29, 11, 30},
    };
    for (const auto &c : cases) {
        store_daylight(1, c.start_month, c.start_day, c.end_month, c.end_day);
        ASSERT_EQ(vesk_set_time_zone(c.index), 1);
        const std::string text = zone_text();
        scoped_tz tz(text);
        // On at the first second of the start day in standard time, off
        // at the last second of the end day in daylight-saving time.
        const time_t on = utc(2024, c.start_month, c.start_day) - c.std_east;
        const time_t off = utc(2024, c.end_month, c.end_day, 23, 59, 59) - (c.std_east + 3600);
        EXPECT_EQ(zone_state(on - 1), std::make_pair(0, c.std_east)) << text;
        EXPECT_EQ(zone_state(on), std::make_pair(1, c.std_east + 3600)) << text;
        EXPECT_EQ(zone_state(off - 1), std::make_pair(1, c.std_east + 3600)) << text;
        EXPECT_EQ(zone_state(off), std::make_pair(0, c.std_east)) << text;
    }
}

TEST(TimeZone, EveryZoneSavesOneHourEastAndZonesRunWestToEast)
{
    store_daylight(1, 6, 1, 6, 30);
    long previous = -12 * 3600;
    for (unsigned int i = 0; i < 76; i++) {
        ASSERT_EQ(vesk_set_time_zone(i), 1);
        const std::string text = zone_text();
        scoped_tz tz(text);
        const long winter = zone_state(utc(2024, 1, 15)).second, summer = zone_state(utc(2024, 6, 15)).second;
        EXPECT_EQ(summer - winter, 3600) << i << " " << text;
        EXPECT_GE(winter, previous) << i << " " << text;
        previous = winter;
    }
    EXPECT_EQ(previous, 13 * 3600);
}

TEST(TimeZone, DateToolGetsMonthDayHourMinuteYear)
{
    struct tm t = {};
    t.tm_mon = 5, t.tm_mday = 28, t.tm_hour = 12, t.tm_min = 30, t.tm_sec = 45, t.tm_year = 2015;
    fake_sleep::reset();
    EXPECT_EQ(vesk_set_date_time(&t, 0), 1);
    EXPECT_EQ(fake_sleep::slept_us, 200u);
    t.tm_mon = 1, t.tm_mday = 2, t.tm_hour = 3, t.tm_min = 4, t.tm_year = 999;
    EXPECT_EQ(vesk_set_date_time(&t, 7), 1);
    EXPECT_EQ(vdev::journal(), (std::vector<std::string>{"date 052812302015", "date 010203040999 -u"}));
    CaptureStderr();
    EXPECT_EQ(vesk_set_date_time(nullptr, 0), 0);
    EXPECT_EQ(GetCapturedStderr(), "Error: vesk_set_date_time, input is NULL!\n");
}

vesk_date ymd(int y, int m, int d)
{
    return vesk_date{static_cast<uint16_t>(y), static_cast<uint16_t>(m), static_cast<uint16_t>(d), 0, 0, 0};
}

TEST(Calendar, StepsDaysThenMonthsThenYears)
{
    const struct { const char *name; vesk_date base, step, result; } cases[] = {
        {"leap day plus a year", ymd(2016, 2, 29), ymd(1, 0, 0), ymd(2017, 3, 1)},
        {"leap day plus four years", ymd(2016, 2, 29), ymd(4, 0, 0), ymd(2020, 2, 29)},
        {"no clamp to February", ymd(2015, 1, 31), ymd(0, 1, 0), ymd(2015, 2, 31)},
        {"January 29 plus a month", ymd(2015, 1, 29), ymd(0, 1, 0), ymd(2015, 3, 1)},
        {"months wrap the year", ymd(2015, 11, 5), ymd(0, 3, 0), ymd(2016, 2, 5)},
        {"days before months", ymd(2015, 1, 31), ymd(0, 1, 1), ymd(2015, 3, 1)},
        {"zero step mends a false leap day", ymd(2015, 2, 29), ymd(0, 0, 0), ymd(2015, 3, 1)},
        {"month 13 is left alone", ymd(2015, 13, 10), ymd(1, 1, 1), ymd(2015, 13, 10)},
        {"year wraps in 16 bits", ymd(65535, 3, 1), ymd(2, 0, 0), ymd(1, 3, 1)},
    };
    for (const auto &c : cases) {
        vesk_date r = {0, 0, 0, 11, 22, 33};
        vesk_date_advance(c.base, &r, c.step);
        EXPECT_EQ(std::make_tuple(r.year, r.month, r.day), std::make_tuple(c.result.year, c.result.month, c.result.day))
            << c.name;
        EXPECT_EQ(std::make_tuple(r.hour, r.minute, r.second), std::make_tuple(11, 22, 33)) << "caller's time kept";
    }
    vesk_date_advance(ymd(2015, 1, 1), nullptr, ymd(0, 0, 1)); // no crash
}

TEST(Calendar, DayStepsAgreeWithTheCLibrary)
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
}

TEST(Calendar, DurationTexts)
{
    const struct { unsigned int seconds; int compact; const char *text; } cases[] = {
        {0, 0, "0 secs"}, {1, 0, "1 sec"}, {61, 0, "1 min 1 sec"}, {120, 0, "2 min 0 secs"},
        {3600, 0, "1 hours 0 min 0 secs"}, {3661, 0, "1 hours 1 min 1 sec"},
        {86400, 0, "1 day 0 hours 0 mins 0 secs"}, {90061, 0, "1 day 1 hour 1 min 1 sec"},
        {49709u * 86400 + 86399, 0, "49709 days 23 hours 59 mins 59 secs"}, // the longest
        {4294967295u, 0, "49710 days 6 hours 28 mins 15 secs"},
        {0, 1, "00:00:00 "}, {90061, 1, "1 day 01:01:01 "}, {200000, 1, "2 days 07:33:20 "},
        {4294967295u, -1, "49710 days 06:28:15 "},
    };
    for (const auto &c : cases)
        EXPECT_STREQ(vesk_transfer_time_format(c.seconds, c.compact), c.text) << c.seconds << " " << c.compact;
}

TEST(Calendar, DebugLineOfABrokenDownTime)
{
    struct tm t = {};
    t.tm_hour = 9, t.tm_min = 5, t.tm_sec = 7, t.tm_year = 115, t.tm_mon = 4, t.tm_mday = 28;
    CaptureStderr();
    vesk_print_tm("boot", &t);
    vesk_print_tm(nullptr, &t);
    vesk_print_tm("x", nullptr);
    EXPECT_EQ(GetCapturedStderr(), "boot: 9:5:7 date:2015/4-28 \n9:5:7 date:2015/4-28 \n");
}

} // namespace
