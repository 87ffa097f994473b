// The event stream reader, checked against the public wireless-tools library
// (libiw) on random streams. libiw exports the same names, so it is loaded
// into a namespace of its own.
#ifdef VESK_LIBIW
#include "vesk_iw.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <string.h>

#include <random>
#include <string>
#include <vector>

namespace {

using init_fn = void (*)(vesk_iw_stream *, char *, int);
using extract_fn = int (*)(vesk_iw_stream *, iw_event *, int);

struct libiw {
    void *h = dlmopen(LM_ID_NEWLM, VESK_LIBIW, RTLD_NOW | RTLD_LOCAL);
    template <typename F> F fn(const char *name) { return h ? reinterpret_cast<F>(dlsym(h, name)) : nullptr; }
    init_fn init = fn<init_fn>("iw_init_event_stream");
    extract_fn extract = fn<extract_fn>("iw_extract_event_stream");
    double (*freq2float)(const iw_freq *) = fn<double (*)(const iw_freq *)>("iw_freq2float");
    int (*to_channel)(double, const iw_range *) = fn<int (*)(double, const iw_range *)>("iw_freq_to_channel");
};

constexpr uint16_t kPointCmds[] = {SIOCGIWESSID, 0x8B1A, IWEVGENIE, 0x8C02, 0x8C09, 0x8B2B, 0x8B10, 0x8B19, 0x8B16, 0x8B34, 0x8C05};
constexpr uint16_t kFixedCmds[] = {SIOCGIWAP, SIOCGIWFREQ, SIOCGIWMODE, IWEVQUAL, 0x8B01, 0x8B20, IWEV_PHY_MODE, 0x8C00};
constexpr uint16_t kUnknownCmds[] = {0x8AFF, 0x8B0A, 0x8B37, 0x8BFF, 0x8C0B, 0x8D00};
constexpr unsigned kHostPointer = sizeof(void *);

bool is_point(uint16_t cmd) { return std::find(std::begin(kPointCmds), std::end(kPointCmds), cmd) != std::end(kPointCmds); }

// Random streams written twice: in the device's layout (a point's pointer
// field 4 bytes before version 19) and in the host's, which libiw reads.
struct stream_pair {
    std::string device, host;
    size_t last = 0; // bytes of the last event in the device's layout
    void put(std::string &s, uint16_t cmd, const std::string &body)
    {
        uint16_t len = uint16_t(4 + body.size());
        if (&s == &device)
            last = len;
        s.append(reinterpret_cast<char *>(&len), 2).append(reinterpret_cast<char *>(&cmd), 2).append(body);
    }
    void both(uint16_t cmd, const std::string &body) { put(device, cmd, body), put(host, cmd, body); }
};

struct generator {
    std::mt19937 rng;
    unsigned pick(unsigned n) { return rng() % n; }
    std::string bytes(size_t n)
    {
        std::string s(n, '\0');
        for (char &c : s)
            c = char(pick(4) ? pick(256) : pick(3)); // small numbers often, so lengths match
        return s;
    }
    std::string le16(unsigned v) { return std::string{char(v & 0xFF), char(v >> 8)}; }

