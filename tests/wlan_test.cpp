#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "output_of.hpp"
#include "quil.h"
#include "vdev.hpp"
#include "vesk_snmp.h"
#include "vesk_wlan.h"

namespace {

using lines = std::vector<std::string>;

void set_number(const char *key, int v) { ASSERT_EQ(quil_set_value(&v, key), 0) << key; }

vesk_wlif_info wlif()
{
    vesk_wlif_info info = {};
    quil_get_value(&info, "wlif_info");
    return info;
}

// A survey buffer for the channel, zeroed as callers zero it.
std::vector<vesk_site_survey_record> survey_buffer(size_t records, uint32_t channel)
{
    std::vector<vesk_site_survey_record> buf(records);
    memcpy(buf.data(), &channel, sizeof channel);
    return buf;
}

// A station record as "index mac percent% stat rank rssi counters".
std::string sta(const vesk_sta_record &r)
{
    char s[160];
    snprintf(s, sizeof s, "%d %02X:%02X:%02X:%02X:%02X:%02X %d%% stat %u rank %d rssi %d %u,%u,%u,%u", r.index, r.mac[0],
             r.mac[1], r.mac[2], r.mac[3], r.mac[4], r.mac[5], r.percent, r.stat_value, r.rank_value, r.rssi,
             r.counters[0], r.counters[1], r.counters[2], r.counters[3]);
    return s;
}

TEST(WlanSurvey, FileFillsNoMoreThanTheBuffer)
{
    // A line that is no record (an SSID with a line break) is passed over. Found by fuzzing: the field
    // after a missing label was copied from no data; it stays empty.
    std::string many = "uptime: 1000\r\nbroken line\r\n{Ch:11, SSID:Cafe, BSSID:02:AA:00:00:00:01, Sec:NONE, "
                       "RSSI:81, dbm:-52, Ex_ch:ABO Type:11b/g}\r\n";
    for (int i = 1; i < 70; i++)
        many += "{Ch:11, SSID:n" + std::to_string(i) +
                ", BSSID:02:BB:00:00:00:01, Sec:NONE, RSSI:81, dbm:-52, Ex_ch:NONE, Type:11b}\r\n";
    vdev::put("/tmp/survey/ch_11.txt", many);
    vdev::put("/proc/uptime", "1030.99 2000.00\n");
    for (auto [ifname, records] : {std::pair{"ra0", VESK_SURVEY_RECORDS_RALINK}, {"ath0", VESK_SURVEY_RECORDS_QCA}}) {
        auto buf = survey_buffer(records + 1, 11);
        buf.back().channel = 99; // guard behind the caller's records
        EXPECT_EQ(vesk_wlan_get_site_survey(ifname, buf.data(), 30), 0);
        EXPECT_EQ(std::string(buf[0].ssid) + "|" + buf[0].wireless_type + "|" + buf[63].ssid, "Cafe||n63");
        EXPECT_EQ(std::make_tuple(buf[64].channel, buf.back().channel), std::make_tuple(records > 64 ? 11 : 99, 99));
    }
}

constexpr char kLab[] = "bssid=02:AA:00:00:00:01 channel=36 ssid=\"Lab, 5G\" security=WPA2PSK/AES rssi=81 type=11a/n "
                       "ext=ABOVE dbm=-52\n"
                       "bssid=02:AA:00:00:00:02 channel=40 ssid=Other security=NONE rssi=20 type=11ac ext=NONE dbm=-90\n"
                       "bssid=02:AA:00:00:00:03 channel=36 ssid=Secret security=WEP rssi=35 type=11a ext=BELOW "
                       "dbm=-80 hidden=1\n";

// ra0's survey of the channel at most 30 seconds old into a fresh buffer.
int ra0_survey(std::vector<vesk_site_survey_record> &buf, uint32_t channel)
{
    buf = survey_buffer(VESK_SURVEY_RECORDS_RALINK, channel);
    return vesk_wlan_get_site_survey("ra0", buf.data(), 30);
}

TEST(WlanSurvey, RalinkScanThenFile)
{
    vdev::put("/run/vdev/radio/ra0/survey", kLab);
    vdev::put("/proc/uptime", "500.00 900.00\n");
    std::vector<vesk_site_survey_record> scanned, stored, again;
    EXPECT_EQ(ra0_survey(scanned, 36), 1);
    EXPECT_EQ(vdev::ioctls(), lines{"ra0 survey length=6400 channel=36"});
    // The driver's list stands whole; the file keeps channel 36 only.
    EXPECT_EQ(std::make_tuple(scanned[1].channel, scanned[2].ssid[0]), std::make_tuple(40, '\0')); // [2] is hidden
    EXPECT_EQ(vdev::read("/tmp/survey/ch_36.txt"),
              "uptime: 500\r\n"
              "{Ch:36, SSID:Lab, 5G, BSSID:02:AA:00:00:00:01, Sec:WPA2PSK/AES, RSSI:81, dbm:-52, Ex_ch:ABOVE, "
              "Type:11a/n}\r\n"
              "{Ch:36, SSID:, BSSID:02:AA:00:00:00:03, Sec:WEP, RSSI:35, dbm:-80, Ex_ch:BELOW, Type:11a}\r\n");

    vdev::put("/proc/uptime", "530.00 900.00\n");
    EXPECT_EQ(ra0_survey(stored, 36), 0);
    EXPECT_EQ(memcmp(&stored[0], &scanned[0], sizeof stored[0]), 0);
    scanned[2].hidden = 0; // the file tells neither this nor the hidden SSID's bytes behind its terminator
    memset(scanned[2].ssid, 0, sizeof scanned[2].ssid);
    EXPECT_EQ(memcmp(&stored[1], &scanned[2], sizeof stored[1]), 0);

    // One second older than asked: scan again. A failing scan keeps the file.
    vdev::put("/proc/uptime", "531.00 900.00\n");
    EXPECT_EQ(ra0_survey(again, 36), 1);
    vdev::put("/proc/uptime", "600.00 900.00\n");
    vdev::fail_ioctl("ra0", "survey", "EIO");
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(ra0_survey(again, 36), -1); }),
              "ioctl error, get_site_survey:Input/output error\n");
    EXPECT_EQ(vdev::read("/tmp/survey/ch_36.txt").substr(0, 13), "uptime: 531\r\n");

    // Every channel: always the driver, never a file.
    vdev::remove("/run/vdev/fail/ioctl");
    vdev::put("/tmp/survey/ch_0.txt", "uptime: 600\r\n");
    EXPECT_EQ(ra0_survey(again, 0), 1);
    EXPECT_EQ(vdev::read("/tmp/survey/ch_0.txt"), "uptime: 600\r\n");

    // Without the directory every request scans and nothing is stored.
    ASSERT_EQ(vdev::sh("rm -r /tmp/survey"), 0);
    EXPECT_EQ(ra0_survey(again, 36) + ra0_survey(again, 36), 2);
}

