// Clock, time zones and calendar against the emulated device and the real
// C library's idea of local time.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <string>

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

} // namespace
