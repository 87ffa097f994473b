#include <stdio.h>
#include <time.h>

#include "cli.hpp"
#include "vesk_time.h"

namespace {

int uptime(int, char **) { return printf("%u\n", vesk_get_x_time()) < 0; }

int monotonic(int, char **)
{
    struct timeval tv;
    vesk_get_time_of_day(&tv);
    return printf("%lld.%06ld\n", static_cast<long long>(tv.tv_sec), static_cast<long>(tv.tv_usec)) < 0;
}

int now(int, char **) { return cli::print_text(vesk_time_get_local_time()); }

int item(int, char **argv)
{
    if (!argv[0][0] || argv[0][1]) {
        fprintf(stderr, "vesk time item: give one letter of y m d h i s f\n");
        return 2;
    }
    return cli::print_text(vesk_time_get_local_time_by_item(argv[0][0]));
}

int format(int, char **argv)
{
    int t;
    if (!cli::parse_int(argv[0], &t)) {
        fprintf(stderr, "vesk time format: %s is not a number of seconds\n", argv[0]);
        return 2;
    }
    char buf[128];
    return cli::print_text(vesk_time_get_str(t, argv[1], buf, sizeof buf));
}

int day_number(int, char **argv)
{
    int month, day;
    if (!cli::parse_int(argv[0], &month) || !cli::parse_int(argv[1], &day)) {
        fprintf(stderr, "vesk time day-number: MONTH and DAY are numbers\n");
        return 2;
    }
    return printf("%d\n", date_to_non_zero_julian_day(month, day)) < 0;
}

int set_zone(int, char **argv)
{
    unsigned int index;
    if (!cli::parse_uint(argv[0], &index)) {
        fprintf(stderr, "vesk time set-zone: %s is not a zone number\n", argv[0]);
        return 2;
    }
    const int ok = vesk_set_time_zone(index);
    printf("%d\n", ok);
    return ok ? 0 : 1;
}

int set_date(int argc, char **argv)
{
    struct tm t = {};
    char end;
    // The date tool's fields as they go on its command line: calendar month
    // and full year.
    if (sscanf(argv[0], "%d-%d-%d%c", &t.tm_year, &t.tm_mon, &t.tm_mday, &end) != 3 ||
        sscanf(argv[1], "%d:%d%c", &t.tm_hour, &t.tm_min, &end) != 2) {
        fprintf(stderr, "vesk time set-date: give YYYY-MM-DD hh:mm [utc]\n");
        return 2;
    }
    return printf("%d\n", vesk_set_date_time(&t, argc > 2 && argv[2][0] == 'u')) < 0;
}

int leap(int, char **argv)
{
    int year;
    if (!cli::parse_int(argv[0], &year)) {
        fprintf(stderr, "vesk time leap: %s is not a year\n", argv[0]);
        return 2;
    }
    return printf("%d\n", vesk_is_leap_year(year)) < 0;
}

// YEAR/MONTH/DAY, each field 0 to 65535.
bool parse_date(const char *text, vesk_date *d)
{
    unsigned int y, m, day;
    char end;
    if (sscanf(text, "%u/%u/%u%c", &y, &m, &day, &end) != 3 || y > 0xFFFF || m > 0xFFFF || day > 0xFFFF)
        return false;
    *d = vesk_date{static_cast<uint16_t>(y), static_cast<uint16_t>(m), static_cast<uint16_t>(day), 0, 0, 0};
    return true;
}

int advance(int, char **argv)
{
    vesk_date base, step, result = {};
    if (!parse_date(argv[0], &base) || !parse_date(argv[1], &step)) {
        fprintf(stderr, "vesk time advance: dates are YEAR/MONTH/DAY\n");
        return 2;
    }
    vesk_date_advance(base, &result, step);
    return printf("%u/%u/%u\n", result.year, result.month, result.day) < 0;
}

int duration(int argc, char **argv)
{
    unsigned int seconds;
    if (!cli::parse_uint(argv[0], &seconds)) {
        fprintf(stderr, "vesk time duration: %s is not a number of seconds\n", argv[0]);
        return 2;
    }
    const int compact = argc > 1 && argv[1][0] == 'c';
    return printf("[%s]\n", vesk_transfer_time_format(seconds, compact)) < 0;
}

constexpr cli::command kCommands[] = {
    {"uptime", "", "whole seconds since the device started", 0, uptime},
    {"monotonic", "", "monotonic clock, seconds.microseconds", 0, monotonic},
    {"now", "", "local time, YYYY/MM/DD hh:mm:ss", 0, now},
    {"item", "LETTER", "one item of the local time: y m d h i s f", 1, item},
    {"format", "SECONDS FORMAT", "local text of a time in seconds since 1970 (strftime FORMAT)", 2, format},
    {"day-number", "MONTH DAY", "zero-based day of a leap year", 2, day_number},
    {"set-zone", "NUMBER", "write zone 0..75 with the stored daylight saving to /etc/TZ", 1, set_zone},
    {"set-date", "YYYY-MM-DD hh:mm [utc]", "set the clock through the date tool", 2, set_date},
    {"leap", "YEAR", "1 for a leap year", 1, leap},
    {"advance", "Y/M/D Y/M/D", "a date stepped by days, then months, then years", 2, advance},
    {"duration", "SECONDS [compact]", "a length of time in words, in brackets", 1, duration},
};

} // namespace

extern const cli::family family_time = {"time", "clock, time zones and calendar", kCommands};
