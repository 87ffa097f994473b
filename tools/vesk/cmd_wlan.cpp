#include <stdio.h>
#include <string.h>

#include "cli.hpp"
#include "vesk_mac.h"
#include "vesk_wlan.h"

namespace {

// A survey buffer big enough for either family.
vesk_site_survey_record survey_records[VESK_SURVEY_RECORDS_QCA];

// The library picks the chipset by the name's start; any other name it
// answers with 0, which reads as an answer.
bool radio_if(const char *ifname)
{
    for (const char *prefix : {"ra", "ath", "wds"})
        if (!strncmp(ifname, prefix, strlen(prefix)))
            return true;
    cli::refuse("%s is not a radio interface (ra*, ath*, wds*)", ifname);
    return false;
}

// A record's text field, which need not be terminated.
template <size_t N> const char *field(const char (&f)[N], char (&out)[N + 1])
{
    snprintf(out, sizeof out, "%.*s", static_cast<int>(N), f);
    return out;
}

int survey(int argc, char **argv)
{
    unsigned int channel = 0, max_age = 30;
    if (!radio_if(argv[0]) || (argc > 1 && !cli::parse_uint(argv[1], &channel, 255)) || (argc > 2 && !cli::parse_uint(argv[2], &max_age, 0xFFFF)))
        return cli::kUsage;
    memset(survey_records, 0, sizeof survey_records);
    memcpy(survey_records, &channel, sizeof channel);
    const int rc = vesk_wlan_get_site_survey(argv[0], survey_records, static_cast<unsigned short>(max_age));
    if (rc < 0)
        return cli::miss("the scan of %s failed", argv[0]);
    cli::list rows;
    for (const vesk_site_survey_record &r : survey_records) {
        if (!r.channel)
            break;
        char bssid[18], ssid[34], security[33];
        vesk_mac_bin_2_str(bssid, r.bssid);
        cli::record()
            .text("bssid", bssid)
            .number("channel", r.channel)
            .number("signal", r.rssi)
            .number("dbm", r.dbm)
            .text("security", field(r.security, security))
            .number("scanned", rc == 1)
            .text("ssid", field(r.ssid, ssid));
    }
    return cli::kAnswer;
}

int stations(int, char **argv)
{
    vesk_sta_table table = {};
    if (!radio_if(argv[0]))
        return cli::kUsage;
    if (vesk_wlan_get_sta_info(argv[0], &table) != 1 && table.count == 0)
        return cli::miss("no stations on %s", argv[0]);
    cli::list rows;
    for (int i = 0; i < table.count && i < VESK_STA_RECORDS; i++) {
        const vesk_sta_record &r = table.records[i];
        char mac[18];
        vesk_mac_bin_2_str(mac, r.mac);
        cli::record().text("mac", mac).number("ssid", r.index).number("signal", r.percent).number("rssi", r.rssi);
    }
    return cli::kAnswer;
}

int clients(int, char **argv)
{
    if (!radio_if(argv[0]))
        return cli::kUsage;
    const int n = vesk_get_wlan_client_num(argv[0]);
    return n < 0 ? cli::miss("no count for %s", argv[0]) : cli::number(n);
}

int channels(int, char **argv)
{
    vesk_wlan_ch_info info = {};
    if (!radio_if(argv[0]))
        return cli::kUsage;
    if (!vesk_get_wlan_ch_info(argv[0], &info) || !info.primary_channel)
        return cli::miss("no channel for %s", argv[0]);
    cli::record()
        .number_u("primary", info.primary_channel)
        .number_u("channel1", info.channels[0])
        .number_u("channel2", info.channels[1])
        .number_u("channel3", info.channels[2]);
    return cli::kAnswer;
}

int pin(int argc, char **argv)
{
    static const char *const kFrom[] = {"lan", "random", nullptr};
    unsigned char mac[6];
    int from = 0;
    unsigned int code;
    if (argc > 0 && cli::is_mac(argv[0]))
        code = veesk_wlan_gen_wps_pincode_by_mac(cli::parse_mac(argv[0], mac) ? mac : nullptr);
    else if (argc > 0 && !cli::parse_choice(argv[0], kFrom, &from))
        return cli::kUsage;
    else
        code = from ? vesk_wlan_gen_pincode_by_random_num() : vesk_wlan_gen_pincode_by_lan_mac();
    char text[16];
    snprintf(text, sizeof text, "%08u", code);
    return cli::text(text);
}

int wps(int, char **argv)
{
    const int status = vesk_get_wps_status(argv[0]);
    return status ? cli::number(status) : cli::miss("no WPS status for %s", argv[0]);
}

int schedule(int, char **argv)
{
    static constexpr const char *kStates[] = {"on", "to-off", "off", "to-on"};
    int radio;
    if (!cli::parse_int(argv[0], &radio, 0, 1))
        return cli::kUsage;
    const int state = vesk_SSID_get_onoff_status(static_cast<unsigned char>(radio));
    if (state < 0 || state > 3)
        return cli::miss("state %d", state);
    cli::record().number("state", state).text("meaning", kStates[state]);
    return cli::kAnswer;
}

int radio_of(int, char **argv)
{
    unsigned char mac[6];
    if (!cli::parse_mac(argv[0], mac))
        return cli::kUsage;
    const int radio = vesk_get_radio_idx_by_mac(mac);
    if (radio < 0)
        return cli::miss("%s is on neither radio", argv[0]);
    cli::record().number("radio", radio).text("ifname", radio == 0 ? "ra0" : "ath0");
    return cli::kAnswer;
}

constexpr cli::command kCommands[] = {
    {"survey", "IFNAME [CHANNEL [MAX_AGE]]",
     "networks heard on CHANNEL (0: all), from a file of up to MAX_AGE s: bssid channel signal dbm security scanned "
     "ssid",
     1, survey},
    {"stations", "IFNAME", "associated stations: mac ssid signal rssi", 1, stations},
    {"clients", "IFNAME", "number of associated stations", 1, clients},
    {"channels", "IFNAME", "the primary channel and the others in use", 1, channels},
    {"pin", "[lan|random|MAC]", "a WPS PIN of the board's MAC, a random one, or of MAC", 0, pin},
    {"wps", "IFNAME", "the driver's WPS status word", 1, wps},
    {"schedule", "RADIO", "what the SSID schedule asks of radio 0 or 1: on, to-off, off, to-on", 1, schedule},
    {"radio", "MAC", "the radio (0 or 1) a station is on, and its interface", 1, radio_of},
};

} // namespace

extern const cli::family family_wlan = {"wlan", "the two radios: survey, stations, channels, WPS, schedule",
                                        kCommands};
