// The QCA driver's Wireless Extensions: range data, scan trigger and scan
// results. The results are a packed event stream written as the device's
// 32-bit MIPS kernel writes it (little-endian, a 4-byte header, a point's
// pointer field 4 bytes wide before version 19), or with words=64 as a
// 64-bit kernel pads it. State under radio/IF/:
//   range  "key=value" words: version= (we_version_compiled, default 22),
//          max_qual= (94), length= (bytes answered; default the whole
//          record), channels=1,6,36 (the frequency list; default every
//          2.4 and 5 GHz channel), words=64. Below version 16 the record
//          has the older layout.
//   cells  a cell a line, its events in the order of the words: bssid= ssid=
//          (hidden=1: sent empty) channel= (or mhz=) mode=adhoc|master
//          enc=on|off qual= (with level= noise=, dBm as unsigned bytes)
//          phy= ie=HEX (an element each, sent together in one event).
//          A word left out is not sent.
// Log names: "range", "scan" (channel=, flags=), "scan_results" (length=).
// Results that do not fit the caller's buffer answer E2BIG with the length
// they need (from version 17 on).
#include <errno.h>
#include <linux/wireless.h>
#include <stdio.h>
#include <stdlib.h>

#include <algorithm>

#include "model.hpp"

namespace vdev_model {
namespace {

constexpr size_t kRangeSize = 588; // the device's iw_range
constexpr size_t kVersionAt = 280, kMaxQualAt = 44;
constexpr size_t kFreqCountAt = 306, kFreqAt = 308, kMaxFreqs = 32;
// The layout before version 16: the frequency list and max_qual elsewhere.
constexpr size_t kOldFreqCountAt = 14, kOldFreqAt = 16, kOldMaxFreqs = 16, kOldMaxQualAt = 148;
constexpr int kOldRangeVersion = 16, kPointerVersion = 19, kSizedE2big = 17;
constexpr unsigned kEncodeOn = 0x0800, kEncodeOff = 0x8000; // IW_ENCODE_NOKEY, IW_ENCODE_DISABLED
constexpr unsigned kPhyModeEvent = 0x8C0A;

struct radio_range {
    int version = 22;
    int max_qual = 94;
    long length = -1;
    int words = 32;
    int channels[64];
    size_t count = 0;
};

int mhz_of(int channel) { return channel == 14 ? 2484 : channel < 14 ? 2407 + 5 * channel : 5000 + 5 * channel; }

radio_range range_of(const char *ifname)
{
    radio_range g;
    state_text text;
    if (read_state(text, "radio/%s/range", ifname))
        each_line(text.view(), [&](std::string_view line) {
            for (field f; next_field(line, f);) {
                if (f.key == "version") g.version = int(number(f));
                else if (f.key == "max_qual") g.max_qual = int(number(f));
                else if (f.key == "length") g.length = number(f);
                else if (f.key == "words") g.words = int(number(f));
                else if (f.key == "channels")
                    for (const char *p = f.value; *p && g.count < std::size(g.channels); p += strcspn(p, ","), p += *p == ',')
                        g.channels[g.count++] = atoi(p);
            }
        });
    if (g.count == 0) {
        // what a dual-band QCA radio lists: its 32 entries end at 165
        for (int c = 1; c <= 11; c++)
            g.channels[g.count++] = c;
        for (int c : {36, 40, 44, 48, 52, 56, 60, 64, 100, 104, 108, 112, 116, 132, 136, 140, 149, 153, 157, 161, 165})
            g.channels[g.count++] = c;
    }
    return g;
}

// A frequency as the driver gives it: MHz * 10^5, exponent 1.
void put_freq(uint8_t *p, int mhz, int channel)
{
    put_le32(p, uint32_t(mhz) * 100000u);
    put_le16(p + 4, 1);
    p[6] = uint8_t(channel);
}

answer range(const request &r)
{
    iw_point &data = static_cast<iwreq *>(r.arg)->u.data;
    if (int err = opening(r, "range", "length=%u", data.length))
        return -err;
    radio_range g = range_of(r.ifname);
    uint8_t out[kRangeSize] = {};
    const bool old = g.version < kOldRangeVersion;
    const size_t slots = std::min(g.count, old ? kOldMaxFreqs : kMaxFreqs);
    out[kVersionAt] = uint8_t(g.version);
    out[old ? kOldMaxQualAt : kMaxQualAt] = uint8_t(g.max_qual);
    out[old ? kOldFreqCountAt : kFreqCountAt] = uint8_t(slots);
    for (size_t i = 0; i < slots; i++)
        put_freq(out + (old ? kOldFreqAt : kFreqAt) + 8 * i, mhz_of(g.channels[i]), g.channels[i]);
    size_t n = std::min({size_t(g.length < 0 ? kRangeSize : size_t(g.length)), kRangeSize, size_t(data.length)});
    if (!data.pointer)
        return -EFAULT;
    memcpy(data.pointer, out, n);
    data.length = uint16_t(n);
    return 0;
}

answer scan(const request &r)
{
    iw_point &data = static_cast<iwreq *>(r.arg)->u.data;
    int32_t channel = 0;
    if (data.pointer && data.length >= sizeof channel)
        memcpy(&channel, data.pointer, sizeof channel);
    int err = opening(r, "scan", "channel=%d flags=%u", channel, data.flags);
    return err ? -err : 0;
}

// Appends events to a heap buffer as the driver's kernel lays them out.
struct stream_writer {
    vesk::unique_heap buf;
    size_t size = 0, cap = 0;
    int version, words;