TEST(WlanDispatch, NameChoosesTheFamily)
{
    const struct { const char *ifname, *err; lines commands; } cases[] = {
        {"ra15", "vesk_get_wlan_ch_info_ralink,error!!!\n", {}}, // no such interface: no command
        {"ath7", "", {"wlanconfig ath7 list active"}},
        {"wds16", "", {"wlanconfig wds16 list active"}},
        {"eth2", "Unknown platform IF:[eth2]\nvesk_get_wlan_ch_info,error!!!attach fail\n", {}},
    };
    vdev::put("/run/vdev/radio/ath7/active", "");
    vdev::put("/run/vdev/radio/wds16/active", "");
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ifname);
        vdev::clear_journal();
        vesk_wlan_ch_info info = {7, {7, 7, 7}};
        EXPECT_EQ(stderr_of([&] { vesk_get_wlan_ch_info(c.ifname, &info); }), c.err);
        EXPECT_EQ(vdev::commands(), c.commands);
    }
    vesk_sta_table table;
    memset(&table, 0x5A, sizeof table);
    const vesk_sta_table before = table;
    auto records = survey_buffer(1, 0x5A5A5A5A);
    EXPECT_EQ(stderr_of([&] {
                  EXPECT_EQ(vesk_wlan_get_sta_info("eth2", &table), 0);
                  EXPECT_EQ(vesk_wlan_get_site_survey("lo", records.data(), 1), 0);
                  EXPECT_EQ(vesk_get_wlan_client_num(nullptr), 0);
                  EXPECT_EQ(vesk_wlan_get_site_survey_qca(nullptr, records.data(), 1), -1);
                  EXPECT_EQ(vesk_get_wlan_ch_info_qca("ath0", nullptr), 1);
                  EXPECT_EQ(vesk_wlan_get_qca_sta_info("ath0", nullptr), -1);
              }),
              "Unknown platform IF:[eth2]\nvesk_wlan_get_sta_info,error!!!attach fail\n"
              "Unknown platform IF:[lo]\nvesk_wlan_get_site_survey,error!!!attach fail\n"
              "Unknown platform IF:[(null)]\nvesk_get_wlan_client_num,error!!!attach fail\n"
              "Err: vesk_wlan_get_site_survey_qca, dev_name is NULL!\nvesk_get_wlan_ch_info_qca: input error!\n"
              "_vesk_wlan_get_qca_sta_info: input error!\n");
    EXPECT_EQ(memcmp(&table, &before, sizeof table), 0);
    EXPECT_EQ(records[0].bssid[0], 0x5A);
    EXPECT_TRUE(vdev::ioctls().empty());
}

