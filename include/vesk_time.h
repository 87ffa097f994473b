/* Time and date: the three clocks of the device (uptime seconds, monotonic
 * time, wall clock) and their texts, the day number used by the
 * daylight-saving rule. */
#ifndef VESK_TIME_H
#define VESK_TIME_H

#include <stddef.h>
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

VESK_END_DECLS

#endif