    uint8_t *event(unsigned cmd, size_t body)
    {
        const size_t head = words == 64 ? 8 : 4, len = head + body;
        if (size + len > cap) {
            size_t more = std::max(2 * cap, size + len + 4096);
            void *p = realloc(buf.get(), more);
            if (!p)
                return nullptr;
            buf.release();
            buf.reset(p);
            cap = more;
        }
        uint8_t *e = static_cast<uint8_t *>(buf.get()) + size;
        memset(e, 0, len);
        put_le16(e, uint32_t(len));
        put_le16(e + 2, cmd);
        size += len;
        return e + head;
    }
    // A point: length and flags, then the payload; a 32-bit kernel before
    // version 19 writes a pointer field first, a 64-bit one pads the words.
    void point(unsigned cmd, unsigned flags, const uint8_t *payload, size_t n)
    {
        const size_t fixed = words == 64 ? 8 : version < kPointerVersion ? 8 : 4;
        uint8_t *p = event(cmd, fixed + n);
        if (!p)
            return;
        uint8_t *words_at = p + (words != 64 && version < kPointerVersion ? 4 : 0);
        put_le16(words_at, uint32_t(n));
        put_le16(words_at + 2, flags);
        if (n)
            memcpy(p + fixed, payload, n);
    }
};

void hex_bytes(const field &f, uint8_t *out, size_t *n, size_t cap)
{
    for (size_t i = 0; i + 1 < f.len && *n < cap; i += 2) {
        unsigned b;
        if (sscanf(f.value + i, "%2x", &b) == 1)
            out[(*n)++] = uint8_t(b);
    }
}

void write_cell(stream_writer &w, std::string_view line)
{
    uint8_t ies[1024];
    size_t ies_len = 0;
    bool hidden = false, has_ies = false;
    long level = 0, noise = 0;
    std::string_view all = line;
    for (field f; next_field(all, f);) {
        hidden |= f.key == "hidden" && number(f) != 0;
        level = f.key == "level" ? number(f) : level;
        noise = f.key == "noise" ? number(f) : noise;
    }
    for (field f; next_field(line, f);) {
        if (f.key == "bssid") {
            if (uint8_t *p = w.event(SIOCGIWAP, 16)) {
                put_le16(p, 1); // ARPHRD_ETHER
                mac_of(f, p + 2);
            }
        } else if (f.key == "ssid") {
            w.point(SIOCGIWESSID, hidden ? 0 : 1, reinterpret_cast<const uint8_t *>(f.value), hidden ? 0 : f.len);
        } else if (f.key == "channel" || f.key == "mhz") {
            int channel = f.key == "channel" ? int(number(f)) : 0;
            if (uint8_t *p = w.event(SIOCGIWFREQ, 8))
                put_freq(p, channel ? mhz_of(channel) : int(number(f)), channel);
        } else if (f.key == "mode") {
            if (uint8_t *p = w.event(SIOCGIWMODE, 4))
                put_le32(p, strcmp(f.value, "adhoc") == 0 ? IW_MODE_ADHOC : IW_MODE_MASTER);
        } else if (f.key == "enc") {
            w.point(SIOCGIWENCODE, strcmp(f.value, "on") == 0 ? kEncodeOn : kEncodeOff, nullptr, 0);
        } else if (f.key == "qual") {
            if (uint8_t *p = w.event(IWEVQUAL, 4)) {
                p[0] = uint8_t(number(f));
                p[1] = uint8_t(level);
                p[2] = uint8_t(noise);
                p[3] = 0x0F; // quality and levels updated, levels in dBm
            }
        } else if (f.key == "phy") {
            if (uint8_t *p = w.event(kPhyModeEvent, 8))
                put_le32(p, uint32_t(number(f)));
        } else if (f.key == "ie") {
            hex_bytes(f, ies, &ies_len, sizeof ies);
            has_ies = true;
        }
    }
    if (has_ies)
        w.point(IWEVGENIE, 0, ies, ies_len);
}

answer scan_results(const request &r)
{
    iw_point &data = static_cast<iwreq *>(r.arg)->u.data;
    if (int err = opening(r, "scan_results", "length=%u", data.length))
        return -err;
    radio_range g = range_of(r.ifname);
    stream_writer w;
    w.version = g.version;
    w.words = g.words;
    state_text text;
    if (read_state(text, "radio/%s/cells", r.ifname))
        each_line(text.view(), [&](std::string_view line) { write_cell(w, line); });
    if (w.size > data.length) {
        data.length = g.version >= kSizedE2big ? uint16_t(std::min<size_t>(w.size, UINT16_MAX)) : 0;
        return -E2BIG;
    }
    if (!data.pointer)
        return -EFAULT;
    if (w.size)
        memcpy(data.pointer, w.buf.get(), w.size);
    data.length = uint16_t(w.size);
    return 0;
}

} // namespace

answer qca_wext(const request &r)
{
    switch (r.number) {
    case SIOCGIWRANGE: return range(r);
    case SIOCSIWSCAN: return scan(r);
    case SIOCGIWSCAN: return scan_results(r);
    default: return -EOPNOTSUPP;
    }
}

} // namespace vdev_model