TEST(WlanStations, RalinkTableAndQcaEntries)
{
    vesk_sta_table table = {};
    EXPECT_EQ(vesk_wlan_get_sta_info("ra0", &table), 1);
    ASSERT_EQ(table.count, 2);
    EXPECT_EQ(sta(table.records[1]), "1 02:10:20:30:40:02 44% stat 11 rank 72 rssi -71 40,12,0,1");
    EXPECT_EQ(vesk_get_wlan_client_num("ra0"), 2);

    // Entries of 200 bytes, trailing bytes too few for an entry, on ath3;
    // the stations are added to what the table counted.
    vdev::put("/run/vdev/radio/ath3/stations", "mac=02:10:20:30:40:11 rssi=38 rank=65535 stat=866 counters=1,2,3,67305985 size=200\n"
                                              "mac=02:10:20:30:40:12 rssi=-1 rank=40 stat=433 counters=5,6,7,8 size=200\n"
                                              "mac=02:10:20:30:40:13 size=100\n");
    table = {};
    table.count = 5;
    EXPECT_EQ(vesk_wlan_get_qca_sta_info_need_clear("ath3", &table), 1);
    EXPECT_EQ(vdev::ioctls().back(), "ath3 stations length=24576 flags=1");
    EXPECT_EQ(table.count, 7);
    EXPECT_EQ(sta(table.records[0]), "3 02:10:20:30:40:11 96% stat 866 rank 65535 rssi 38 1,2,3,67305985");
    EXPECT_EQ(sta(table.records[1]), "3 02:10:20:30:40:12 10% stat 433 rank 40 rssi -1 5,6,7,8");

    // More entries than a table holds; a length of 0 ends the walk.
    std::string many;
    for (int i = 0; i < 60; i++)
        many += "mac=02:00:00:00:00:" + std::to_string(10 + i) + " rssi=" + std::to_string(i) + "\n";
    vdev::put("/run/vdev/radio/ath0/stations", many);
    EXPECT_EQ(vesk_get_wlan_client_num("ath0"), VESK_STA_RECORDS);
    vdev::put("/run/vdev/radio/ath0/stations", "mac=02:00:00:00:00:01 len=0\nmac=02:00:00:00:00:02\n");
    EXPECT_EQ(vesk_get_wlan_client_num("ath0"), 1);
    vdev::put("/run/vdev/radio/ath0/stations", "");
    table = {};
    EXPECT_EQ(vesk_wlan_get_qca_sta_info("ath0", &table), -1);

    vdev::fail_ioctl("*", "stations", "ENETDOWN");
    vdev::fail_ioctl("*", "wds", "EPERM");
    EXPECT_EQ(stderr_of([&] {
                  EXPECT_EQ(vesk_wlan_get_sta_info("ra0", &table), -1);
                  EXPECT_EQ(vesk_wlan_get_qca_sta_info("ath0", &table), -1);
                  EXPECT_EQ(vesk_wlan_get_wds_info("ra0", &table), -1);
              }),
              "ioctl error, get_sta_info:Network is down\nioctl error, get_sta_info:Network is down\n"
              "ioctl error, get_wds_peer_info:Operation not permitted\n");

    for (auto [rssi, percent] : {std::pair{42, 100}, {41, 98}, {29, 87}, {20, 56}, {4, 4}, {1, 1}, {0, 10}, {-128, 10}})
        EXPECT_EQ(get_qca_percent(static_cast<char>(rssi)), percent) << rssi;
}

