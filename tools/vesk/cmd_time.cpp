#include <limits.h>
#include <stdint.h>
#include <stdio.h>
#include <time.h>

#include "cli.hpp"
#include "vesk_time.h"

namespace {

// Days of each month in a leap year, for checking month/day pairs.
constexpr int kLeapDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

int uptime(int, char **)
{
    const unsigned int s = vesk_get_x_time();
    return s ? cli::number_u(s) : cli::miss("cannot read /proc/uptime");
}

int monotonic(int, char **)
{
    struct timeval tv;
    vesk_get_time_of_day(&tv);
    char text[32];
    snprintf(text, sizeof text, "%lld.%06ld", static_cast<long long>(tv.tv_sec), static_cast<long>(tv.tv_usec));
    return cli::text(text);
}

int now(int, char **) { return cli::answer(vesk_time_get_local_time()); }

int item(int, char **argv)
{
    static const char *const kItems[] = {"y", "m", "d", "h", "i", "s", "f", nullptr};
    int which;
    return cli::parse_choice(argv[0], kItems, &which) ? cli::answer(vesk_time_get_local_time_by_item(argv[0][0]))
                                                      : cli::kUsage;
}

int format(int, char **argv)
{
    long long t;
    // A time_t of 32 bits cannot hold the time: refuse rather than wrap.
    const long long most = sizeof(time_t) < 8 ? INT32_MAX : LLONG_MAX / 2;
    if (!cli::parse_i64(argv[0], &t, -most - 1, most) || t == -1)
        return cli::kUsage;
    char buf[128];
    return cli::answer(vesk_time_get_str(static_cast<time_t>(t), argv[1], buf, sizeof buf));
}

int day_number(int, char **argv)
{
    int month, day;
    if (!cli::parse_int(argv[0], &month, 1, 12) || !cli::parse_int(argv[1], &day, 1, kLeapDays[month - 1]))
        return cli::kUsage;
    return cli::number(date_to_non_zero_julian_day(month, day));
}

int set_zone(int, char **argv)
{
    int index;
    if (!cli::parse_int(argv[0], &index, 0, 75))
        return cli::kUsage;
    return cli::done(vesk_set_time_zone(static_cast<unsigned int>(index)), "writing /etc/TZ");
}

int set_date(int argc, char **argv)
{
    static const char *const kZones[] = {"local", "utc", nullptr};
    struct tm t = {};
    int utc = 0;
    // The date tool's fields as they go on its command line: calendar month
    // and full year.
    if (!cli::parse_date(argv[0], &t.tm_year, &t.tm_mon, &t.tm_mday) || !cli::parse_clock(argv[1], &t.tm_hour, &t.tm_min) ||
        (argc > 2 && !cli::parse_choice(argv[2], kZones, &utc)))
        return cli::kUsage;
    return cli::done(vesk_set_date_time(&t, utc), "setting the clock");
}

int leap(int, char **argv)
{
    int year;
    return cli::parse_int(argv[0], &year, 1, INT_MAX) ? cli::number(vesk_is_leap_year(year)) : cli::kUsage;
}

// YEAR/MONTH/DAY, each field 0 to 65535.
bool date_arg(const char *text, vesk_date *d)
{
    unsigned int y, m, day;
    char end;
    if (sscanf(text, "%u/%u/%u%c", &y, &m, &day, &end) != 3 || y > 0xFFFF || m > 0xFFFF || day > 0xFFFF) {
        cli::refuse("%s is not YEAR/MONTH/DAY", text);
        return false;
    }
    *d = vesk_date{static_cast<uint16_t>(y), static_cast<uint16_t>(m), static_cast<uint16_t>(day), 0, 0, 0};
    return true;
}

int advance(int, char **argv)
{
    vesk_date base, step, result = {};
    if (!date_arg(argv[0], &base) || !date_arg(argv[1], &step))
        return cli::kUsage;
    if (base.month < 1 || base.month > 12 || base.day < 1 ||
        base.day > kLeapDays[base.month - 1] - (base.month == 2 && !vesk_is_leap_year(base.year)))
        return cli::refuse("%s is not a date that exists", argv[0]);
    vesk_date_advance(base, &result, step);
    char text[32];
    snprintf(text, sizeof text, "%u/%u/%u", result.year, result.month, result.day);
    return cli::text(text);
}

int duration(int argc, char **argv)
{
    static const char *const kForms[] = {"words", "compact", nullptr};
    unsigned int seconds;
    int compact = 0;
    if (!cli::parse_uint(argv[0], &seconds) || (argc > 1 && !cli::parse_choice(argv[1], kForms, &compact)))
        return cli::kUsage;
    return cli::text(vesk_transfer_time_format(seconds, compact));
}

constexpr cli::command kCommands[] = {
    {"uptime", "", "whole seconds since the device started", 0, uptime},
    {"monotonic", "", "monotonic clock, seconds.microseconds", 0, monotonic},
    {"now", "", "local time, YYYY/MM/DD hh:mm:ss", 0, now},
    {"item", "LETTER", "one item of the local time: y m d h i s f", 1, item},
    {"format", "SECONDS FORMAT", "local text of a time in seconds since 1970 (strftime FORMAT)", 2, format},
    {"day-number", "MONTH DAY", "zero-based day of a leap year", 2, day_number},
    {"set-zone", "NUMBER", "write zone 0..75 with the stored daylight saving to /etc/TZ", 1, set_zone,
     cli::changes_device},
    {"set-date", "YYYY-MM-DD hh:mm [local|utc]", "set the clock through the date tool", 2, set_date,
     cli::changes_device},
    {"leap", "YEAR", "1 for a leap year, else 0", 1, leap},
    {"advance", "Y/M/D Y/M/D", "a date stepped by days, then months, then years", 2, advance},
    {"duration", "SECONDS [words|compact]", "a length of time in words", 1, duration},
};

} // namespace

extern const cli::family family_time = {"time", "clock, time zones and calendar", kCommands};
