// Calendar arithmetic and the words for lengths of time. No clock is read.
#include <stddef.h>
#include <stdio.h>

#include <array>

#include "sysapi.h"
#include "vesk_time.h"

// The date record is part of the ABI: three 16-bit words that the calendar
// uses, then the caller's time of day.
static_assert(sizeof(vesk_date) == 12);
static_assert(offsetof(vesk_date, year) == 0);
static_assert(offsetof(vesk_date, month) == 2);
static_assert(offsetof(vesk_date, day) == 4);
static_assert(offsetof(vesk_date, hour) == 6);

namespace {

constexpr std::array<unsigned int, 12> kMonthLength = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};

// "49710 days 23 hours 59 mins 59 secs" is the longest text: 35 characters.
constexpr size_t kTimeFormatBufferSize = 36;
char time_format_buffer[kTimeFormatBufferSize];

const char *plural(unsigned int n) { return n == 1 ? "" : "s"; }

} // namespace

extern "C" {

int vesk_is_leap_year(int year)
{
    if (year % 400 == 0)
        return 1;
    if (year % 100 == 0)
        return 0;
    return year % 4 == 0 ? 1 : 0;
}

int vesk_fix_feb_29(int year, int month) { return month == 2 && vesk_is_leap_year(year) ? 1 : 0; }

void vesk_date_advance(vesk_date base, vesk_date *result, vesk_date step)
{
    if (!result)
        return;
    unsigned int year = base.year;
    unsigned int month = base.month;
    unsigned int day = base.day;
    if (month >= 1 && month <= 12) {
        // Days first, then months, then years: the order shapes the result.
        for (unsigned int i = 0; i < step.day; i++) {
            day++;
            if (day > kMonthLength[month - 1] + vesk_fix_feb_29(static_cast<int>(year), static_cast<int>(month))) {
                day = 1;
                if (++month == 13) {
                    month = 1;
                    year++;
                }
            }
        }
        for (unsigned int i = 0; i < step.month; i++) {
            if (++month == 13) {
                month = 1;
                year++;
            }
        }
        year += step.year;
        year &= 0xFFFF; // the record keeps 16 bits of the year
        if (month == 2 && day == 29 && !vesk_is_leap_year(static_cast<int>(year))) {
            month = 3;
            day = 1;
        }
    }
    result->year = static_cast<uint16_t>(year);
    result->month = static_cast<uint16_t>(month);
    result->day = static_cast<uint16_t>(day);
}

char *vesk_transfer_time_format(unsigned int seconds, int compact)
{
    const unsigned int days = seconds / 86400;
    const unsigned int hours = seconds % 86400 / 3600;
    const unsigned int minutes = seconds % 3600 / 60;
    const unsigned long secs = seconds % 60;
    char *buf = time_format_buffer;
    const size_t size = sizeof time_format_buffer;

    if (compact) {
        int n = days ? snprintf(buf, size, "%d day%s ", static_cast<int>(days), plural(days)) : 0;
        buf[n] = '\0';
        snprintf(buf + n, size - n, "%02u:%02u:%02lu ", hours, minutes, secs);
    } else if (days) {
        snprintf(buf, size, "%d day%s %d hour%s %d min%s %ld sec%s", static_cast<int>(days), plural(days),
                 static_cast<int>(hours), plural(hours), static_cast<int>(minutes), plural(minutes),
                 static_cast<long>(secs), plural(secs));
    } else if (hours) {
        snprintf(buf, size, "%d hours %d min %ld sec%s", static_cast<int>(hours), static_cast<int>(minutes),
                 static_cast<long>(secs), plural(secs));
    } else if (minutes) {
        snprintf(buf, size, "%d min %ld sec%s", static_cast<int>(minutes), static_cast<long>(secs), plural(secs));
    } else {
        snprintf(buf, size, "%ld sec%s", static_cast<long>(secs), plural(secs));
    }
    return buf;
}

void vesk_print_tm(const char *prefix, const struct tm *t)
{
    if (!t)
        return;
    T_PRINTF("%s%s%d:%d:%d date:%d/%d-%d \n", prefix ? prefix : "", prefix ? ": " : "", t->tm_hour, t->tm_min,
             t->tm_sec, static_cast<int>(static_cast<unsigned int>(t->tm_year) + 1900u), t->tm_mon, t->tm_mday);
}

} // extern "C"