TEST(WlanStations, RadioOfAStation)
{
    const struct {
        int ra_rank, ath_rank; // 0: not on that radio
        int radio;
    } cases[] = {{30, 10, 1}, {10, 30, 0}, {10, 10, 0}, {-5, 10, 0}, {5, 0, 0}, {0, 5, 1}, {0, 0, -1}};
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.ra_rank << " " << c.ath_rank);
        const std::string other = "mac=02:00:00:00:00:99 rank=1\n";
        vdev::put("/run/vdev/radio/ra0/stations",
                  other + (c.ra_rank ? "mac=02:00:00:00:00:01 rank=" + std::to_string(c.ra_rank) + "\n" : ""));
        vdev::put("/run/vdev/radio/ath0/stations",
                  other + (c.ath_rank ? "mac=02:00:00:00:00:01 rank=" + std::to_string(c.ath_rank) + "\n" : ""));
        const unsigned char mac[6] = {2, 0, 0, 0, 0, 1};
        EXPECT_EQ(vesk_get_radio_idx_by_mac(mac), c.radio);
    }
}

TEST(WlanChannels, FromDriverStatisticsAndTool)
{
    const struct { const char *stat; int result; vesk_wlan_ch_info info; } ralink[] = {
        {"PrimaryChannel = 1\nCentralChannel = 1\n", 1, {1, {1, 0, 0}}},
        {"PrimaryChannel = 6\nCentralChannel = 4\nVHTCentralChannel = 0\n", 1, {6, {2, 0, 0}}},
        {"PrimaryChannel = 2\nCentralChannel = 4\n", 1, {2, {6, 0, 0}}},
        {"PrimaryChannel = 36\nCentralChannel = 38\nVHTCentralChannel = 42\n", 1, {36, {40, 44, 48}}},
        {"PrimaryChannel = 44\nVHTCentralChannel = 42\n", 1, {44, {36, 40, 48}}},
        {"PrimaryChannel = 0\nCentralChannel = 6\n", 0, {0, {0, 9, 9}}},
    };
    for (const auto &c : ralink) {
        SCOPED_TRACE(c.stat);
        vdev::put("/run/vdev/radio/ra0/stat", c.stat);
        vesk_wlan_ch_info info = {9, {9, 9, 9}};
        EXPECT_EQ(vesk_get_wlan_ch_info("ra0", &info), c.result);
        EXPECT_EQ(memcmp(&info, &c.info, sizeof info), 0)
            << info.primary_channel << " " << info.channels[0] << " " << info.channels[1] << " " << info.channels[2];
    }
    vdev::clear_journal();
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_get_rt_wifi_stat("ra0", "No Such"), -1); }),
              "Error in vesk_get_rt_wifi_stat\n");
    EXPECT_EQ(vesk_get_rt_wifi_stat("ra9", "PrimaryChannel"), -1);
    EXPECT_EQ(vdev::commands(), lines{"iwpriv ra0 stat 2>&1 | grep 'No Such'"});

    const struct {
        const char *active;
        vesk_wlan_ch_info info;
    } qca[] = {{"36,40,44,48\n", {36, {40, 44, 48}}}, {"36\n", {36, {36, 36, 36}}}, {"36,40", {36, {40, 36, 36}}}};
    for (const auto &c : qca) {
        SCOPED_TRACE(c.active);
        vdev::put("/run/vdev/radio/ath0/active", c.active);
        vesk_wlan_ch_info info = {9, {9, 9, 9}};
        EXPECT_EQ(vesk_get_wlan_ch_info("ath0", &info), 1);
        EXPECT_EQ(memcmp(&info, &c.info, sizeof info), 0) << info.primary_channel << " " << info.channels[0];
    }
}

