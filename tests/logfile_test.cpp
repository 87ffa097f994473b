#include <gtest/gtest.h>

#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <sstream>
#include <string>

#include "fake_clock.hpp"
#include "vdev.hpp"
#include "vesk_logfile.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

constexpr char kDir[] = "/var/log/sys";
constexpr char kList[] = "/var/logfile_list.txt";
constexpr char kWebList[] = "/var/logfile_web_list.txt";
constexpr char kTodayList[] = "/var/logfile_today_list.txt";
constexpr char kNoRecord[] = "Warning, File [/var/log/sys/sys] has no record!\n";
constexpr char kNoNumber[] = "vesk_logfile_get_last_record_date_and_number: No record found\n";

// The day is the fixed clock's in UTC, and the device's shell tools sort
// bytewise as they do on the board, whatever the host's locale.
class LogFile : public testing::Test {
protected:
    void SetUp() override
    {
        setenv("TZ", "UTC0", 1);
        tzset();
        setenv("LC_ALL", "C", 1);
        empty_dir();
    }
    void TearDown() override { fake_clock::release(); }
    static void empty_dir() { ASSERT_EQ(vdev::sh(std::string("rm -rf ") + kDir + " && mkdir -p " + kDir), 0); }

    // Noon UTC of a day given as "YYYYMMDD".
    static void day(const char *d)
    {
        struct tm tm = {};
        sscanf(d, "%4d%2d%2d", &tm.tm_year, &tm.tm_mon, &tm.tm_mday);
        tm.tm_year -= 1900, tm.tm_mon -= 1, tm.tm_hour = 12;
        fake_clock::set(timegm(&tm));
    }
    static void files(std::initializer_list<std::string> names)
    {
        for (const std::string &n : names)
            vdev::put(std::string(kDir) + "/" + n, "");
    }
    static void numbered(const char *date, int first, int last, const char *tag = "kern")
    {
        char name[80];
        for (int i = first; i <= last; i++) {
            snprintf(name, sizeof name, "sys_%s_%s_%02d.log", tag, date, i);
            files({name});
        }
    }
    // What the library printed; ls's own complaint about no match is the shell's, not ours.
    static std::string library_stderr()
    {
        std::istringstream in(GetCapturedStderr());
        std::string out;
        for (std::string line; std::getline(in, line);)
            if (line.rfind("ls:", 0) != 0)
                out += line + "\n";
        return out;
    }
    static int last_record(const char *tag_in, char *tag, char *date, int *number)
    {
        return vesk_logfile_get_last_record_date_and_number(kDir, "sys", tag_in, tag, date, number, "log");
    }
};

TEST_F(LogFile, ListsEveryTagAndDayOfThePrefix)
{
    files({"sys_kern_20150528_01.log", "sys_kern_20150528_00.log", "sys_wifi_20150101_00.log",
           "sys_kern_20150527_10.log", "sys_kern_20150528_100.log", "sys_kern_20150528_11.log", "other_x_20150528_00.log",
           "sys_kern_20150528_02.txt"});
    EXPECT_EQ(vesk_logfile_list_files(kDir, "sys", "ignored", "log"), 1);
    EXPECT_EQ(vdev::read(kList), "sys_kern_20150527_10.log\nsys_kern_20150528_00.log\nsys_kern_20150528_01.log\n"
                                 "sys_kern_20150528_100.log\nsys_kern_20150528_11.log\nsys_wifi_20150101_00.log\n");
    EXPECT_EQ(vdev::read(kWebList), "sys_wifi_20150101_00.log\nsys_kern_20150528_11.log\nsys_kern_20150528_100.log\n"
                                    "sys_kern_20150528_01.log\nsys_kern_20150528_00.log\nsys_kern_20150527_10.log\n");
    // Both lists are rewritten on each call.
    files({"sys_kern_20150528_12.log"});
    vdev::sh(std::string("rm ") + kDir + "/sys_wifi_20150101_00.log");
    EXPECT_EQ(vesk_logfile_list_files(kDir, "sys", "kern", "log"), 1);
    EXPECT_EQ(vdev::read(kList).find("wifi"), std::string::npos);
    EXPECT_EQ(vdev::read(kWebList).rfind("sys_kern_20150528_12.log\n", 0), 0u);
}

