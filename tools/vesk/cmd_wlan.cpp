#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_mac.h"
#include "vesk_wlan.h"

namespace {

// A survey buffer big enough for either family.
vesk_site_survey_record survey_records[VESK_SURVEY_RECORDS_QCA];

int survey(int argc, char **argv)
{
    unsigned int channel = 0, max_age = 30;
    if ((argc > 1 && !cli::parse_uint(argv[1], &channel)) || (argc > 2 && !cli::parse_uint(argv[2], &max_age))) {
        fputs("usage: vesk wlan survey IFNAME [CHANNEL [MAX_AGE]]\n", stderr);
        return 2;
    }
    memset(survey_records, 0, sizeof survey_records);
    memcpy(survey_records, &channel, sizeof channel);
    int rc = vesk_wlan_get_site_survey(argv[0], survey_records, static_cast<unsigned short>(max_age));
    if (rc < 0) {
        fprintf(stderr, "vesk wlan survey: %s: the scan failed\n", argv[0]);
        return 1;
    }
    printf("%-32s  %-17s  %3s  %-22s  %s\n", "SSID", "BSSID", "CH", "SECURITY", "SIGNAL");
    for (const vesk_site_survey_record &r : survey_records) {
        if (!r.channel)
            break;
        char bssid[18];
        vesk_mac_bin_2_str(bssid, r.bssid);
        printf("%-32.32s  %-17s  %3u  %-22.31s  %3u%% %4d dBm\n", r.ssid[0] ? r.ssid : "(hidden)", bssid, r.channel,
               r.security, r.rssi, static_cast<int>(r.dbm));
    }
    printf("(%s)\n", rc == 1 ? "scanned now" : "from the survey file");
    return 0;
}

int stations(int, char **argv)
{
    vesk_sta_table table = {};
    if (vesk_wlan_get_sta_info(argv[0], &table) != 1 && table.count == 0) {
        fprintf(stderr, "vesk wlan stations: %s: no stations\n", argv[0]);
        return 1;
    }
    printf("%-17s  %4s  %6s  %4s\n", "STATION", "SSID", "SIGNAL", "RSSI");
    for (int i = 0; i < table.count && i < VESK_STA_RECORDS; i++) {
        const vesk_sta_record &r = table.records[i];
        char mac[18];
        vesk_mac_bin_2_str(mac, r.mac);
        printf("%-17s  %4u  %5u%%  %4d\n", mac, r.index, r.percent, r.rssi);
    }
    return 0;
}

int clients(int, char **argv)
{
    int n = vesk_get_wlan_client_num(argv[0]);
    printf("%d\n", n);
    return n < 0 ? 1 : 0;
}

int channels(int, char **argv)
{
    vesk_wlan_ch_info info = {};
    if (!vesk_get_wlan_ch_info(argv[0], &info) || !info.primary_channel) {
        fprintf(stderr, "vesk wlan channels: %s: no channel\n", argv[0]);
        return 1;
    }
    printf("primary %u, in use %u %u %u\n", info.primary_channel, info.channels[0], info.channels[1],
           info.channels[2]);
    return 0;
}

int pin(int argc, char **argv)
{
    const char *from = argc > 0 ? argv[0] : "lan";
    unsigned char mac[6];
    unsigned int code;
    if (!strcmp(from, "lan"))
        code = vesk_wlan_gen_pincode_by_lan_mac();
    else if (!strcmp(from, "random"))
        code = vesk_wlan_gen_pincode_by_random_num();
    else if (vesk_mac_str_2_bin(mac, from))
        code = veesk_wlan_gen_wps_pincode_by_mac(mac);
    else {
        fputs("usage: vesk wlan pin [lan|random|MAC]\n", stderr);
        return 2;
    }
    printf("%08u\n", code);
    return 0;
}

int wps(int, char **argv) { return cli::print_int(vesk_get_wps_status(argv[0])); }

int schedule(int, char **argv)
{
    static const char *const kStates[] = {"on, stays on (or not scheduled)", "on, to be turned off",
                                          "off, stays off", "off, to be turned on"};
    unsigned int radio;
    if (!cli::parse_uint(argv[0], &radio) || radio > 1) {
        fputs("usage: vesk wlan schedule RADIO (0 Ralink, 1 QCA)\n", stderr);
        return 2;
    }
    printf("radio %u: %s\n", radio, kStates[vesk_SSID_get_onoff_status(static_cast<unsigned char>(radio))]);
    return 0;
}

int radio_of(int, char **argv)
{
    unsigned char mac[6];
    if (!vesk_mac_str_2_bin(mac, argv[0])) {
        fputs("usage: vesk wlan radio MAC\n", stderr);
        return 2;
    }
    int radio = vesk_get_radio_idx_by_mac(mac);
    if (radio < 0) {
        fprintf(stderr, "vesk wlan radio: %s is on neither radio\n", argv[0]);
        return 1;
    }
    printf("%d (%s)\n", radio, radio == 0 ? "ra0" : "ath0");
    return 0;
}

constexpr cli::command kCommands[] = {
    {"survey", "IFNAME [CHANNEL [MAX_AGE]]", "networks heard on CHANNEL (0: all), from a file of up to MAX_AGE s", 1,
     survey},
    {"stations", "IFNAME", "associated stations", 1, stations},
    {"clients", "IFNAME", "number of associated stations", 1, clients},
    {"channels", "IFNAME", "the primary channel and the others in use", 1, channels},
    {"pin", "[lan|random|MAC]", "a WPS PIN of the board's MAC, a random one, or of MAC", 0, pin},
    {"wps", "IFNAME", "the driver's WPS status word", 1, wps},
    {"schedule", "RADIO", "what the SSID schedule asks of radio 0 or 1", 1, schedule},
    {"radio", "MAC", "the radio (0 or 1) a station is on", 1, radio_of},
};

} // namespace

extern const cli::family family_wlan = {"wlan", "the two radios: survey, stations, channels, WPS, schedule",
                                        kCommands};