TEST(WlanWps, StatusAndProfileFromTheDriver)
{
    vdev::put("/run/vdev/radio/ra0/wps_status", "34\n");
    vdev::put("/run/vdev/radio/ra0/wps_profile", "profile bytes");
    EXPECT_EQ(vesk_get_wps_status("ra0"), 34);
    std::vector<char> profile(968);
    EXPECT_EQ(vesk_get_wps_profile("ra0", profile.data()), 0);
    EXPECT_STREQ(profile.data(), "profile bytes");
    EXPECT_EQ(vdev::ioctls(), (lines{"ra0 wps_status length=4 channel=0", "ra0 wps_profile length=968 channel=0"}));
    vdev::fail_ioctl("ra0", "*", "ENODEV");
    EXPECT_EQ(stderr_of([&] {
                  EXPECT_EQ(vesk_get_wps_status("ra0"), 0);
                  EXPECT_EQ(vesk_get_wps_profile("ra0", profile.data()), -1);
              }),
              "[vesk_get_wps_status] ioctl error\nioctl error, getWscProfile:No such device\n");
}

TEST(WlanSchedule, StatusFollowsTheRecord)
{
    const struct { int ssids, radio_down; unsigned int down_mask; int mode, wds_peers, status; } cases[] = {
        {3, 0, 0b111, 0, 0, 1},  {3, 1, 0b111, 0, 0, 2},  {3, 1, 0b101, 0, 0, 3},  {3, 0, 0b101, 0, 0, 0},
        {31, 0, ~1u, 0, 0, 0}, // bit 31 lies above the count
        {3, 2, 0b111, 0, 0, 0},  {3, 0, 0b111, 3, 0, 0},  {3, 0, 0b111, 4, 1, 0},  {3, 0, 0b111, 4, 0, 1},
        {32, 1, ~0u, 0, 0, 2},   // 32 SSIDs: every bit of the mask counts
        {3, 0, 0b111, 0x104, 0, 1}, // the mode's low byte counts
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << c.ssids << " " << c.radio_down << " " << c.down_mask << " " << c.mode);
        vesk_wl_basic basic = {1, static_cast<uint8_t>(c.ssids), {}};
        ASSERT_EQ(quil_set_value(&basic, "wl2basic"), 0);
        set_number("radio_opmode_2", c.mode);
        vesk_wds_basic peer = {static_cast<uint8_t>(c.wds_peers), {}};
        ASSERT_EQ(quil_set_value(&peer, "wl2wds_basic_3"), 0);
        vesk_wlif_info info = {};
        info.radio_down[1] = static_cast<uint8_t>(c.radio_down);
        memcpy(info.down_mask[1], &c.down_mask, 4);
        ASSERT_EQ(quil_set_value(&info, "wlif_info"), 0);
        EXPECT_EQ(vesk_SSID_get_onoff_status(1), c.status);
    }
}

