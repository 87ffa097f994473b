// Past 2038: the board's build uses a 64-bit time_t, so the clock, time
// texts and log names run on where a 32-bit count would wrap to 1901.
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/time.h>
#include <time.h>

#include <string>

#include "fake_clock.hpp"
#include "vdev.hpp"
#include "vesk_logfile.h"
#include "vesk_time.h"

namespace {

static_assert(sizeof(time_t) == 8, "the library is built with 64-bit time on every target");

std::string local_text(time_t t, const char *format)
{
    struct tm tm;
    char text[64];
    localtime_r(&t, &tm);
    strftime(text, sizeof text, format, &tm);
    return text;
}

TEST(Past2038, ClockTextsLogNamesAndDates)
{
    setenv("TZ", "UTC0", 1);
    tzset();
    for (const time_t t : {time_t{0x7FFFFFFF} + 1, time_t{2200000000}, time_t{4102444800} /* 2100-01-01 */}) {
        SCOPED_TRACE(static_cast<long long>(t));
        fake_clock::scoped clock(t);
        EXPECT_EQ(vesk_time_get_local_time(), local_text(t, "%Y/%m/%d %H:%M:%S"));
        EXPECT_EQ(vesk_time_get_local_time_by_item('y'), local_text(t, "%Y"));
        char buf[32];
        EXPECT_EQ(vesk_time_get_str(t, "%Y-%m-%d %H:%M", buf, sizeof buf), local_text(t, "%Y-%m-%d %H:%M"));
        ASSERT_EQ(vdev::sh("mkdir -p /tmp/log"), 0);
        EXPECT_EQ(vesk_logfile_get_filename("/tmp/log", "sys", "wifi", "log"), "sys_wifi_" + local_text(t, "%Y%m%d") + "_00.log");
        struct timeval later = {t, 5}, earlier = {t - 86400, 7};
        EXPECT_EQ(vesk_time_tv_sub(&earlier, &later)->tv_sec, 86399);
    }
    EXPECT_STREQ(vesk_time_get_str(2200000000, "%Y-%m-%d", nullptr, 0), "2039-09-18");
    unsetenv("TZ");
    tzset();
}

} // namespace
