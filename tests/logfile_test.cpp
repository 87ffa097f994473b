#include <gtest/gtest.h>

#include <stdlib.h>
#include <string.h>
#include <time.h>

#include <tuple>

#include "fake_clock.hpp"
#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_logfile.h"

namespace {

using lines = std::vector<std::string>;
constexpr char kDir[] = "/var/log/sys";
constexpr char kNoRecord[] = "Warning, File [/var/log/sys/sys] has no record!\n";
constexpr char kNoNumber[] = "vesk_logfile_get_last_record_date_and_number: No record found\n";
const lines kListing = {"cd /var/log/sys;ls sys*.log |sort -n> /var/logfile_list.txt",
                        "cd /var/log/sys;ls sys*.log |sort -r> /var/logfile_web_list.txt"};

// The day is the fixed clock's in UTC, and the device's shell tools sort
// bytewise as they do on the board, whatever the host's locale.
class LogFile : public testing::Test {
protected:
    void SetUp() override
    {
        setenv("TZ", "UTC0", 1), tzset();
        setenv("LC_ALL", "C", 1);
        empty_dir();
        day("20150528");
    }
    void TearDown() override { fake_clock::release(); }
    // Left with one file of another tag, so that ls always lists one and never complains.
    static void empty_dir()
    {
        ASSERT_EQ(vdev::sh(std::string("rm -rf ") + kDir + " && mkdir -p " + kDir + " && touch " + kDir + "/sys_x_1.log"), 0);
    }

    // Noon UTC of a day given as "YYYYMMDD".
    static void day(const char *d)
    {
        struct tm tm = {};
        sscanf(d, "%4d%2d%2d", &tm.tm_year, &tm.tm_mon, &tm.tm_mday);
        tm.tm_year -= 1900, tm.tm_mon -= 1, tm.tm_hour = 12;
        fake_clock::set(timegm(&tm));
    }
    static void files(const std::string &names) { ASSERT_EQ(vdev::sh(std::string("cd ") + kDir + " && touch " + names), 0); }
    static void numbered(const char *date, int first, int last)
    {
        for (int i = first; i <= last; i++)
            files("sys_kern_" + std::string(date) + (i < 10 ? "_0" : "_") + std::to_string(i) + ".log");
    }
    // Result, tag, date and number of a look-up into unterminated outputs and a number of 42.
    static std::tuple<int, std::string, std::string, int> last_record(const char *tag_in)
    {
        char tag[129], date[129];
        memset(tag, 'x', 128), memset(date, 'x', 128), tag[128] = date[128] = '\0';
        int number = 42;
        const int rc = vesk_logfile_get_last_record_date_and_number(kDir, "sys", tag_in, tag, date, &number, "log");
        return {rc, tag, date, number};
    }
};

TEST_F(LogFile, ListsThePrefixSortedBothWays)
{
    EXPECT_EQ(vesk_logfile_list_files(kDir, "sys", "ignored", "log"), 1);
    EXPECT_EQ(vdev::commands(), kListing);
    EXPECT_EQ(vesk_firmware_list_files(), 1);
}

TEST_F(LogFile, NextNameOfTheDay)
{
    const struct { const char *today; void (*fill)(); const char *next, *messages; } cases[] = {
        {"21000101", [] {}, "sys_kern_21000101_00.log", kNoRecord}, // past 2038
        // The 25th passes the pattern but is another day.
        {"20150528", [] { numbered("20150525", 0, 3); }, "sys_kern_20150528_00.log", ""},
        {"20150528", [] { numbered("20150521", 0, 30), numbered("20150527", 0, 2), numbered("20150528", 0, 8); },
         "sys_kern_20150528_09.log", ""}, // earlier days of the span sort before today
        {"20150528", [] { files("sys_kern_20150528.log"); }, "sys_kern_20150528_00.log", kNoNumber},
        {"20150528", [] { numbered("20150528", 100, 100); }, "sys_kern_20150528_101.log", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.next);
        empty_dir();
        day(c.today);
        c.fill();
        std::string next;
        EXPECT_EQ(stderr_of([&] { next = vesk_logfile_get_filename(kDir, "sys", "kern", "log"); }), c.messages);
        EXPECT_EQ(next, c.next);
    }
}

TEST_F(LogFile, LastRecordOfTheDayOrEmptyOutputs)
{
    numbered("20150522", 0, 3), numbered("20150528", 0, 4);
    vdev::clear_journal();
    EXPECT_EQ(last_record("kern"), std::make_tuple(1, "kern", "20150528", 4));
    lines want = kListing;
    want.insert(want.end(), {"grep -h 'sys_kern_20150528*' /var/logfile_list.txt > /var/logfile_today_list.txt",
                             "rm -rf /var/logfile_today_list.txt"});
    EXPECT_EQ(vdev::commands(), want);

    // A failure leaves the outputs empty and the number alone.
    empty_dir();
    files("sys_kern_20150528.log");
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(last_record("kern"), std::make_tuple(0, "", "", 42)); }), kNoNumber);
}

TEST_F(LogFile, NullArgumentsAndOverlongNames)
{
    for (int i = 0; i < 4; i++) {
        const char *a[4] = {kDir, "sys", "kern", "log"};
        a[i] = nullptr;
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_logfile_list_files(a[0], a[1], a[2], a[3]), 0) << i; }),
                  "Error: vesk_logfile_list_files, input is NULL!\n");
        EXPECT_EQ(stderr_of([&] { EXPECT_STREQ(vesk_logfile_get_filename(a[0], a[1], a[2], a[3]), ""); }),
                  "Error: vesk_logfile_get_filename, input is NULL!\n");
    }
    const std::string null_input = "Error: vesk_logfile_get_last_record_date_and_number, input is NULL!\n";
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(last_record(nullptr), std::make_tuple(0, "", "", 42)); }), null_input);
    char tag[128], date[128];
    EXPECT_EQ(stderr_of([&] {
                  EXPECT_EQ(vesk_logfile_get_last_record_date_and_number(kDir, "sys", "kern", tag, date, nullptr, "log"), 0);
              }), null_input);
    EXPECT_EQ(vdev::commands(), lines{});
    // The grep pattern "sys_TAG_DATE*" has 256 bytes: a tag of 242 characters is refused before grep runs.
    const std::string tag242(242, 't');
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(std::get<0>(last_record(tag242.c_str())), 0); }),
              "vesk_logfile_get_last_record_date_and_number: name parts too long!\n");
    EXPECT_EQ(vdev::commands(), kListing);

    // 79 characters fit the buffer; one more would cut the name.
    const std::string fits(59, 't'), too_long(60, 't');
    EXPECT_EQ(stderr_of([&] {
                  EXPECT_EQ(strlen(vesk_logfile_get_filename(kDir, "sys", fits.c_str(), "log")), 79u);
                  EXPECT_STREQ(vesk_logfile_get_filename(kDir, "sys", too_long.c_str(), "log"), "");
              }), std::string(kNoRecord) + kNoRecord + "vesk_logfile_get_filename: file name too long!\n");
}

} // namespace
