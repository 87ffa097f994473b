#include <gtest/gtest.h>
#include <string.h>

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

std::string survey_line(int ch, const std::string &ssid, const char *bssid)
{
    return "{Ch:" + std::to_string(ch) + ", SSID:" + ssid + ", BSSID:" + bssid +
           ", Sec:WPA2PSK/AES, RSSI:81, dbm:-52, Ex_ch:ABOVE, Type:11b/g/n}\r\n";
}

TEST(WlanSurvey, FileAnswersWhileYoungEnough)
{
    // Lines the file's own reader could not split before: an empty (hidden)
    // SSID and one with a comma; a line that is no record is passed over.
    vdev::put("/tmp/survey/ch_6.txt", "uptime: 1000\r\n" + survey_line(6, "Cafe, Corner", "02:AA:00:00:00:01") +
                                          "broken line\r\n" + survey_line(6, "", "02:AA:00:00:00:02"));
    vdev::put("/proc/uptime", "1030.99 2000.00\n");
    auto buf = survey_buffer(VESK_SURVEY_RECORDS_QCA, 6);
    buf[1].hidden = 1;
    EXPECT_EQ(vesk_wlan_get_site_survey("ath0", buf.data(), 30), 0);
    EXPECT_STREQ(buf[0].ssid, "Cafe, Corner");
    EXPECT_EQ(buf[0].bssid[0], 0x02);
    EXPECT_EQ(buf[0].bssid[5], 0x01);
    EXPECT_STREQ(buf[1].ssid, "");
    EXPECT_EQ(buf[1].bssid[5], 0x02);
    for (const auto &r : {buf[0], buf[1]}) {
        EXPECT_EQ(r.channel, 6);
        EXPECT_STREQ(r.security, "WPA2PSK/AES");
        EXPECT_EQ(r.rssi, 81);
        EXPECT_EQ(r.dbm, -52);
        EXPECT_STREQ(r.ex_channel, "ABOVE");
        EXPECT_STREQ(r.wireless_type, "11b/g/n");
    }
    EXPECT_EQ(buf[1].hidden, 1); // loading leaves hidden alone
    EXPECT_EQ(buf[2].channel, 0);

    // A file with more lines than a Ralink buffer holds fills it and stops.
    std::string many = "uptime: 1000\r\n";
    for (int i = 0; i < 70; i++)
        many += survey_line(11, "n" + std::to_string(i), "02:BB:00:00:00:01");
    vdev::put("/tmp/survey/ch_11.txt", many);
    buf = survey_buffer(VESK_SURVEY_RECORDS_RALINK + 1, 11);
    buf.back().channel = 99; // guard behind the caller's 64 records
    EXPECT_EQ(vesk_wlan_get_site_survey("ra0", buf.data(), 31), 0);
    EXPECT_STREQ(buf[63].ssid, "n63");
    EXPECT_EQ(buf.back().channel, 99);
    EXPECT_TRUE(vdev::commands().empty());
}