TEST(WlanSchedule, SwitchesRadioAndSsidsInOrder)
{
    vesk_wl_basic basic = {1, 3, {}};
    ASSERT_EQ(quil_set_value(&basic, "wl1basic"), 0);
    set_number("wl12hidessid", 1);
    set_number("scheduleS_5g_en", 1);
    // Slot 1 rules: every SSID down turns the radio off and touches no SSID.
    EXPECT_EQ(vesk_find_SSID_will_be_down(0, 1, 0b111), 0b111u);
    vdev::clear_journal();
    EXPECT_EQ(vesk_check_Radio_onoff(0, 3), 1);
    EXPECT_EQ(vdev::commands(), lines{"iwpriv ra0 set RadioOn=0"});
    EXPECT_EQ(wlif().radio_down[0], 1);
    EXPECT_EQ(vesk_check_Radio_onoff(0, 3), 1); // off and stays off
    // One SSID to come up: the others are hidden and downed first, the radio last.
    EXPECT_EQ(vesk_find_SSID_will_be_down(0, 1, 0b101), 0b101u);
    vdev::clear_journal();
    EXPECT_EQ(vesk_check_Radio_onoff(0, 3), 1);
    EXPECT_EQ(vdev::commands(), (lines{"iwpriv ra0 set HideSSID=1", "ifconfig ra0 down", "ifconfig ra1 up",
                                       "iwpriv ra1 set HideSSID=1", "iwpriv ra2 set HideSSID=1", "ifconfig ra2 down",
                                       "iwpriv ra0 set RadioOn=1"}));
    EXPECT_EQ(wlif().radio_down[0], 0);
    vdev::clear_journal();
    EXPECT_EQ(vesk_check_Radio_onoff(0, 3), 0);
    EXPECT_TRUE(vdev::commands().empty());

    // With both schedules off the mask is kept in its slot but nothing is down.
    set_number("scheduleS_5g_en", 0);
    EXPECT_EQ(vesk_find_SSID_will_be_down(1, 1, 0x207), 0u);
    EXPECT_EQ(std::make_tuple(wlif().slot_mask[1][1][0], wlif().slot_mask[1][1][1], wlif().down_mask[1][0]), std::make_tuple(7, 2, 0));
    EXPECT_EQ(reset_SSID_onoff_status(1), 0);
    EXPECT_EQ(std::make_tuple(wlif().slot_mask[1][1][0], wlif().slot_mask[0][1][0]), std::make_tuple(0, 0b101)); // radio 0 kept its state

    // Places outside the record are refused and change nothing.
    const vesk_wlif_info before = wlif();
    EXPECT_EQ(stderr_of([] {
                  EXPECT_EQ(vesk_find_SSID_will_be_down(2, 1, 1), 0u);
                  EXPECT_EQ(vesk_find_SSID_will_be_down(1, 3, 1), 0u);
                  EXPECT_EQ(reset_SSID_onoff_status(200), -1);
                  EXPECT_EQ(vesk_check_Radio_onoff(2, 1), 0);
              }),
              "vesk_find_SSID_will_be_down: input error!\nvesk_find_SSID_will_be_down: input error!\n"
              "reset_SSID_onoff_status: input error!\nvesk_SSID_get_onoff_status: input error!\n");
    const vesk_wlif_info after = wlif();
    EXPECT_EQ(memcmp(&before, &after, sizeof before), 0);
}

TEST(WlanSchedule, ApWdsModeAndPeers)
{
    const struct { unsigned char radio; int enable, mode, result; } cases[] = {{0, 1, 0, 1}, {1, 1, 3, 2}, {2, 1, 4, 3}, {2, 1, 0x203, 2}, {1, 1, 5, 0}, {1, 0, 0, 0}};
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << int(c.radio) << " " << c.mode);
        const int number = c.radio ? c.radio : 1;
        vesk_wl_basic basic = {static_cast<uint8_t>(c.enable), 0, {}};
        ASSERT_EQ(quil_set_value(&basic, ("wl" + std::to_string(number) + "basic").c_str()), 0);
        set_number(("radio_opmode_" + std::to_string(number)).c_str(), c.mode);
        EXPECT_EQ(vesk_wlan_handle_ap_wds_mode(c.radio), c.result);
    }
    vesk_wds_basic on = {1, {}}; // the first and the last peer
    ASSERT_EQ(quil_set_value(&on, "wl1wds_basic_1"), 0);
    ASSERT_EQ(quil_set_value(&on, "wl1wds_basic_4"), 0);
    EXPECT_EQ(vesk_wlan_get_wds_num(1), 2);
}

