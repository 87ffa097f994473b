// The reader of the packed Wireless Extensions event stream that the QCA
// driver returns as scan results. The stream is in the device's layout: a
// 4-byte header (len, cmd), then the fixed part of the payload packed, a
// point's pointer field 4 bytes wide (and gone from version 19 on). Events
// that a kernel of the other word size wrote carry 4 bytes of alignment
// after the header; they are recognised and read as well.
#include "vesk_iw.h"

#include <stddef.h>
#include <string.h>

#include <array>
#include <initializer_list>

namespace {

static_assert(sizeof(iw_param) == 8 && offsetof(iw_param, flags) == 6);
static_assert(sizeof(iw_freq) == 8 && offsetof(iw_freq, e) == 4 && offsetof(iw_freq, i) == 6);
static_assert(sizeof(iw_quality) == 4 && offsetof(iw_quality, noise) == 2);
static_assert(offsetof(iw_point, length) == sizeof(void *) && sizeof(iw_point) == 2 * sizeof(void *));
static_assert(offsetof(iw_event, u) == alignof(iwreq_data) && alignof(iwreq_data) == alignof(void *));
static_assert(sizeof(iwreq_data) == 16);

enum header_type : unsigned char {
    kNone = 0,
    kChar = 2,
    kUint = 4,
    kFreq = 5,
    kAddr = 6,
    kPoint = 8,
    kParam = 9,
    kQual = 10,
};

// Size in the stream, header included, by header type.
constexpr std::array<unsigned, 11> kTypeSize = {4, 0, 20, 0, 8, 12, 20, 0, 8, 12, 8};

constexpr unsigned kHeader = 4;         // len and cmd
constexpr unsigned kDevicePointer = 4;  // a point's pointer field before version 19
constexpr int kNoPointerVersion = 19;   // first version without that field
constexpr unsigned short kNoMax = 0x0008; // the greatest number of tokens does not hold
constexpr unsigned kWordPad = 4;        // a 64-bit kernel's alignment after the header

struct descriptor {
    header_type type;
    unsigned short token_size;
    unsigned short min_tokens;
    unsigned short max_tokens;
    unsigned short flags;
};

struct rows {
    unsigned first, last;
    descriptor d;
};

template <size_t N> consteval std::array<descriptor, N> table(unsigned base, std::initializer_list<rows> spans)
{
    std::array<descriptor, N> t{};
    for (const rows &r : spans)
        for (unsigned cmd = r.first; cmd <= r.last; cmd++)
            t[cmd - base] = r.d;
    return t;
}

constexpr descriptor kParamRow{kParam, 0, 0, 0, 0};
constexpr descriptor kAddrRow{kAddr, 0, 0, 0, 0};
constexpr descriptor bytes(unsigned short min, unsigned short max, unsigned short flags = 0)
{
    return {kPoint, 1, min, max, flags};
}

constexpr unsigned kRequestBase = 0x8B00;
constexpr auto kRequests = table<55>(kRequestBase, {
    {0x8B01, 0x8B01, {kChar, 0, 0, 0, 0}},
    {0x8B02, 0x8B03, kParamRow},
    {0x8B04, 0x8B05, {kFreq, 0, 0, 0, 0}},
    {0x8B06, 0x8B07, {kUint, 0, 0, 0, 0}},
    {0x8B08, 0x8B09, kParamRow},
    {0x8B0B, 0x8B0B, bytes(0, sizeof(iw_range))},
    {0x8B10, 0x8B10, {kPoint, 16, 0, 8, 0}},
    {0x8B11, 0x8B11, {kPoint, 20, 0, 8, 0}},
    {0x8B12, 0x8B13, {kPoint, 28, 1, 1, 0}},
    {0x8B14, 0x8B15, kAddrRow},
    {0x8B16, 0x8B16, bytes(20, 20)},
    {0x8B17, 0x8B17, {kPoint, 20, 0, 64, kNoMax}},
    {0x8B18, 0x8B18, bytes(0, 316)},
    {0x8B19, 0x8B19, bytes(0, 4096, kNoMax)},
    {0x8B1A, 0x8B1D, bytes(0, 33)},
    {0x8B20, 0x8B29, kParamRow},
    {0x8B2A, 0x8B2B, bytes(0, 64)},
    {0x8B2C, 0x8B2F, kParamRow},
    {0x8B30, 0x8B31, bytes(0, 1024)},
    {0x8B32, 0x8B33, kParamRow},
    {0x8B34, 0x8B35, bytes(40, 104)},
    {0x8B36, 0x8B36, bytes(36, 36)},
});

constexpr unsigned kEventBase = 0x8C00;
constexpr auto kEvents = table<11>(kEventBase, {
    {0x8C00, 0x8C00, kAddrRow},
    {0x8C01, 0x8C01, {kQual, 0, 0, 0, 0}},
    {0x8C02, 0x8C02, bytes(0, 256)},
    {0x8C03, 0x8C04, kAddrRow},
    {0x8C05, 0x8C05, bytes(0, 1024)},
    {0x8C06, 0x8C06, bytes(0, 28)},
    {0x8C07, 0x8C08, bytes(0, 1024)},
    {0x8C09, 0x8C09, bytes(0, 24)},
    {IWEV_PHY_MODE, IWEV_PHY_MODE, kParamRow},
});
static_assert(kEvents.size() == IWEV_PHY_MODE - kEventBase + 1);

const descriptor *find_descriptor(unsigned cmd)
{
    if (cmd < kEventBase)
        return cmd - kRequestBase < kRequests.size() ? &kRequests[cmd - kRequestBase] : nullptr;
    return cmd - kEventBase < kEvents.size() ? &kEvents[cmd - kEventBase] : nullptr;
}

// Moves past the current event; never beyond the end, where the next call
// stops anyway.
void pass_event(vesk_iw_stream &s, unsigned len)
{
    s.current = len < static_cast<size_t>(s.end - s.current) ? s.current + len : s.end;
}

char *union_bytes(iw_event &iwe) { return reinterpret_cast<char *>(&iwe.u); }
char *length_bytes(iw_event &iwe) { return union_bytes(iwe) + offsetof(iw_point, length); }

// The fixed part of a point has been read; checks its payload. The pointer
// stays null unless the payload lies within the event and the stream and its
// length passes the descriptor.
void read_payload(vesk_iw_stream &s, iw_event &iwe, const descriptor &d, char *p, unsigned size)
{
    iwe.u.data.pointer = nullptr;
    const long extra = long(iwe.len) - long(size) - long(kHeader);
    if (extra == 0)
        return;
    long tokens = long(iwe.u.data.length) * d.token_size;
    long room = s.end - p; // bytes of the stream from the payload on
    // A kernel of the other word size: 4 bytes of alignment before length
    // and flags, and 4 more before the payload.
    if (tokens != extra && extra >= 4 && room >= long(kWordPad)) {
        unsigned short n;
        memcpy(&n, p, sizeof n);
        const long alt = long(n) * d.token_size;
        if (alt + 8 == extra) {
            memcpy(length_bytes(iwe), p - size + kWordPad, size);
            if (room < long(2 * kWordPad))
                return;
            p += 2 * kWordPad;
            room -= 2 * kWordPad;
            tokens = alt;
        }
    }
    // Before version 19 the other layout's length comes from other bytes than
    // the count checked: the length given must fit the stream as well.
    if (tokens > extra || tokens > room || long(iwe.u.data.length) * d.token_size > room)
        return;
    if ((iwe.u.data.length > d.max_tokens && !(d.flags & kNoMax)) || iwe.u.data.length < d.min_tokens)
        return;
    iwe.u.data.pointer = p;
}

} // namespace