TEST(WlanSchedule, StatusFollowsTheRecord)
{
    const struct {
        int ssids, radio_down;
        unsigned int down_mask;
        int mode, wds_peers, status;
    } cases[] = {
        {3, 0, 0b111, 0, 0, 1},  {3, 1, 0b111, 0, 0, 2},  {3, 1, 0b101, 0, 0, 3},  {3, 0, 0b101, 0, 0, 0},
        {3, 0, 0b1011, 0, 0, 0}, // bit 3 lies above the count
        {0, 0, 0, 0, 0, 1},      {3, 2, 0b111, 0, 0, 0},  {3, 0, 0b111, 3, 0, 0},  {3, 0, 0b111, 4, 1, 0},
        {3, 0, 0b111, 4, 0, 1},  {3, 0, 0b111, 0x104, 0, 1}, // the mode's low byte counts
        {40, 1, ~0u, 0, 0, 3},   // 32 bits can't cover 40 SSIDs
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
    EXPECT_EQ(vesk_find_SSID_will_be_down(0, 0, 0b010), 0u);
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
    EXPECT_EQ(vesk_find_SSID_will_be_down(1, 1, 7), 0u);
    vesk_wlif_info info = wlif();
    EXPECT_EQ(info.slot_mask[1][1][0], 7);
    EXPECT_EQ(info.down_mask[1][0], 0);
    EXPECT_EQ(reset_SSID_onoff_status(1), 0);
    info = wlif();
    EXPECT_EQ(info.slot_mask[1][1][0], 0);
    EXPECT_EQ(info.slot_mask[0][1][0], 0b101); // radio 0 kept its state

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
    const struct {
        unsigned char radio;
        int enable, mode, result;
    } cases[] = {{0, 1, 0, 1}, {1, 1, 3, 2}, {2, 1, 4, 3}, {2, 1, 0x203, 2}, {1, 1, 5, 0}, {1, 0, 0, 0}};
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << int(c.radio) << " " << c.mode);
        const int number = c.radio ? c.radio : 1;
        vesk_wl_basic basic = {static_cast<uint8_t>(c.enable), 0, {}};
        ASSERT_EQ(quil_set_value(&basic, ("wl" + std::to_string(number) + "basic").c_str()), 0);
        set_number(("radio_opmode_" + std::to_string(number)).c_str(), c.mode);
        EXPECT_EQ(vesk_wlan_handle_ap_wds_mode(c.radio), c.result);
    }
    vesk_wds_basic on = {1, {}};
    ASSERT_EQ(quil_set_value(&on, "wl1wds_basic_2"), 0);
    ASSERT_EQ(quil_set_value(&on, "wl1wds_basic_4"), 0);
    on.enable = 9;
    ASSERT_EQ(quil_set_value(&on, "wl2wds_basic_1"), 0);
    EXPECT_EQ(vesk_wlan_get_wds_num(1), 2);
    EXPECT_EQ(vesk_wlan_get_wds_num(2), 1);
}

TEST(WlanKeys, PinsAndHexKeys)
{
    // Check digits of the WPS standard's own examples and of a leading zero.
    for (auto [body, digit] : {std::pair{1000000u, 7}, {2000000u, 4}, {123456u, 5}, {1234567u, 0}, {0u, 0}})
        EXPECT_EQ(vesk_compute_pin_checksum(body), digit) << body;
    const unsigned char high[6] = {0x11, 0x22, 0x33, 0xFF, 0xFF, 0xFF}, low[6] = {0xAA, 0xBB, 0xCC, 0, 0, 0};
    EXPECT_EQ(veesk_wlan_gen_wps_pincode_by_mac(high), 67772155u); // 16777215 keeps 6777215
    EXPECT_EQ(veesk_wlan_gen_wps_pincode_by_mac(low), 0u);
    vdev::set_board("ethaddr", "00:1A:2B:3C:4D:5E");
    EXPECT_EQ(vesk_wlan_gen_pincode_by_lan_mac(), 39519665u); // 0x3C4D5E = 3951966
    vdev::put("/run/vdev/fail/board_config", "");
    EXPECT_EQ(vesk_wlan_gen_pincode_by_lan_mac(), 40835365u); // 00:1C:2D:3E:4F:50
    EXPECT_EQ(vdev::commands(), lines(2, "board_config get ethaddr"));

    for (int i = 0; i < 50; i++) {
        const unsigned int pin = vesk_wlan_gen_pincode_by_random_num();
        EXPECT_GE(pin, 10000000u);
        EXPECT_EQ(static_cast<int>(pin % 10), vesk_compute_pin_checksum(pin / 10));
    }
    char key[65] = {};
    EXPECT_EQ(vesk_gen_random_hex_key(key, 0), 1);
    EXPECT_STREQ(key, "");
    EXPECT_EQ(vesk_gen_random_hex_key(key, 64), 1);
    EXPECT_EQ(strspn(key, "0123456789ABCDEF"), 64u) << key;
}

TEST(WlanChannels, RegionsAndFlashWord)
{
    const struct {
        unsigned int region, channel;
        int valid;
    } cases[] = {{0, 11, 1}, {0, 12, 0}, {4, 14, 1}, {4, 13, 0}, {8, 1, 0},  {5, 15, 0}, {2, 0, 0},
                 {2, 9, 0},  {3, 13, 1}, {6, 3, 1},  {6, 10, 0}, {7, 4, 0},  {1, 13, 1}, {0u - 1, 1, 0}};
    for (const auto &c : cases)
        EXPECT_EQ(vesk_check_bgn_valid_channel(c.region, c.channel), c.valid) << c.region << "/" << c.channel;

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

} // namespace
