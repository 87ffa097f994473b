// The device's clocks: uptime seconds, monotonic time and the wall clock as
// text, and the day number of the daylight-saving rule.
#include "vesk_time.h"

#include <stdio.h>
#include <string.h>

#include <array>
#include <type_traits>

#include "core/unique.hpp"
#include "sysapi.h"

namespace {

// a - b modulo the width of T.
template <typename T> T wrapping_sub(T a, T b)
{
    using U = std::make_unsigned_t<T>;
    return static_cast<T>(static_cast<U>(static_cast<U>(a) - static_cast<U>(b)));
}

constexpr size_t kTimeStrBufferSize = 20;
constexpr size_t kTimeStrCapacity = 19; // one byte short: the full form needs a caller's buffer
constexpr size_t kLocalTimeBufferSize = 40;
constexpr int kUptimeLineSize = 80;
constexpr const char *kFullForm = "%Y/%m/%d %H:%M:%S";

char time_str_buffer[kTimeStrBufferSize];
char local_time_buffer[kLocalTimeBufferSize];
char local_time_item_buffer[kLocalTimeBufferSize];

// Month lengths that number the days of a leap year from 0 together with
// the rule below: January counts 30 because its own day is taken minus 1.
constexpr std::array<int, 12> kJulianMonthLength = {30, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
static_assert(kJulianMonthLength[0] + 1 + kJulianMonthLength[1] == 60, "March 1 is day 60");

struct item_format {
    unsigned char item;
    const char *format;
};
constexpr item_format kItemFormats[] = {
    {'y', "%Y"}, {'m', "%m"}, {'d', "%d"}, {'h', "%H"}, {'i', "%M"}, {'s', "%S"}, {'f', kFullForm},
};

} // namespace

extern "C" {

unsigned int vesk_get_x_time(void)
{
    // 64-bit words, so that the board (32-bit long) and a host read the
    // same number from the same text.
    long long seconds = 0;
    long long hundredths = 0;
    vesk::unique_file f = vesk::open_file("/proc/uptime", "r");
    if (!f)
        return 0;
    char line[kUptimeLineSize];
    if (fgets(line, sizeof line, f.get()) && sscanf(line, "%lld.%lld", &seconds, &hundredths) >= 1 && seconds >= 0)
        return static_cast<unsigned int>(seconds);
    return 0;
}

int vesk_get_time_of_day(struct timeval *tv)
{
    if (!tv)
        return 0;
    struct timespec ts = {};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    tv->tv_sec = ts.tv_sec;
    tv->tv_usec = ts.tv_nsec / 1000;
    return 0;
}

struct timeval *vesk_time_tv_sub(const struct timeval *sub, struct timeval *val)
{
    if (!sub || !val)
        return val;
    // Two's complement wrap-around instead of signed overflow at the ends.
    val->tv_sec = wrapping_sub(val->tv_sec, sub->tv_sec);
    if (val->tv_usec < sub->tv_usec) {
        val->tv_sec = wrapping_sub(val->tv_sec, decltype(val->tv_sec){1});
        val->tv_usec = wrapping_sub(val->tv_usec, decltype(val->tv_usec){-1000000});
    }
    val->tv_usec = wrapping_sub(val->tv_usec, sub->tv_usec);
    return val;
}

char *vesk_time_get_str(time_t t, const char *fmt, char *buf, size_t size)
{
    if (!buf) {
        buf = time_str_buffer;
        size = kTimeStrCapacity;
    }
    if (size == 0)
        return buf; // no room even for the terminator
    buf[0] = '\0';
    if (t == static_cast<time_t>(-1) || !fmt)
        return buf;
    struct tm tm;
    if (!localtime_r(&t, &tm))
        return buf;
    // strftime leaves the buffer undefined when the text does not fit.
    if (strftime(buf, size, fmt, &tm) == 0)
        buf[0] = '\0';
    return buf;
}

char *vesk_time_get_local_time(void)
{
    return vesk_time_get_str(time(nullptr), kFullForm, local_time_buffer, sizeof local_time_buffer);
}

char *vesk_time_get_local_time_by_item(char item)
{
    const auto code = static_cast<unsigned char>(item);
    for (const item_format &f : kItemFormats) {
        if (f.item == code)
            return vesk_time_get_str(time(nullptr), f.format, local_time_item_buffer,
                                     sizeof local_time_item_buffer);
    }
    T_PRINTF("error format in%s\n", __func__);
    return local_time_item_buffer;
}

int date_to_non_zero_julian_day(int month, int day)
{
    if (month < 1 || month > 12)
        return -1;
    if (month == 1)
        return day - 1;
    int number = day;
    for (int m = 1; m < month; m++)
        number += kJulianMonthLength[m - 1];
    return number;
}

} // extern "C"
