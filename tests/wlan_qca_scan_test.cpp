// The QCA survey against the device model's radio: range data, scan,
// polling, buffer growth and the cells of its event stream.
#include <gtest/gtest.h>
#include <string.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "fake_sleep.hpp"
#include "vdev.hpp"
#include "vesk_iw.h"
#include "vesk_wlan.h"

namespace {

const std::string kAth0 = "/run/vdev/radio/ath0/";

std::vector<vesk_site_survey_record> survey(const char *ifname, int *result)
{
    std::vector<vesk_site_survey_record> buf(VESK_SURVEY_RECORDS_QCA);
    *result = vesk_wlan_get_site_survey(ifname, buf.data(), 10);
    return buf;
}

// The lengths the library offered for the results, in order.
std::vector<std::string> result_requests()
{
    std::vector<std::string> out;
    for (const std::string &l : vdev::ioctls())
        if (l.rfind("ath0 scan_results ", 0) == 0)
            out.push_back(l.substr(18));
    return out;
}

std::string many_cells(int n)
{
    std::string s;
    for (int i = 0; i < n; i++)
        s += "bssid=02:00:00:00:" + std::to_string(10 + i / 100) + ":" + std::to_string(10 + i % 90) +
             " ssid=\"cell number " + std::to_string(i) + "\" channel=36 enc=off qual=50 phy=15\n";
    return s;
}

TEST(QcaSurvey, DefaultRadioListsItsFiveGigahertzCells)
{
    int result;
    auto recs = survey("ath0", &result);
    ASSERT_EQ(result, 1);
    struct row {
        int channel, last;
        const char *ssid, *security;
        int rssi, dbm;
        const char *type, *ext;
    } rows[] = {
        {36, 1, "vesk-office", "WPA2PSK/AES", 70 * 100 / 94, 200 - 161, "11ac", "ABOVE"},
        {40, 2, "Cafe, Corner", "WPA1PSKWPA2PSK/TKIPAES", 52 * 100 / 94, 190 - 161, "11a/n", "ABOVE"},
        {149, 3, "guest", "NONE", 30 * 100 / 94, 175 - 161, "11ac", "NONE"},
        {44, 4, "02:5A:00:00:00:04", "WPA2/AES", 61 * 100 / 94, 195 - 161, "11ac", "BELOW"}, // hidden: its BSSID
        {48, 6, "old-wep", "WEP", 20 * 100 / 94, 170 - 161, "11a", "NONE"}, // channel 6 left out between
    };
    for (size_t i = 0; i < std::size(rows); i++) {
        const row &r = rows[i];
        SCOPED_TRACE(r.ssid);
        EXPECT_EQ(recs[i].channel, r.channel);
        EXPECT_EQ(recs[i].bssid[5], r.last);
        EXPECT_STREQ(recs[i].ssid, r.ssid);
        EXPECT_STREQ(recs[i].security, r.security);
        EXPECT_EQ(recs[i].rssi, r.rssi);
        EXPECT_EQ(recs[i].dbm, r.dbm);
        EXPECT_STREQ(recs[i].wireless_type, r.type);
        EXPECT_STREQ(recs[i].ex_channel, r.ext);
    }
    EXPECT_EQ(recs[std::size(rows)].channel, 0);
    EXPECT_EQ(vdev::ioctls(), (std::vector<std::string>{"ath0 range length=1176", "ath0 scan channel=0 flags=8",
                                                        "ath0 scan_results length=4095"}));
}

TEST(QcaSurvey, OtherLayoutsOfTheStreamGiveTheSameRecords)
{
    // "ath1" keeps the 2.4 GHz cell; a last cell on channel 6 on "ath0" leaves its record zero.
    vdev::sh("cp " + kAth0 + "cells /run/vdev/radio/ath1/; echo 'bssid=02:5A:00:00:00:07 channel=6' >>" + kAth0 + "cells");
    int result;
    auto base = survey("ath0", &result);
    auto other = survey("ath1", &result);
    EXPECT_EQ(other[4].channel, 6);
    EXPECT_STREQ(other[4].security, "WPAPSK/TKIP");
    EXPECT_EQ(memcmp(&other[5], &base[4], sizeof base[4]), 0);
    EXPECT_EQ(base[5].channel, 0);
    for (const char *range : {"version=18", "words=64", "version=20 words=64"}) {
        SCOPED_TRACE(range);
        vdev::put(kAth0 + "range", range);
        auto recs = survey("ath0", &result);
        EXPECT_EQ(result, 1);
        EXPECT_EQ(memcmp(recs.data(), base.data(), 6 * sizeof base[0]), 0);
    }
}

TEST(QcaSurvey, PollsWithinItsBudgetAndGrowsTheBufferOnDemand)
{
    struct row {
        const char *name, *range, *failures;
        int cells, result;
        std::vector<std::string> asked;
        unsigned long long slept_us;
    } rows[] = {
        {"results on the fourth look", "", "ath0 scan_results EAGAIN 3", 1, 1,
         {"length=4095", "length=4095", "length=4095", "length=4095"}, 250000 + 3 * 100000},
        {"never ready: 148 looks, 14.95 s", "", "ath0 scan_results EAGAIN", 1, -1,
         std::vector<std::string>(148, "length=4095"), 14950000},
        {"too big, no length wanted", "", "ath0 scan_results E2BIG 1", 1, 1, {"length=4095", "length=8190"}, 250000},
        {"300 cells: the length the driver wants, 256 records", "", "", 300, 1, {"length=4095", "length=*"}, 250000},
        {"too big for a version 16 driver", "version=16", "", 300, -1, {"length=4095"}, 250000},
        {"range data refused", "", "ath0 range EIO", 1, -1, {}, 0},
        {"driver too old to scan", "version=13", "", 1, -1, {}, 0},
        {"short range answer reads as version 9", "length=200", "", 1, -1, {}, 0},
        {"scan refused", "", "ath0 scan EPERM", 1, -1, {}, 0},
    };
    for (const row &r : rows) {
        SCOPED_TRACE(r.name);
        vdev::put(kAth0 + "range", r.range);
        vdev::put(kAth0 + "cells", many_cells(r.cells));
        vdev::remove("/run/vdev/fail/ioctl");
        if (*r.failures)
            vdev::put("/run/vdev/fail/ioctl", std::string(r.failures) + "\n");
        vdev::clear_journal();
        fake_sleep::reset();
        int result;
        auto recs = survey("ath0", &result);
        EXPECT_EQ(result, r.result);
        std::vector<std::string> asked = result_requests();
        if (r.cells == 300 && asked.size() == 2) {
            EXPECT_GT(std::stoi(asked[1].substr(7)), 4095);
            asked[1] = "length=*";
            EXPECT_STREQ(recs[255].ssid, "cell number 255");
        }
        EXPECT_EQ(asked, r.asked);
        EXPECT_EQ(fake_sleep::slept_us, r.slept_us);
        if (r.result < 0) {
            EXPECT_EQ(recs[0].channel, 0);
        }
    }
}

TEST(QcaSurvey, RangeDataOfOlderDriversMovesToItsPlace)
{
    struct row {
        const char *range;
        int version, max_qual, channel_of_5180;
    } rows[] = {
        {"version=22 max_qual=70", 22, 70, 36},
        {"version=15 max_qual=70 channels=1,6,36", 15, 70, 36}, // the older layout
        {"length=200", 9, 0, 0},                               // treated as version 9
    };
    for (const row &r : rows) {
        SCOPED_TRACE(r.range);
        vdev::put(kAth0 + "range", r.range);
        int fd = socket(AF_INET, SOCK_DGRAM, 0);
        iw_range range;
        ASSERT_EQ(iw_get_range_info(fd, "ath0", &range), 0);
        close(fd);
        EXPECT_EQ(range.we_version_compiled, r.version);
        EXPECT_EQ(range.max_qual.qual, r.max_qual);
        EXPECT_EQ(iw_freq_to_channel(5180e6, &range), r.channel_of_5180);
    }
    vdev::fail_ioctl("ath0", "range", "ENODEV");
    iw_range range;
    EXPECT_EQ(iw_get_range_info(-1, "ath0", &range), -1);
}

} // namespace
