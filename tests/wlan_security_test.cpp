// The security words of the QCA survey against Wireshark's own reading of
// the same elements: each cell's elements go into a beacon frame in a pcap
// file, tshark names the AKM and cipher suites it finds, and those must give
// the words that the survey wrote.
#include <gtest/gtest.h>
#include <stdint.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "vdev.hpp"
#include "vesk_wlan.h"

namespace {

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
    {"WPA/WPA2, CCMP in both", true,
     "dd160050f20101000050f20401000050f20401000050f202 30140100000fac040100000fac040100000fac020000"},
    {"WPA-PSK, TKIP and CCMP", true, "dd1a0050f20101000050f20202000050f2020050f20401000050f202"},
    {"WPA2-Enterprise", true, "0004766573 30140100000fac040100000fac040100000fac010000"},
    {"WPA/WPA2-Enterprise", true,
     "dd160050f20101000050f20201000050f20201000050f201 30140100000fac020100000fac040100000fac010000"},
    {"WPA2-PSK with WPS and a Broadcom element", true,
     "30140100000fac040100000fac040100000fac020000 dd0e0050f204104a0001101044000102 dd090010180200001c0000"},
    {"RSN cut short before its AKM list", true, "0004766573 30140100000fac040100000fac04"},
};

std::string bytes_of(std::string hex)
{
    std::string out;
    hex.erase(std::remove(hex.begin(), hex.end(), ' '), hex.end());
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        out += char(std::stoi(hex.substr(i, 2), nullptr, 16));
    return out;
}

std::string le(uint32_t v, int n)
{
    std::string s;
    for (int i = 0; i < n; i++)
        s += char(v >> (8 * i));
    return s;
}

// A beacon from 02:5A:00:00:01:NN with the cell's capability and elements.
std::string beacon(int n, const cell &c)
{
    std::string bssid = bytes_of("025a000001") + char(n);
    std::string frame = bytes_of("80000000ffffffffffff") + bssid + bssid + le(0, 2) + std::string(8, '\0') +
                        le(100, 2) + le(c.privacy ? 0x11 : 0x01, 2) + bytes_of(c.ies);
    return le(0, 4) + le(0, 4) + le(uint32_t(frame.size()), 4) + le(uint32_t(frame.size()), 4) + frame;
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
    std::string cipher = ciphers.count(2) && ciphers.count(4) ? "TKIPAES" : ciphers.count(4) ? "AES" : "TKIP";
    return auth + "/" + cipher;
}

TEST(QcaSecurity, WordsMatchWiresharksDissection)
{
    std::string cells, pcap = le(0xa1b2c3d4, 4) + le(2, 2) + le(4, 2) + le(0, 4) + le(0, 4) + le(65535, 4) + le(105, 4);
    for (size_t i = 0; i < std::size(kCells); i++) {
        std::string hex = kCells[i].ies;
        std::string ie;
        for (size_t at = 0; at < hex.size(); at = hex.find(' ', at) == std::string::npos ? hex.size() : hex.find(' ', at) + 1)
            ie += " ie=" + hex.substr(at, hex.find(' ', at) - at);
        char bssid[32];
        snprintf(bssid, sizeof bssid, "02:5A:00:00:01:%02zX", i);
        cells += std::string("bssid=") + bssid + " channel=36 mode=master enc=" + (kCells[i].privacy ? "on" : "off") + ie + "\n";
        pcap += beacon(int(i), kCells[i]);
    }
    vdev::put("/run/vdev/radio/ath1/cells", cells);
    vdev::put("/tmp/beacons.pcap", pcap);
    ASSERT_EQ(vdev::sh("tshark -r /tmp/beacons.pcap -T fields -E separator='|' -E occurrence=a -E aggregator=, "
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
}

} // namespace