TEST(WlanKeys, PinsAndHexKeys)
{
    // Check digits of the WPS standard's own examples and of a leading zero.
    for (auto [body, digit] : {std::pair{1000000u, 7}, {2000000u, 4}, {123456u, 5}, {1234567u, 0}, {0u, 0}})
        EXPECT_EQ(vesk_compute_pin_checksum(body), digit) << body;
    const unsigned char high[6] = {0x11, 0x22, 0x33, 0xFF, 0xFF, 0xFF};
    EXPECT_EQ(veesk_wlan_gen_wps_pincode_by_mac(high), 67772155u); // 16777215 keeps 6777215
    vdev::set_board("ethaddr", "00:1A:2B:3C:4D:5E");
    EXPECT_EQ(vesk_wlan_gen_pincode_by_lan_mac(), 39519665u); // 0x3C4D5E = 3951966
    vdev::put("/run/vdev/fail/board_config", "");
    EXPECT_EQ(vesk_wlan_gen_pincode_by_lan_mac(), 40835365u); // 00:1C:2D:3E:4F:50
    EXPECT_EQ(vdev::commands(), lines(2, "board_config get ethaddr"));

    for (int i = 0; i < 50; i++) {
        const unsigned int pin = vesk_wlan_gen_pincode_by_random_num();
        EXPECT_TRUE(pin >= 10000000u && static_cast<int>(pin % 10) == vesk_compute_pin_checksum(pin / 10)) << pin;
    }
    char key[65] = {};
    EXPECT_EQ(vesk_gen_random_hex_key(key, 0), 1);
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_gen_random_hex_key(nullptr, 0), 1); }), ""); // nothing to write
    EXPECT_STREQ(key, "");
    // Each key has a fresh seed: the generator's state before the call does not decide it.
    char again[65] = {};
    srand(1);
    EXPECT_EQ(vesk_gen_random_hex_key(key, 64), 1);
    srand(1);
    vesk_gen_random_hex_key(again, 64);
    EXPECT_STRNE(key, again);
    EXPECT_EQ(strspn(key, "0123456789ABCDEF"), 64u) << key;
}

TEST(WlanChannels, RegionsAndFlashWord)
{
    // First and last channel of regions 0 to 7; regions past them have none.
    const unsigned int ranges[][2] = {{1, 11}, {1, 13}, {10, 11}, {10, 13}, {14, 14}, {1, 14}, {3, 9}, {5, 13}, {1, 0}};
    for (unsigned int region : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 0u - 1})
        for (unsigned int ch = 0, r = std::min(region, 8u); ch <= 15; ch++)
            EXPECT_EQ(vesk_check_bgn_valid_channel(region, ch), int(ch >= ranges[r][0] && ch <= ranges[r][1])) << region << "/" << ch;

    std::string head(256, '\0');
    head[16] = 0x34, head[17] = 0x12, head[254] = 0x01, head[255] = static_cast<char>(0xAB);
    vdev::put("/dev/mtd2", head);
    EXPECT_EQ(vesk_get_rf_info_from_flash(16, "Factory"), 0x1234);
    EXPECT_EQ(vesk_get_rf_info_from_flash(254, "Factory"), 0xAB01);
    vdev::put("/dev/mtd2", head.substr(0, 17)); // a short read does not reach the second byte
    EXPECT_EQ(vesk_get_rf_info_from_flash(16, "Factory"), -1);
    vdev::put("/dev/mtd2", "");
    EXPECT_EQ(vesk_get_rf_info_from_flash(16, "Factory"), 0);
    EXPECT_EQ(stderr_of([] {
                  EXPECT_EQ(vesk_get_rf_info_from_flash(255, "Factory"), -1);
                  EXPECT_EQ(vesk_get_rf_info_from_flash(0, "Missing"), -1);
              }),
              "vesk_get_rf_info_from_flash: offset 255 is out of range\n"
              "vesk_get_rf_info_from_flash: Cannot open /dev/mtd-1 !!\n");
}

TEST(Snmp, IndexByNameOnTheDualBoard)
{
    const struct {
        const char *ifname;
        int index;
    } cases[] = {{"eth2", 1},   {"ath0", 2},   {"ra0", 3},  {"ath1", 4},  {"ath2", 5}, {"ath15", 18}, {"ra1", 19},
                 {"ra15", 33},  {"wds16", 34}, {"wds19", 37}, {"wds0", 38}, {"wds3", 41}, {"br0", 42},  {"", 43},
                 {"eth0", 0},   {"ra16", 0},   {"ra", 0},   {"br0 ", 0}};
    for (const auto &c : cases)
        EXPECT_EQ(vesk_snmp_get_index_by_ifname(0, c.ifname), c.index) << c.ifname;
    EXPECT_EQ(vesk_snmp_get_index_by_ifname(7, nullptr), 0);
    EXPECT_EQ(vesk_wlan_get_board_dual_mode(-3), 4);
}

// iwconfig's text into vesk_wlan_info, with the stand-in tool printing the
// real tool's layouts from the radio's settings.
constexpr char kRadio[] = "ath7";