extern "C" {

void iw_init_event_stream(vesk_iw_stream *stream, char *data, int len)
{
    memset(stream, 0, sizeof *stream);
    stream->current = data;
    stream->end = data + (len > 0 ? len : 0);
}

int iw_extract_event_stream(vesk_iw_stream *stream, iw_event *iwe, int we_version)
{
    vesk_iw_stream &s = *stream;
    char *const cur = s.current;
    if (s.end - cur < long(kHeader))
        return 0;
    memcpy(iwe, cur, kHeader);
    const unsigned len = iwe->len;
    if (len <= kHeader)
        return -1;
    const descriptor *d = find_descriptor(iwe->cmd);
    const header_type type = d ? d->type : kNone;
    unsigned size = kTypeSize[type];
    const bool pointer_field = type == kPoint && we_version < kNoPointerVersion;
    if (pointer_field)
        size += kDevicePointer;
    if (size <= kHeader) {
        pass_event(s, len);
        return 2;
    }
    size -= kHeader;
    char *p = s.value ? s.value : cur + kHeader;
    if (long(size) > s.end - p) {
        pass_event(s, len);
        return -2;
    }
    if (type == kPoint) {
        // The device's pointer field carries nothing for the reader: only
        // length and flags are taken, into their place in either build.
        memcpy(length_bytes(*iwe), p + (pointer_field ? kDevicePointer : 0), size - (pointer_field ? kDevicePointer : 0));
        read_payload(s, *iwe, *d, p + size, size);
        pass_event(s, len);
        return 1;
    }
    memcpy(union_bytes(*iwe), p, size);
    p += size;
    if (!s.value && ((len - kHeader) % size == kWordPad || (len == 12 && (type == kUint || type == kQual)))) {
        char *from = p - size + kWordPad;
        if (long(size) > s.end - from) {
            pass_event(s, len);
            return -2;
        }
        memcpy(union_bytes(*iwe), from, size);
        p = from + size;
    }
    if (size_t(p - cur) + size <= len) {
        s.value = p;
    } else {
        s.value = nullptr;
        pass_event(s, len);
    }
    return 1;
}

} // extern "C"