TEST_F(LogFile, NextNameOfTheDay)
{
    const struct { const char *name, *today; void (*fill)(); const char *next, *messages; } cases[] = {
        {"empty directory starts at 00", "20150528", [] {}, "sys_kern_20150528_00.log", kNoRecord},
        {"files 00 to 04 give 05", "20150528", [] { numbered("20150528", 0, 4); }, "sys_kern_20150528_05.log", ""},
        {"a file of the 25th passes the pattern but is another day", "20150528", [] { numbered("20150525", 0, 3); },
         "sys_kern_20150528_00.log", ""},
        {"the 28th lies outside the ten days of the 30th", "20150530", [] { numbered("20150528", 0, 3); },
         "sys_kern_20150530_00.log", kNoRecord},
        {"a new year's day", "20160101", [] { numbered("20151231", 0, 5); }, "sys_kern_20160101_00.log", kNoRecord},
        {"another tag does not count", "20150528", [] { numbered("20150528", 0, 6, "wifi"); },
         "sys_kern_20150528_00.log", kNoRecord},
        {"another extension does not count", "20150528", [] { files({"sys_kern_20150528_07.txt"}); },
         "sys_kern_20150528_00.log", kNoRecord},
        {"earlier days of the span sort before today", "20150528",
         [] { numbered("20150521", 0, 30), numbered("20150527", 0, 2), numbered("20150528", 0, 8); },
         "sys_kern_20150528_09.log", ""},
        {"a later day of the span sorts last", "20150528",
         [] { numbered("20150528", 0, 8), numbered("20150529", 0, 0); }, "sys_kern_20150528_00.log", ""},
        {"a name without a number is no record", "20150528", [] { files({"sys_kern_20150528.log"}); },
         "sys_kern_20150528_00.log", kNoNumber},
        // "sort -n" compares these names as text: 99 stays last once it
        // exists, so the day keeps getting number 100.
        {"more than 100 files of one day", "20150528",
         [] { numbered("20150520", 0, 40), numbered("20150528", 0, 120), numbered("20150527", 0, 120); },
         "sys_kern_20150528_100.log", ""},
        {"number 100 alone", "20150528", [] { numbered("20150528", 100, 100); }, "sys_kern_20150528_101.log", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        empty_dir();
        day(c.today);
        c.fill();
        CaptureStderr();
        EXPECT_EQ(std::string(vesk_logfile_get_filename(kDir, "sys", "kern", "log")), c.next);
        EXPECT_EQ(library_stderr(), c.messages);
    }
}

TEST_F(LogFile, NamingCreatesNothingAndRepeats)
{
    day("20150528");
    numbered("20150528", 0, 1);
    char *first = vesk_logfile_get_filename(kDir, "sys", "kern", "log");
    EXPECT_STREQ(first, "sys_kern_20150528_02.log");
    EXPECT_EQ(vesk_logfile_get_filename(kDir, "sys", "kern", "log"), first);
    EXPECT_STREQ(first, "sys_kern_20150528_02.log");
    EXPECT_EQ(vdev::sh(std::string("ls ") + kDir + " | wc -l | grep -qx 2"), 0);
    // A day's run of files: each named file is made before the next is asked.
    for (int i = 2; i < 12; i++) {
        std::string name = vesk_logfile_get_filename(kDir, "sys", "kern", "log");
        char want[40];
        snprintf(want, sizeof want, "sys_kern_20150528_%02d.log", i);
        ASSERT_EQ(name, want);
        files({name});
    }
}

TEST_F(LogFile, LastRecordOfTheDay)
{
    day("20150528");
    numbered("20150522", 0, 3);
    numbered("20150528", 0, 4);
    char tag[128], date[128];
    int number = -7;
    memset(tag, 'x', sizeof tag);
    EXPECT_EQ(last_record("kern", tag, date, &number), 1);
    EXPECT_STREQ(tag, "kern");
    EXPECT_STREQ(date, "20150528");
    EXPECT_EQ(number, 4);
    EXPECT_FALSE(vdev::exists(kTodayList)); // removed on success
    EXPECT_TRUE(vdev::exists(kList) && vdev::exists(kWebList)); // the lists stay

    // A tag with "_" in it shifts the fields: the record is misread.
    files({"sys_a_b_20150528_03.log"});
    EXPECT_EQ(last_record("a_b", tag, date, &number), 1);
    EXPECT_STREQ(tag, "a");
    EXPECT_STREQ(date, "b");
    EXPECT_EQ(number, 20150528);
}

TEST_F(LogFile, FailureLeavesOutputsEmptyAndNumberAlone)
{
    day("20150528");
    files({"sys_kern_20150528.log"});
    for (const char *messages : {kNoNumber, kNoRecord}) {
        char tag[128] = "old", date[128] = "old";
        int number = 42;
        CaptureStderr();
        EXPECT_EQ(last_record("kern", tag, date, &number), 0);
        EXPECT_EQ(library_stderr(), messages);
        EXPECT_STREQ(tag, "");
        EXPECT_STREQ(date, "");
        EXPECT_EQ(number, 42);
        // kept until the next call
        EXPECT_EQ(vdev::read(kTodayList), messages == kNoNumber ? "sys_kern_20150528.log\n" : "");
        vdev::sh(std::string("rm ") + kDir + "/*");
    }
}

TEST_F(LogFile, NullArgumentsAndOverlongNames)
{
    for (int i = 0; i < 4; i++) {
        const char *a[4] = {kDir, "sys", "kern", "log"};
        a[i] = nullptr;
        CaptureStderr();
        EXPECT_EQ(vesk_logfile_list_files(a[0], a[1], a[2], a[3]), 0) << i;
        EXPECT_EQ(GetCapturedStderr(), "Error: vesk_logfile_list_files, input is NULL!\n") << i;
    }
    char tag[128] = "old", date[128] = "old";
    int number = 42;
    CaptureStderr();
    EXPECT_EQ(last_record(nullptr, tag, date, &number), 0);
    EXPECT_EQ(last_record("kern", tag, date, nullptr), 0);
    EXPECT_STREQ(vesk_logfile_get_filename(kDir, nullptr, "kern", "log"), "");
    EXPECT_EQ(GetCapturedStderr(), "Error: vesk_logfile_get_last_record_date_and_number, input is NULL!\n"
                                   "Error: vesk_logfile_get_last_record_date_and_number, input is NULL!\n"
                                   "Error: vesk_logfile_get_filename, input is NULL!\n");
    EXPECT_STREQ(tag, "");
    EXPECT_EQ(number, 42);
    EXPECT_FALSE(vdev::exists(kList) || vdev::exists(kWebList));

    // 79 characters fit the buffer; one more would cut the name.
    day("20150528");
    const std::string fits(59, 't'), too_long(60, 't');
    CaptureStderr();
    EXPECT_EQ(strlen(vesk_logfile_get_filename(kDir, "sys", fits.c_str(), "log")), 79u);
    EXPECT_STREQ(vesk_logfile_get_filename(kDir, "sys", too_long.c_str(), "log"), "");
    EXPECT_EQ(library_stderr(), std::string(kNoRecord) + kNoRecord + "vesk_logfile_get_filename: file name too long!\n");
}

} // namespace
