// The QCA driver's range data, and the small conversions that go with the
// event stream: frequency to number, frequency to channel, MAC to text.
#include "vesk_iw.h"

#include <stdio.h>
#include <string.h>
#include <sys/ioctl.h>

#include <array>

#include "wlan/driver.hpp"

namespace {

// The device's layout, which the driver writes.
static_assert(sizeof(iw_range) == 588);
static_assert(offsetof(iw_range, sensitivity) == 40);
static_assert(offsetof(iw_range, max_qual) == 44);
static_assert(offsetof(iw_range, avg_qual) == 48);
static_assert(offsetof(iw_range, num_bitrates) == 52);
static_assert(offsetof(iw_range, bitrate) == 56);
static_assert(offsetof(iw_range, min_rts) == 184);
static_assert(offsetof(iw_range, txpower_capa) == 242);
static_assert(offsetof(iw_range, txpower) == 248);
static_assert(offsetof(iw_range, we_version_compiled) == 280);
static_assert(offsetof(iw_range, num_channels) == 304);
static_assert(offsetof(iw_range, num_frequency) == 306);
static_assert(offsetof(iw_range, freq) == 308);
static_assert(offsetof(iw_range, enc_capa) == 564);

// Room for a driver that writes more than it should.
constexpr size_t kRangeBuffer = 2 * sizeof(iw_range);
static_assert(kRangeBuffer == 1176);

// Drivers that answer fewer bytes predate the version field.
constexpr unsigned kVersionedLength = 300;
constexpr unsigned char kUnversioned = 9;
// From this version on the driver writes the present layout.
constexpr unsigned char kPresentLayout = 16;

// Where the older layout keeps what the present one has elsewhere.
struct block_move {
    size_t from, to, bytes;
};
constexpr std::array<block_move, 8> kOlderLayout = {{
    {0, 0, 12},      // throughput, NWID range
    {12, 304, 132},  // channels and 16 frequencies
    {144, 40, 8},    // sensitivity, max_qual
    {152, 52, 36},   // 8 bit rates
    {188, 184, 56},  // RTS .. encoding
    {244, 242, 4},   // transmit power counts
    {248, 248, 56},  // transmit powers .. retry times
    {304, 48, 4},    // avg_qual
}};

} // namespace

extern "C" {

int iw_get_range_info(int skfd, const char *ifname, iw_range *range)
{
    alignas(iw_range) unsigned char buffer[kRangeBuffer] = {};
    vesk::wlan::iwreq req;
    if (!vesk::wlan::make_iwreq(req, ifname, buffer, sizeof buffer, 0) || ioctl(skfd, SIOCGIWRANGE, &req) < 0)
        return -1;
    constexpr size_t kVersion = offsetof(iw_range, we_version_compiled);
    if (req.u.data.length < kVersionedLength)
        buffer[kVersion] = kUnversioned;
    if (buffer[kVersion] >= kPresentLayout) {
        memcpy(range, buffer, sizeof *range);
        return 0;
    }
    memset(range, 0, sizeof *range);
    for (const block_move &m : kOlderLayout)
        memcpy(reinterpret_cast<unsigned char *>(range) + m.to, buffer + m.from, m.bytes);
    return 0;
}

double iw_freq2float(const iw_freq *in)
{
    // Repeated multiplication: the library takes nothing from libm.
    double result = in->m;
    for (int i = 0; i < in->e; i++)
        result *= 10.0;
    return result;
}

int iw_freq_to_channel(double freq, const iw_range *range)
{
    // num_frequency is a byte; the list holds no more than its 32 entries.
    const unsigned n = range->num_frequency < IW_MAX_FREQUENCIES ? range->num_frequency : IW_MAX_FREQUENCIES;
    for (unsigned k = 0; k < n; k++) {
        if (iw_freq2float(&range->freq[k]) == freq)
            return range->freq[k].i;
    }
    return 0;
}

int iw_ether_ntop(const unsigned char *mac, char *buf)
{
    return snprintf(buf, 18, "%02X:%02X:%02X:%02X:%02X:%02X", mac[0], mac[1], mac[2], mac[3], mac[4], mac[5]);
}

} // extern "C"
