// The QCA survey against the device model's radio: range data, scan,
// polling, buffer growth and the cells of its event stream. The security
// words against Wireshark's own reading of the same elements: each cell's
// elements go into a beacon frame in a pcap file, tshark names the AKM and
// cipher suites it finds, and those must give the words that the survey wrote.
#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "fake_sleep.hpp"
#include "vdev.hpp"
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

// A record as "channel bssid[5] ssid security rssi dbm type ext".
std::string rec(const vesk_site_survey_record &r)
{
    return std::to_string(r.channel) + " " + std::to_string(r.bssid[5]) + " " + r.ssid + " " + r.security + " " +
           std::to_string(r.rssi) + " " + std::to_string(r.dbm) + " " + r.wireless_type + " " + r.ex_channel;
}

TEST(QcaSurvey, DefaultRadioListsItsFiveGigahertzCells)
{
    int result;
    auto recs = survey("ath0", &result);
    ASSERT_EQ(result, 1);
    // rssi: quality in percent of the range's 94; dbm: the level byte less 161
    const std::string rows[] = {
        "36 1 vesk-office WPA2PSK/AES " + std::to_string(70 * 100 / 94) + " 39 11ac ABOVE",
        "40 2 Cafe, Corner WPA1PSKWPA2PSK/TKIPAES " + std::to_string(52 * 100 / 94) + " 29 11a/n ABOVE",
        "149 3 guest NONE " + std::to_string(30 * 100 / 94) + " 14 11ac NONE",
        "44 4 02:5A:00:00:00:04 WPA2/AES " + std::to_string(61 * 100 / 94) + " 34 11ac BELOW", // hidden: its BSSID
        "48 6 old-wep WEP " + std::to_string(20 * 100 / 94) + " 9 11a NONE", // channel 6 left out between
        "0 0   0 0  ", // and nothing more
    };
    for (size_t i = 0; i < std::size(rows); i++)
        EXPECT_EQ(rec(recs[i]), rows[i]);
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
    EXPECT_EQ(memcmp(&other[5], &base[4], sizeof base[4]), 0);
    EXPECT_EQ(base[5].channel, 0);
    // Version 15 has the older range layout, whose list holds 16 frequencies.
    for (const char *range : {"version=15 channels=6,36,40,44,48,149", "version=18", "words=64"}) {
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
        {"scan refused", "", "ath0 scan EPERM", 1, -1, {}, 0},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.name);
        vdev::put(kAth0 + "range", r.range);
        vdev::put(kAth0 + "cells", many_cells(r.cells));
        vdev::put("/run/vdev/fail/ioctl", *r.failures ? std::string(r.failures) + "\n" : "");
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
    }
}

struct cell {
    const char *name;
    bool privacy;
    const char *ies; // hex, as an access point sends them
};

// SSID, rates and DS set open every beacon; the security elements follow.
const cell kCells[] = {
    {"open with WMM", false, "0004766573 01088c129824b048606c 030124 dd180050f2020101800003a4000027a4000042435e0062322f00"},
    {"WEP", true, "0004766573 030124"},
    {"WPA-PSK TKIP", true, "0004766573 dd160050f20101000050f20201000050f20201000050f202"},
    {"WPA2-PSK CCMP", true, "0004766573 30140100000fac040100000fac040100000fac020c00"},
    {"WPA/WPA2 mixed, TKIP and CCMP", true,
     "dd1a0050f20101000050f20202000050f2040050f20201000050f202 30180100000fac020200000fac04000fac020100000fac020000"},
    {"WPA-PSK, TKIP and CCMP", true, "dd1a0050f20101000050f20202000050f2020050f20401000050f202"},
    {"WPA2-Enterprise", true, "0004766573 30140100000fac040100000fac040100000fac010000"},
    {"WPA/WPA2-Enterprise", true,
     "dd160050f20101000050f20201000050f20201000050f201 30140100000fac020100000fac040100000fac010000"},
    {"WPA2-PSK with WPS and a Broadcom element", true,
     "30140100000fac040100000fac040100000fac020000 dd0e0050f204104a0001101044000102 dd090010180200001c0000"},
    {"RSN cut short before its AKM list", true, "0004766573 30140100000fac040100000fac04"},
    {"WPA2 with an unknown AKM (SAE)", true, "30140100000fac040100000fac040100000fac080000"},
    {"WPA2-PSK behind three vendor AKMs", true, "30200100000fac040100000fac0404000050f2020050f2020050f202000fac020000"},
    {"WPA with an unknown AKM", true, "dd160050f20101000050f20201000050f20201000050f209"},
    {"WPA/WPA2-PSK, a vendor AKM last", true,
     "dd160050f20101000050f20401000050f20401000050f202 30180100000fac040100000fac040200000fac020050f2020000"},
};

