// Cells of the QCA scan into survey records: a cell begins with its access
// point's address; the events behind it fill its record until the next one.
#include <stdio.h>
#include <string.h>

#include <array>

#include "wlan/qca_cells.hpp"
#include "wlan/qca_security.hpp"

namespace {

static_assert(sizeof(vesk_site_survey_record) == 100);
static_assert(offsetof(vesk_site_survey_record, channel) == 6 && offsetof(vesk_site_survey_record, ssid) == 7);
static_assert(offsetof(vesk_site_survey_record, security) == 40 && offsetof(vesk_site_survey_record, rssi) == 72);
static_assert(offsetof(vesk_site_survey_record, wireless_type) == 73);
static_assert(offsetof(vesk_site_survey_record, ex_channel) == 81 && offsetof(vesk_site_survey_record, dbm) == 92);

constexpr char kMainQca[] = "ath0";
constexpr int kFirst5GhzChannel = 14; // ath0 is the 5 GHz radio: lower channels are 2.4 GHz
constexpr size_t kMacText = 18;
constexpr size_t kSsidMax = 32;

struct phy_mode {
    const char *type;
    const char *ext;
};
constexpr phy_mode kUnknownMode = {"unknow", "unknow"};
// The driver's PHY mode numbers, by the low byte of the event's value.
constexpr std::array<phy_mode, 20> kPhyModes = {{
    kUnknownMode, {"11a", "NONE"}, {"11b", "NONE"}, {"11b/g", "NONE"}, kUnknownMode, kUnknownMode, kUnknownMode,
    {"11a/n", "NONE"}, {"11b/g/n", "NONE"}, {"11a/n", "ABOVE"}, {"11a/n", "BELOW"}, {"11b/g/n", "ABOVE"},
    {"11b/g/n", "BELOW"}, {"11b/g/n", "NONE"}, {"11a/n", "NONE"}, {"11ac", "NONE"}, {"11ac", "ABOVE"},
    {"11ac", "BELOW"}, {"11ac", "NONE"}, {"11ac", "NONE"},
}};

template <size_t N> void put_text(char (&field)[N], const char *text) { snprintf(field, N, "%s", text); }

struct walk {
    std::span<vesk_site_survey_record> records;
    const iw_range &range;
    bool is_ath0;
    size_t cells = 0;
    bool first = true;
    bool drop = false;
    char bssid_text[kMacText] = {};
    vesk_wlan_security sec{};

    vesk_site_survey_record &rec() { return records[cells]; }

    // Finishes the cell being read; false when the list is full.
    bool finish_cell()
    {
        get_security_str(rec().security, &sec);
        if (drop) {
            rec() = {};
            drop = false;
            return true;
        }
        return ++cells < records.size();
    }

    void ssid(const iw_event &e)
    {
        char work[kSsidMax + 1] = {};
        if (e.u.essid.pointer && e.u.essid.length)
            memcpy(work, e.u.essid.pointer, std::min<size_t>(e.u.essid.length, kSsidMax));
        // A cell that hides its SSID shows its BSSID.
        put_text(rec().ssid, e.u.essid.flags ? work : bssid_text);
    }

    void quality(const iw_quality &q)
    {
        // A driver whose greatest quality is 0 gives no percentage.
        rec().rssi = range.max_qual.qual ? uint8_t(100u * q.qual / range.max_qual.qual) : 0;
        rec().dbm = int32_t(q.level) - int32_t(q.noise);
    }

    // false when the list is full.
    bool event(const iw_event &e)
    {
        switch (e.cmd) {
        case SIOCGIWAP:
            if (!first && !finish_cell())
                return false;
            memcpy(rec().bssid, e.u.ap_addr.sa_data, sizeof rec().bssid);
            memset(bssid_text, 0, sizeof bssid_text);
            iw_ether_ntop(rec().bssid, bssid_text);
            first = false;
            break;
        case SIOCGIWESSID:
            ssid(e);
            break;
        case SIOCGIWFREQ: {
            int channel = iw_freq_to_channel(iw_freq2float(&e.u.freq), &range);
            rec().channel = uint8_t(channel < 0 ? 0 : channel);
            drop |= is_ath0 && channel < kFirst5GhzChannel;
            break;
        }
        case SIOCGIWMODE:
            sec.infrastructure = e.u.mode != IW_MODE_ADHOC;
            break;
        case SIOCGIWENCODE:
            sec.privacy = e.u.data.flags != IW_ENCODE_DISABLED;
            init_security(&sec);
            break;
        case IWEVQUAL:
            quality(e.u.qual);
            break;
        case IWEV_PHY_MODE: {
            const unsigned mode = uint8_t(e.u.param.value);
            const phy_mode &m = mode < kPhyModes.size() ? kPhyModes[mode] : kUnknownMode;
            put_text(rec().wireless_type, m.type);
            put_text(rec().ex_channel, m.ext);
            break;
        }
        case IWEVGENIE:
            if (e.u.data.pointer)
                vesk::wlan::parse_security_ies({static_cast<const uint8_t *>(e.u.data.pointer), e.u.data.length}, sec);
            break;
        default:
            break;
        }
        return true;
    }
};

} // namespace

namespace vesk::wlan {

void read_cells(const char *ifname, char *stream, size_t len, const iw_range &range,
                std::span<vesk_site_survey_record> records)
{
    if (records.empty())
        return;
    walk w{records, range, strcmp(ifname, kMainQca) == 0};
    // A first cell without mode or encoding events: an access point, no privacy.
    w.sec.infrastructure = 1;
    init_security(&w.sec);
    vesk_iw_stream s;
    iw_init_event_stream(&s, stream, int(len));
    iw_event e;
    while (iw_extract_event_stream(&s, &e, range.we_version_compiled) > 0) {
        if (!w.event(e))
            return;
    }
    if (!w.first) {
        // The zeroed rest of the buffer ends the list: the last cell needs no count.
        get_security_str(w.rec().security, &w.sec);
        if (w.drop)
            w.rec() = {};
    }
}

} // namespace vesk::wlan