// The record's fields in order, "." for a field left as it was (0x7F bytes).
std::string fields(const vesk_wlan_info &i)
{
    std::string out;
    for (int v : {i.linkQuality, i.signalLevel, i.noiseLevel, i.isLevelinDbm, i.bitRate, i.channel, i.frequency})
        out += (v == 0x7F7F7F7F ? std::string(".") : std::to_string(v)) + " ";
    const std::string mac(i.Mac, strnlen(i.Mac, sizeof i.Mac));
    return out + (mac == std::string(sizeof i.Mac, '\x7F') ? "." : mac);
}

TEST(WlanIwconfig, ReadsBothFormsAndBothKindsOfLevel)
{
    // quality signal noise dBm rate channel MHz access point
    const struct { const char *settings, *fields; } rows[] = {
        // ":" forms, levels in dBm
        {"freq=5.18\nap=02:00:00:00:01:00\nrate=300\nquality=70/94\nsignal=-30\nnoise=-95\n",
         "70 -30 -95 1 300 . 5180 02:00:00:00:01:00"},
        // "=" forms, relative levels; the transmit power alone says dBm
        {"freq=2.437\nrate=54\ntxpower=20\nfixed=1\nupdated=1\nquality=47/100\nsignal=47/100\nnoise=3/100\n",
         "47 47 3 1 54 . 2437 Not-Associated"},
        // one digit after the point gains its zeros over the lines behind it
        {"freq=5.2\n", ". . . 0 . . 5200 Not-Associated"},
        // a channel only in the "=" form, and never from the ESSID's line
        {"channel=11\nfixed=1\n", ". . . 0 . 11 0 Not-Associated"},
        {"essid=\"Channel=6\"\nchannel=11\n", ". . . 0 . . 0 Not-Associated"},
        // an access point's text longer than the field is cut to it
        {"ap=0123456789ABCDEFGHIJKLMNOP\n", ". . . 0 . . 0 0123456789ABCDEFGHI"},
    };
    vdev::sh(std::string("ip link add ") + kRadio + " type veth peer name air7; mkdir -p /run/vdev/radio/" + kRadio);
    for (const auto &r : rows) {
        SCOPED_TRACE(r.settings);
        vdev::put(std::string("/run/vdev/radio/") + kRadio + "/iwconfig", r.settings);
        vesk_wlan_info info;
        memset(&info, 0x7F, sizeof info);
        EXPECT_EQ(vesk_get_wlan_interface_info(kRadio, &info), 1);
        EXPECT_EQ(fields(info), r.fields);
    }
    EXPECT_EQ(vdev::commands().back(), std::string("iwconfig ") + kRadio + ">/tmp/iwconfig_result.txt");
    // Without wireless extensions (the tool says so on stderr) only the unit is set.
    vesk_wlan_info info;
    memset(&info, 0x7F, sizeof info);
    EXPECT_EQ(vesk_get_wlan_interface_info("eth2", &info), 1);
    EXPECT_EQ(fields(info), ". . . 0 . . . .");
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_get_wlan_interface_info(nullptr, &info), 0); }),
              "Err: vesk_get_wlan_interface_info, dev_name is NULL!\n");
    const vesk_wlan_info shown = {70, -30, -95, 1, 300, "02:00:00:00:01:00", 36, 5180};
    EXPECT_EQ(stdout_of([&] { vesk_dump_wlan_info(&shown); }),
              "=====Wlan Status =====\nlinkQuality 70\nsignalLevel -30\nnoiseLevel -95\nisLevelinDbm 1\nbitRate 300\n"
              "Mac 02:00:00:00:01:00\nchannel 36\nfrequency 5180\n");
    vesk_dump_wlan_info(nullptr);
}

TEST(WlanIwconfig, EscapedKeyReadsBackThroughTheShell)
{
    const char key[] = "\"\\'`&()<>|; all twelve and plain123";
    std::string escaped(2 * strlen(key) + 1, '\0');
    vesk_check_wep_key_using_iwconfig(key, escaped.data());
    ASSERT_EQ(vdev::sh("printf %s " + std::string(escaped.c_str()) + " >/tmp/key"), 0);
    EXPECT_EQ(vdev::read("/tmp/key"), key);
    char out[4] = "zz";
    vesk_check_wep_key_using_iwconfig(nullptr, out);
    EXPECT_STREQ(out, "");
}

} // namespace
