// iwconfig's text into vesk_wlan_info, with the stand-in tool printing the
// real tool's layouts from the radio's settings.
#include <gtest/gtest.h>
#include <string.h>

#include <string>

#include "output_of.hpp"
#include "vdev.hpp"
#include "vesk_wlan.h"

namespace {

constexpr char kRadio[] = "ath7";

vesk_wlan_info info_of(const std::string &settings, int *result = nullptr)
{
    vdev::sh(std::string("ip link add ") + kRadio + " type veth peer name air7 2>/dev/null; mkdir -p /run/vdev/radio/" + kRadio);
    vdev::put(std::string("/run/vdev/radio/") + kRadio + "/iwconfig", settings);
    vesk_wlan_info info;
    memset(&info, 0x7F, sizeof info);
    int r = vesk_get_wlan_interface_info(kRadio, &info);
    if (result)
        *result = r;
    return info;
}

TEST(WlanIwconfig, ReadsBothFormsAndBothKindsOfLevel)
{
    struct row {
        const char *settings;
        int quality, signal, noise, dbm, rate, channel, mhz;
        const char *mac;
    } rows[] = {
        // ":" forms, levels in dBm
        {"freq=5.18\nap=02:00:00:00:01:00\nrate=300\nquality=70/94\nsignal=-30\nnoise=-95\n", 70, -30, -95, 1, 300, 0x7F7F7F7F,
         5180, "02:00:00:00:01:00"},
        // "=" forms, relative levels; the transmit power alone says dBm
        {"freq=2.437\nrate=54\ntxpower=20\nfixed=1\nupdated=1\nquality=47/100\nsignal=47/100\nnoise=3/100\n", 47, 47, 3, 1, 54,
         0x7F7F7F7F, 2437, "Not-Associated"},
        {"freq=5.745\nfixed=1\nsignal=60/100\n", 0x7F7F7F7F, 60, 0x7F7F7F7F, 0, 0x7F7F7F7F, 0x7F7F7F7F, 5745, "Not-Associated"},
        // one digit after the point gains its zeros over the lines behind it
        {"freq=5.2\n", 0x7F7F7F7F, 0x7F7F7F7F, 0x7F7F7F7F, 0, 0x7F7F7F7F, 0x7F7F7F7F, 5200, "Not-Associated"},
        // a channel only in the "=" form
        {"channel=11\nfixed=1\n", 0x7F7F7F7F, 0x7F7F7F7F, 0x7F7F7F7F, 0, 0x7F7F7F7F, 11, 0, "Not-Associated"},
        {"channel=11\n", 0x7F7F7F7F, 0x7F7F7F7F, 0x7F7F7F7F, 0, 0x7F7F7F7F, 0x7F7F7F7F, 0, "Not-Associated"},
        // an access point's text longer than the field is cut to it
        {"ap=0123456789ABCDEFGHIJKLMNOP\n", 0x7F7F7F7F, 0x7F7F7F7F, 0x7F7F7F7F, 0, 0x7F7F7F7F, 0x7F7F7F7F, 0,
         "0123456789ABCDEFGHI"},
    };
    for (const row &r : rows) {
        SCOPED_TRACE(r.settings);
        int result = 0;
        vesk_wlan_info info = info_of(r.settings, &result);
        EXPECT_EQ(result, 1);
        EXPECT_EQ(info.linkQuality, r.quality);
        EXPECT_EQ(info.signalLevel, r.signal);
        EXPECT_EQ(info.noiseLevel, r.noise);
        EXPECT_EQ(info.isLevelinDbm, r.dbm);
        EXPECT_EQ(info.bitRate, r.rate);
        EXPECT_EQ(info.channel, r.channel);
        EXPECT_EQ(info.frequency, r.mhz);
        EXPECT_STREQ(info.Mac, r.mac);
    }
    EXPECT_EQ(vdev::commands().back(), std::string("iwconfig ") + kRadio + ">/tmp/iwconfig_result.txt");
}

TEST(WlanIwconfig, WithoutWirelessExtensionsOnlyTheUnitIsSet)
{
    vesk_wlan_info info;
    memset(&info, 0x7F, sizeof info);
    EXPECT_EQ(vesk_get_wlan_interface_info("eth2", &info), 1); // the tool said so on stderr
    vesk_wlan_info untouched;
    memset(&untouched, 0x7F, sizeof untouched);
    untouched.isLevelinDbm = 0;
    EXPECT_EQ(memcmp(&info, &untouched, sizeof info), 0);
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_get_wlan_interface_info(nullptr, &info), 0); }),
              "Err: vesk_get_wlan_interface_info, dev_name is NULL!\n");
}

TEST(WlanIwconfig, EscapedKeyReadsBackThroughTheShell)
{
    for (const char *key : {"a b", "x;y", "plain123", "\"\\'`&()<>|; all twelve"}) {
        SCOPED_TRACE(key);
        std::string escaped(2 * strlen(key) + 1, '\0');
        vesk_check_wep_key_using_iwconfig(key, escaped.data());
        escaped.resize(strlen(escaped.c_str()));
        ASSERT_EQ(vdev::sh("printf %s " + escaped + " >/tmp/key"), 0);
        EXPECT_EQ(vdev::read("/tmp/key"), key);
    }
    char out[4] = "zz";
    vesk_check_wep_key_using_iwconfig(nullptr, out);
    EXPECT_STREQ(out, "");
}

} // namespace