// A beacon from 02:5A:00:00:01:NN with the cell's capability and elements,
// as a line of text2pcap's hex dump.
std::string beacon(int n, const cell &c)
{
    char head[80];
    snprintf(head, sizeof head, "80000000ffffffffffff025a000001%02x025a000001%02x0000%s6400%02x00", n, n,
             std::string(16, '0').c_str(), c.privacy ? 0x11 : 0x01);
    std::string hex = head + std::string(c.ies), line = "000000";
    hex.erase(std::remove(hex.begin(), hex.end(), ' '), hex.end());
    for (size_t i = 0; i < hex.size(); i += 2)
        line += " " + hex.substr(i, 2);
    return line + "\n";
}

// The words that tshark's AKM and pairwise suites give.
std::string words(const std::string &line)
{
    std::vector<std::string> f;
    std::istringstream in(line);
    for (std::string s; std::getline(in, s, '|');)
        f.push_back(s);
    f.resize(5);
    auto list = [](const std::string &s, bool low_byte) {
        std::set<long> v;
        std::istringstream items(s);
        for (std::string x; std::getline(items, x, ',');)
            v.insert(low_byte ? std::stol(x) & 0xFF : std::stol(x));
        return v;
    };
    std::set<long> rsn_akm = list(f[0], false), wpa_akm = list(f[2], true), ciphers = list(f[1], false);
    for (long c : list(f[3], false))
        ciphers.insert(c);
    if (rsn_akm.empty() && wpa_akm.empty())
        return f[4] == "1" ? "WEP" : "NONE";
    bool psk = rsn_akm.count(2) || wpa_akm.count(2);
    std::string auth = !wpa_akm.empty() && !rsn_akm.empty() ? (psk ? "WPA1PSKWPA2PSK" : "WPA1WPA2")
                       : !rsn_akm.empty()                   ? (psk ? "WPA2PSK" : "WPA2")
                                                            : (psk ? "WPAPSK" : "WPA");
    if (wpa_akm.empty() && !rsn_akm.count(1) && !rsn_akm.count(2))
        auth = "UNKNOW";
    if (rsn_akm.empty() && !wpa_akm.count(1) && !wpa_akm.count(2))
        auth = "OPEN"; // the WPA element's other suites are passed over
    std::string cipher = ciphers.count(2) && ciphers.count(4) ? "TKIPAES" : ciphers.count(4) ? "AES" : "TKIP";
    return auth + "/" + cipher;
}

TEST(QcaSecurity, WordsMatchWiresharksDissection)
{
    std::string cells, dump;
    for (size_t i = 0; i < std::size(kCells); i++) {
        std::istringstream elements(kCells[i].ies);
        char bssid[32];
        snprintf(bssid, sizeof bssid, "02:5A:00:00:01:%02zX", i);
        cells += std::string("bssid=") + bssid + " channel=36 mode=master enc=" + (kCells[i].privacy ? "on" : "off");
        for (std::string ie; elements >> ie;)
            cells += " ie=" + ie;
        cells += "\n";
        dump += beacon(int(i), kCells[i]);
    }
    vdev::put("/run/vdev/radio/ath1/cells", cells);
    vdev::put("/tmp/beacons.txt", dump);
    ASSERT_EQ(vdev::sh("text2pcap -q -l 105 /tmp/beacons.txt /tmp/beacons.pcap && "
                       "tshark -r /tmp/beacons.pcap -T fields -E separator='|' -E occurrence=a -E aggregator=, "
                       "-e wlan.rsn.akms.type -e wlan.rsn.pcs.type -e wlan.wfa.ie.wpa.akms -e wlan.wfa.ie.wpa.ucs.type "
                       "-e wlan.fixed.capabilities.privacy >/tmp/suites 2>/dev/null"),
              0);
    std::istringstream dissected(vdev::read("/tmp/suites"));
    std::vector<vesk_site_survey_record> recs(VESK_SURVEY_RECORDS_QCA);
    ASSERT_EQ(vesk_wlan_get_site_survey("ath1", recs.data(), 0), 1);
    for (size_t i = 0; i < std::size(kCells); i++) {
        SCOPED_TRACE(kCells[i].name);
        std::string line;
        ASSERT_TRUE(std::getline(dissected, line));
        EXPECT_EQ(recs[i].security, words(line)) << line;
    }
    // Values past the word tables.
    EXPECT_STREQ(ieee80211_get_enc_type(12), "UNKNOW");
    EXPECT_STREQ(ieee80211_get_auth_mode(10), "UNKNOW");
}

} // namespace
