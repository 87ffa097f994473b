// Channels an interface occupies, valid b/g/n channels by region, the Ralink
// driver's statistics, and the RF word in flash.
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <array>
#include <span>

#include "core/command.hpp"
#include "core/unique.hpp"
#include "sysapi.h"
#include "vesk_if.h"
#include "vesk_mtd.h"
#include "vesk_wlan.h"

namespace {

// Valid channels of the b/g/n regions 0 to 7, bit n for channel n.
constexpr uint16_t channels(unsigned first, unsigned last)
{
    uint16_t bits = 0;
    for (unsigned c = first; c <= last; c++)
        bits |= static_cast<uint16_t>(1u << c);
    return bits;
}
constexpr std::array<uint16_t, 8> kRegions = {channels(1, 11), channels(1, 13), channels(10, 11), channels(10, 13),
                                              channels(14, 14), channels(1, 14), channels(3, 9), channels(5, 13)};
constexpr unsigned kLastBgnChannel = 14;

// The 20 MHz channels of an 80 MHz block, from its central channel.
constexpr int kBlockOffsets[] = {-6, -2, 2, 6};

constexpr size_t kFlashHead = 256;

} // namespace

extern "C" {

int vesk_get_rt_wifi_stat(const char *ifname, const char *keyword)
{
    if (!ifname || !keyword || !vesk_if_is_existed(ifname))
        return -1;
    char out[80] = {};
    if (vesk::cmd::capture(__func__, std::span(out), "iwpriv %s stat 2>&1 | grep %s", ifname, keyword) < 0)
        return -1;
    int value;
    if (sscanf(out, "%*s = %d", &value) != 1) {
        T_PRINTF("Error in %s\n", __func__);
        return -1;
    }
    return value;
}

int vesk_get_wlan_ch_info_qca(const char *ifname, vesk_wlan_ch_info *info)
{
    if (!info) {
        T_PRINTF("%s: input error!\n", __func__);
        return 1;
    }
    *info = {};
    char out[80] = {};
    if (vesk::cmd::capture(__func__, std::span(out), "wlanconfig %s list active", ifname) < 0)
        return 1;
    unsigned int words[4] = {};
    sscanf(out, "%u,%u,%u,%u", &words[0], &words[1], &words[2], &words[3]);
    info->primary_channel = words[0];
    info->channels[0] = words[1] ? words[1] : words[0];
    info->channels[1] = words[2];
    info->channels[2] = words[3];
    if (!words[2])
        info->channels[1] = info->channels[2] = words[0];
    return 1;
}

int vesk_get_wlan_ch_info_ralink(const char *ifname, vesk_wlan_ch_info *info)
{
    if (!info) {
        T_PRINTF("%s: input error!\n", __func__);
        return 0;
    }
    const int vht = vesk_get_rt_wifi_stat(ifname, "VHTCentralChannel");
    info->primary_channel = 0;
    info->channels[0] = 0;
    const int primary = vesk_get_rt_wifi_stat(ifname, "PrimaryChannel");
    const int central = vesk_get_rt_wifi_stat(ifname, "CentralChannel");
    if (primary <= 0 || (central <= 0 && vht <= 0)) {
        T_PRINTF("%s,error!!!\n", __func__);
        return 0;
    }
    info->primary_channel = static_cast<uint32_t>(primary);
    info->channels[1] = info->channels[2] = 0;
    if (vht > 0) {
        size_t n = 0;
        for (int offset : kBlockOffsets)
            if (offset != primary - vht && n < 3)
                info->channels[n++] = static_cast<uint32_t>(vht + offset);
        return 1;
    }
    if (primary == central)
        info->channels[0] = static_cast<uint32_t>(primary);
    else
        info->channels[0] = static_cast<uint32_t>(primary > central ? central - 2 : central + 2);
    return 1;
}

int vesk_check_bgn_valid_channel(unsigned int region, unsigned int channel)
{
    if (region >= kRegions.size() || channel > kLastBgnChannel)
        return 0;
    return (kRegions[region] >> channel) & 1;
}

int vesk_get_rf_info_from_flash(int offset, const char *partition)
{
    if (offset < 0 || offset > static_cast<int>(kFlashHead) - 2) {
        T_PRINTF("%s: offset %d is out of range\n", __func__, offset);
        return -1;
    }
    int mtd = -1;
    vesk_get_mtd_by_name(partition, &mtd, nullptr);
    char path[32];
    snprintf(path, sizeof path, "/dev/mtd%d", mtd);
    vesk::unique_fd dev(open(path, O_RDONLY));
    if (!dev) {
        T_PRINTF("%s: Cannot open %s !!\n", __func__, path);
        return -1;
    }
    vesk::unique_heap head(malloc(kFlashHead));
    if (!head) {
        fputs("setconfig: malloc failed\n", stderr);
        return -1;
    }
    const auto *bytes = static_cast<const unsigned char *>(head.get());
    const ssize_t got = read(dev.get(), head.get(), kFlashHead);
    if (got <= 0)
        return 0;
    if (got < offset + 2)
        return -1;
    return bytes[offset + 1] << 8 | bytes[offset];
}

} // extern "C"
