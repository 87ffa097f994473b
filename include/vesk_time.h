/* Time and date: the three clocks of the device (uptime seconds, monotonic
 * time, wall clock) and their texts, the day number used by the
 * daylight-saving rule, and calendar arithmetic. */
#ifndef VESK_TIME_H
#define VESK_TIME_H

#include <stddef.h>
#include <stdint.h>
#include <sys/time.h>
#include <time.h>

#include "vesk_defs.h"

VESK_BEGIN_DECLS

/* ---- Clock ------------------------------------------------------------- */

/* Whole seconds since the device started, read from /proc/uptime (the
 * hundredths are dropped). 0 when the file cannot be read or holds no
 * number, which a caller cannot tell from the first second after boot. */
VESK_API unsigned int vesk_get_x_time(void);

/* Writes CLOCK_MONOTONIC to tv (microseconds truncated). It counts from an
 * arbitrary start and does not follow changes of the wall clock. A null tv
 * is left alone. Always returns 0. */
VESK_API int vesk_get_time_of_day(struct timeval *tv);

/* val = val - sub: when val's microseconds are the smaller, one second is
 * borrowed. Not normalised further; val earlier than sub gives negative
 * seconds. Returns val (nothing is changed when either pointer is null). */
VESK_API struct timeval *vesk_time_tv_sub(const struct timeval *sub, struct timeval *val);

/* Writes the local time t in the strftime format fmt into buf of size
 * bytes, or into a static buffer of 20 bytes (19 offered to strftime, size
 * ignored) when buf is null. The text is empty when t is -1, when fmt is
 * null or when the text does not fit.
 * Returns buf, or the static buffer; the next call with a null buf
 * overwrites that buffer. */
VESK_API char *vesk_time_get_str(time_t t, const char *fmt, char *buf, size_t size);

/* The current local time as "%Y/%m/%d %H:%M:%S".
 * Returns a static buffer of 40 bytes, overwritten by the next call. */
VESK_API char *vesk_time_get_local_time(void);

/* One item of the current local time: 'y' year "%Y", 'm' month "%m",
 * 'd' day "%d", 'h' hour "%H", 'i' minute "%M", 's' second "%S", 'f' the
 * full form "%Y/%m/%d %H:%M:%S" (lower case only). Any other letter prints
 * a diagnostic and leaves the buffer as the last good call left it (empty
 * before the first).
 * Returns a static buffer of 40 bytes, overwritten by the next call. */
VESK_API char *vesk_time_get_local_time_by_item(char item);

/* Zero-based number of month/day within a leap year: January 1 is 0,
 * February 29 is 59, March 1 is 60, December 31 is 365. day is not
 * checked against the month's length (April 31 counts as May 1).
 * Returns -1 for a month outside 1 to 12. */
VESK_API int date_to_non_zero_julian_day(int month, int day);

/* ---- Time zones -------------------------------------------------------- */

/* Writes the POSIX zone text of zone number index (0 to 75) to /etc/TZ,
 * with the daylight-saving dates of the store's "timedaylight" record when
 * that is enabled: "UTC+12UTC+11,60/00:00:00,304/23:59:59" for zone 0 and
 * March 1 to October 31, "UTC+12" without daylight saving. The record's
 * dates must be valid (months 1 to 12, days 1 to 31) even when it is off.
 * Returns 1 when /etc/TZ was rewritten (whatever the shell made of it), 0
 * after a diagnostic for an index of 76 or above or a date out of range,
 * /etc/TZ then left untouched. */
VESK_API int vesk_set_time_zone(unsigned int index);

/* Sets the clock with "date MMDDhhmmYYYY" (and " -u" when utc is non-zero,
 * else a trailing blank) from t, whose tm_mon holds the calendar month 1 to
 * 12 and tm_year the full year; tm_sec is not used. The command's result is
 * not looked at. Returns 1; 0 after a diagnostic when t is null. */
VESK_API int vesk_set_date_time(const struct tm *t, int utc);

/* ---- Calendar ---------------------------------------------------------- */

/* A date, passed by value. As a step it counts how many years, months and
 * days to add. The calendar functions use year, month and day only; the
 * time of day behind them is the caller's and is never read nor written. */
typedef struct vesk_date {
    uint16_t year;  /* full year */
    uint16_t month; /* 1 to 12 */
    uint16_t day;   /* 1 to 31 */
    uint16_t hour;
    uint16_t minute;
    uint16_t second;
} vesk_date;

/* 1 for a leap year of the Gregorian calendar, else 0. */
VESK_API int vesk_is_leap_year(int year);

/* Days to add to month's length in a common year: 1 for February of a
 * leap year, else 0. */
VESK_API int vesk_fix_feb_29(int year, int month);

/* Steps base by step.day days, then step.month months, then step.year
 * years, and moves February 29 of a common year to March 1; no other day
 * is clamped (January 31 plus one month is month 2, day 31). Writes year,
 * month and day of result; its other fields keep what they held. A base
 * month outside 1 to 12 is copied to result unchanged. A null result is
 * ignored. */
VESK_API void vesk_date_advance(vesk_date base, vesk_date *result, vesk_date step);

/* A duration in words, "1 day 1 hour 1 min 1 sec", "1 hours 0 min 0 secs",
 * or with compact non-zero "1 day 01:01:01 " (ending in a blank).
 * Returns a static buffer of 36 bytes, overwritten by the next call. */
VESK_API char *vesk_transfer_time_format(unsigned int seconds, int compact);

/* Prints one debug line "PREFIX: h:m:s date:YEAR/MON-MDAY " of t through
 * T_PRINTF (tm_mon as it stands, tm_year plus 1900). prefix may be null;
 * a null t prints nothing. */
VESK_API void vesk_print_tm(const char *prefix, const struct tm *t);

VESK_END_DECLS

#endif
