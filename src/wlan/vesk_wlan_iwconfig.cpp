// What the iwconfig tool prints of an interface, read into a vesk_wlan_info.
// The tool writes "=" or ":" behind a label depending on the driver and the
// setting, so each value has a row per form; the first form that fits wins.
#include <stdio.h>
#include <string.h>

#include <array>

#include "core/command.hpp"
#include "core/unique.hpp"
#include "sysapi.h"
#include "vesk_wlan.h"

namespace {

constexpr char kResultFile[] = "/tmp/iwconfig_result.txt";
constexpr size_t kLine = 128;   // longer lines come in pieces
constexpr size_t kFormat = 80;  // keyword and format joined
constexpr int kFractionDigits = 100; // "5.18" reads 18: below this it lacks a digit

// Where a row's values go.
enum class place { channel, bit_rate, mac, link_quality, signal, noise, frequency };

struct row {
    const char *keyword;
    const char *format;
    place to;
};

// Tried in this order on every line. The access point's text is cut to Mac's 19 characters.
constexpr std::array<row, 12> kRows = {{
    {"Channel", "=%d", place::channel},
    {"Bit Rate", "=%d", place::bit_rate},
    {"Bit Rate", ":%d", place::bit_rate},
    {"Access Point", ": %19s", place::mac},
    {"Link Quality", ":%d", place::link_quality},
    {"Link Quality", "=%d", place::link_quality},
    {"Signal level", ":%d", place::signal},
    {"Signal level", "=%d", place::signal},
    {"Noise level", ":%d", place::noise},
    {"Noise level", "=%d", place::noise},
    {"Frequency", "=%d.%d", place::frequency},
    {"Frequency", ":%d.%d", place::frequency},
}};
static_assert(sizeof(vesk_wlan_info::Mac) == 20);

struct frequency {
    int whole = 0;
    int fraction = 0;
};

void scan_row(const row &r, const char *line, vesk_wlan_info &info, frequency &f)
{
    const char *at = strstr(line, r.keyword);
    if (!at)
        return;
    char tail[kLine];
    snprintf(tail, sizeof tail, "%s", at);
    char format[kFormat];
    snprintf(format, sizeof format, "%s%s", r.keyword, r.format);
    switch (r.to) {
    case place::channel: sscanf(tail, format, &info.channel); break;
    case place::bit_rate: sscanf(tail, format, &info.bitRate); break;
    case place::mac: sscanf(tail, format, info.Mac); break;
    case place::link_quality: sscanf(tail, format, &info.linkQuality); break;
    case place::signal: sscanf(tail, format, &info.signalLevel); break;
    case place::noise: sscanf(tail, format, &info.noiseLevel); break;
    case place::frequency: sscanf(tail, format, &f.whole, &f.fraction); break;
    }
}

} // namespace

extern "C" {

int vesk_get_wlan_interface_info(const char *ifname, vesk_wlan_info *info)
{
    if (!info)
        return 0;
    info->isLevelinDbm = 0;
    if (!ifname) {
        T_PRINTF("Err: %s, dev_name is NULL!\n", __func__);
        return 0;
    }
    vesk::cmd::run(__func__, "iwconfig %s>/tmp/iwconfig_result.txt", ifname);
    vesk::unique_file file = vesk::open_file(kResultFile, "r");
    if (!file)
        return 0;
    char line[kLine];
    frequency f;
    // The first line names the interface and its ESSID.
    for (bool first = true; fgets(line, sizeof line, file.get()); first = false) {
        if (first)
            continue;
        for (const row &r : kRows)
            scan_row(r, line, *info, f);
        // "5.2" reads 2: it gains its digits over this and the next lines.
        if (f.fraction > 0 && f.fraction < kFractionDigits)
            f.fraction *= 10;
        info->frequency = int(1000LL * f.whole + f.fraction);
        if (!info->isLevelinDbm && strstr(line, "dBm"))
            info->isLevelinDbm = 1;
    }
    return 1;
}

void vesk_dump_wlan_info(const vesk_wlan_info *info)
{
    if (!info)
        return;
    puts("=====Wlan Status =====");
    printf("linkQuality %d\n", info->linkQuality);
    printf("signalLevel %d\n", info->signalLevel);
    printf("noiseLevel %d\n", info->noiseLevel);
    printf("isLevelinDbm %d\n", info->isLevelinDbm);
    printf("bitRate %d\n", info->bitRate);
    printf("Mac %s\n", info->Mac);
    printf("channel %d\n", info->channel);
    printf("frequency %d\n", info->frequency);
}

void vesk_check_wep_key_using_iwconfig(const char *key, char *escaped)
{
    if (!escaped)
        return;
    char *out = escaped;
    for (const char *k = key; k && *k; k++) {
        if (strchr("\"\\'`&()<>|; ", *k))
            *out++ = '\\';
        *out++ = *k;
    }
    *out = '\0';
}

} // extern "C"