    stream_pair make(int version)
    {
        stream_pair s;
        for (unsigned n = pick(8); n > 0; n--) {
            switch (pick(version >= 19 ? 5 : 2)) {
            case 0: { // a point, its length right or not
                uint16_t cmd = kPointCmds[pick(std::size(kPointCmds))];
                unsigned payload = pick(3) ? pick(40) : pick(1100);
                std::string fixed = le16(pick(4) ? payload : pick(70)) + bytes(2), body = bytes(payload);
                if (version >= 19) {
                    s.both(cmd, fixed + body);
                } else {
                    // The other word size's layout would be looked for in different bytes of
                    // the two layouts: keep its length word (the payload's first two bytes) large.
                    if (body.size() >= 2)
                        body[1] |= 0x10;
                    s.put(s.device, cmd, bytes(4) + fixed + body), s.put(s.host, cmd, bytes(kHostPointer) + fixed + body);
                }
                break;
            }
            case 1: { // values, one or several, or padded as a 64-bit kernel pads them;
                // short ones read into the next event, which differs in the two layouts
                uint16_t cmd = kFixedCmds[pick(std::size(kFixedCmds))];
                s.both(cmd, bytes(std::max(version >= 19 ? 0u : 16u, pick(2) ? 4 + 4 * pick(5) : 8 * pick(4))));
                break;
            }
            case 2: { // any event, any size
                const uint16_t *sets[] = {kPointCmds, kFixedCmds, kUnknownCmds};
                size_t sizes[] = {std::size(kPointCmds), std::size(kFixedCmds), std::size(kUnknownCmds)};
                unsigned set = pick(3);
                s.both(sets[set][pick(unsigned(sizes[set]))], bytes(pick(3) ? pick(24) : 0));
                break;
            }
            case 3: { // a point as a 64-bit kernel writes it
                unsigned payload = pick(30);
                s.both(kPointCmds[pick(std::size(kPointCmds))], bytes(4) + le16(pick(4) ? payload : 0) + bytes(6) + bytes(payload));
                break;
            }
            default: { // a header whose len disagrees with what follows
                std::string b = bytes(pick(24));
                s.device += le16(pick(40)) + le16(kFixedCmds[pick(std::size(kFixedCmds))]) + b, s.last = 4 + b.size();
                s.host = s.device;
            }
            }
        }
        if (s.last >= 4 && pick(3) == 0) { // the last event cut short, its header kept
            size_t cut = pick(unsigned(s.last) - 3);
            s.device.resize(s.device.size() - cut), s.host.resize(s.host.size() - cut);
        }
        return s;
    }
};

// What one call gave, with pointers as offsets from the event's start.
struct reading {
    int result;
    iw_event e;
    long payload = -1;
    bool ended, in_event;
    bool past_end = false; // the payload runs past the stream's end
    bool cut = false; // the event runs past the stream's end
    bool operator==(const reading &o) const { return result == o.result && memcmp(&e, &o.e, sizeof e) == 0 && payload == o.payload && ended == o.ended && in_event == o.in_event; }
};

reading read_one(extract_fn extract, vesk_iw_stream &s, int version)
{
    reading r{};
    memset(&r.e, 0x5A, sizeof r.e);
    char *start = s.current;
    r.result = extract(&s, &r.e, version);
    r.cut = r.result != 0 && r.e.len > s.end - start;
    if (r.result == 1 && is_point(r.e.cmd)) {
        char *p = static_cast<char *>(r.e.u.data.pointer);
        r.payload = p ? p - start : -1;
        r.past_end = p && p + r.e.u.data.length * (r.e.cmd == 0x8B10 ? 16 : 1) > s.end;
        r.e.u.data.pointer = nullptr;
    }
    r.ended = s.current >= s.end;
    r.in_event = r.result == 1 && s.value != nullptr; // more values of this event follow
    return r;
}

// Both readers over one stream, in the device's layout and in the host's,
// event by event, allowing only the differences listed.
void compare(libiw &iw, const stream_pair &s, int version, int n)
{
    std::vector<char> dev(s.device.begin(), s.device.end()), host(s.host.begin(), s.host.end());
    dev.resize(dev.size() + 64), host.resize(host.size() + 64); // libiw reads past the end
    vesk_iw_stream a, b;
    iw_init_event_stream(&a, dev.data(), int(s.device.size()));
    iw.init(&b, host.data(), int(s.host.size()));
    for (int i = 0; i < 64; i++) {
        reading mine = read_one(iw_extract_event_stream, a, version);
        reading theirs = read_one(iw.extract, b, version);
        ASSERT_FALSE(mine.past_end) << "stream " << n << " v" << version << " call " << i;
        if (mine.e.cmd == IWEV_PHY_MODE && (mine.result == 1 || mine.result == -2)) {
            // libiw's table ends at 0x8C09: it passes over the PHY mode, which the survey needs
            ASSERT_EQ(theirs.result, 2);
            while (mine.in_event)
                mine = read_one(iw_extract_event_stream, a, version);
            ASSERT_EQ(mine.ended, theirs.ended);
            continue;
        }
        if (mine.result == -2 && theirs.result == 1) {
            // libiw reads past the stream's end: a later value of an event, or a value
            // behind a 64-bit kernel's padding; here the event is cut off
            while (theirs.in_event)
                theirs = read_one(iw.extract, b, version);
            ASSERT_EQ(mine.ended, theirs.ended);
            continue;
        }
        if (version < 19 && theirs.result != 0 && is_point(theirs.e.cmd)) {
            // before version 19 libiw reads the host's pointer field, here the device's 4 bytes
            theirs.e.len -= kHostPointer - 4;
            theirs.payload -= theirs.payload >= 0 ? kHostPointer - 4 : 0;
        }
        bool refused = mine.payload < 0 && theirs.payload >= 0;
        if ((mine.cut && is_point(mine.e.cmd)) || mine.e.cmd == SIOCGIWENCODE || mine.e.cmd == 0x8B2A ||
            (refused && (theirs.past_end || theirs.payload > theirs.e.len))) {
            // Where libiw reads a point's words past the stream's end, counts a key in
            // tokens of size 0 (so never checks its length against the event), or gives a
            // payload that runs past the stream or lies behind an event shorter than its
            // fixed part, the payload (and the length it read) differ: here it is refused.
            theirs.e.u = mine.e.u, theirs.payload = mine.payload, theirs.past_end = mine.past_end;
        }
        if (mine.payload == mine.e.len && mine.e.u.data.length == 0 && theirs.payload < 0) {
            // an empty payload in another word size's layout: libiw gives no pointer, here
            // it points at the event's end
            theirs.payload = mine.payload;
        }
        ASSERT_EQ(mine, theirs) << "stream " << n << " v" << version << " call " << i << " cmd " << std::hex << mine.e.cmd << " results " << mine.result << " " << theirs.result << " payload " << std::dec << mine.payload << " " << theirs.payload << " len " << mine.e.len << " length " << mine.e.u.data.length << "/" << theirs.e.u.data.length;
        if (mine.result == 0 || mine.result == -1)
            break; // the end, or an event that cannot be passed over
    }
}

TEST(IwStream, AgreesWithLibiwOnRandomStreams)
{
    libiw iw;
    ASSERT_TRUE(iw.init && iw.extract) << VESK_LIBIW ": " << dlerror();
    generator g{std::mt19937(16)};
    for (int n = 0; n < 10000 && !testing::Test::HasFatalFailure(); n++) {
        int version = 15 + int(g.pick(8));
        compare(iw, g.make(version), version, n);
    }
    // Streams by hand, and where the reader puts the payload (-1: nowhere). An extended
    // encoding's payload holds 40 to 104 bytes, a custom event's at most 1024.
    auto point = [](uint16_t cmd, uint16_t n) {
        const char head[] = {char(8 + n), char((8 + n) >> 8), char(cmd), char(cmd >> 8), char(n), char(n >> 8), 0, 0};
        return std::string(head, sizeof head) + std::string(n, 'k');
    };
    const struct { std::string bytes; int version; long payload; } crafted[] = {
        // before version 19 the other word size's length comes from other bytes than the
        // count checked: a payload that would run past the stream's end is refused
        {std::string("\x14\0\x1B\x8B\0\0\0\0\x02\0\x01\0", 12) + std::string(8, '\0'), 18, -1},
        {std::string("\x0C\0\x2B\x8B\0\0\0\0\x10\0\0\0", 12), 22, 8}, // a key of length 0 may carry bytes
        {point(0x8B34, 39), 22, -1}, {point(0x8B34, 40), 22, 8}, {point(0x8B34, 104), 22, 8}, {point(0x8B34, 105), 22, -1},
        {point(0x8C05, 1024), 22, 8}, {point(0x8C05, 1025), 22, -1},
    };
    for (const auto &c : crafted) {
        std::vector<char> stream(c.bytes.begin(), c.bytes.end());
        vesk_iw_stream s;
        iw_init_event_stream(&s, stream.data(), int(stream.size()));
        EXPECT_EQ(read_one(iw_extract_event_stream, s, c.version).payload, c.payload) << c.version;
    }
}

TEST(IwStream, FrequenciesAndChannelsAgreeWithLibiw)
{
    libiw iw;
    ASSERT_TRUE(iw.freq2float && iw.to_channel) << dlerror();
    std::mt19937 rng(7);
    iw_range range{}; // libiw's is 568 bytes: the frequencies stand at the same place
    for (int n = 0; n < 2000; n++) {
        range.num_frequency = uint8_t(rng() % 33);
        for (iw_freq &f : range.freq)
            f = {int32_t(rng() % 3 ? 2412 + 5 * (rng() % 150) : rng() % 1200), int16_t(rng() % 3 ? 6 : rng() % 10),
                 uint8_t(rng()), 0};
        iw_freq q = range.freq[rng() % 32];
        double f = iw_freq2float(&q);
        SCOPED_TRACE(testing::Message() << q.m << "e" << q.e);
        EXPECT_EQ(f, iw.freq2float(&q));
        q.e = int16_t(-1 - int(rng() % 3)); // libiw takes it through pow(); the device has no libm
        EXPECT_EQ(iw_freq2float(&q), q.m);
        // libiw answers -1 below 1 kHz (taken for a channel already) and -2 when no
        // frequency fits; here the list decides for any value, and no fit gives 0
        int theirs = iw.to_channel(f, &range), mine = iw_freq_to_channel(f, &range);
        if (theirs == -1)
            EXPECT_GE(mine, 0);
        else
            EXPECT_EQ(mine, theirs == -2 ? 0 : theirs);
    }
}

} // namespace
#endif
