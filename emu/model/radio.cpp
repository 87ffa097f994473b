// The two radios' drivers: the Ralink private request 0x8BE1 with its
// sub-commands in the flags, and the QCA station list 0x89F6. Records are
// written as the drivers lay them out: byte offsets of the device's 32-bit
// little-endian build, multi-byte fields little-endian.
#include <errno.h>
#include <linux/wireless.h>
#include <stdio.h>

#include <algorithm>

#include "model.hpp"

namespace vdev_model {
namespace {

// A station in the Ralink driver's table.
struct ralink_sta {
    uint8_t index, mac[6], reserved0, counters[16], reserved1[3], percent;
    uint8_t stat_value[4], rank_value[4], rssi, reserved2[3];
};
static_assert(sizeof(ralink_sta) == 40);
static_assert(offsetof(ralink_sta, mac) == 1 && offsetof(ralink_sta, counters) == 8);
static_assert(offsetof(ralink_sta, percent) == 27 && offsetof(ralink_sta, stat_value) == 28);
static_assert(offsetof(ralink_sta, rank_value) == 32 && offsetof(ralink_sta, rssi) == 36);
constexpr size_t kTableHead = 8, kTableSize = 2048, kTableMax = (kTableSize - kTableHead) / sizeof(ralink_sta);
static_assert(kTableMax == 51);

// A network in the Ralink driver's survey answer.
struct survey_record {
    uint8_t bssid[6], channel;
    char ssid[33], security[32];
    uint8_t rssi;
    char wireless_type[8], ex_channel[11];
    uint8_t dbm[4], hidden, reserved[3];
};
static_assert(sizeof(survey_record) == 100);
static_assert(offsetof(survey_record, channel) == 6 && offsetof(survey_record, ssid) == 7);
static_assert(offsetof(survey_record, security) == 40 && offsetof(survey_record, rssi) == 72);
static_assert(offsetof(survey_record, wireless_type) == 73 && offsetof(survey_record, ex_channel) == 81);
static_assert(offsetof(survey_record, dbm) == 92 && offsetof(survey_record, hidden) == 96);
constexpr size_t kSurveyMax = 64;

// The fields of the QCA driver's station entry that the model fills; an
// entry is at least 184 bytes and its first word tells its length.
struct qca_entry_head {
    uint8_t len[2], reserved0[9];
    int8_t rssi;
    uint8_t reserved1[4], mac[6], reserved2[118], rank[2], reserved3[6], stat[4], counters[16];
};
static_assert(sizeof(qca_entry_head) == 168);
static_assert(offsetof(qca_entry_head, rssi) == 11 && offsetof(qca_entry_head, mac) == 16);
static_assert(offsetof(qca_entry_head, rank) == 140 && offsetof(qca_entry_head, stat) == 148);
static_assert(offsetof(qca_entry_head, counters) == 152);
constexpr long kQcaEntrySize = 192; // a station without extra elements

// The request record of every wireless request; the device's layout.
static_assert(offsetof(iwreq, u.data.pointer) == kNameSize);
static_assert(offsetof(iwreq, u.data.length) == kNameSize + sizeof(void *));
static_assert(offsetof(iwreq, u.data.flags) == kNameSize + sizeof(void *) + 2);

bool is_ralink(const char *ifname) { return strncmp(ifname, "ra", 2) == 0; }

// The counters=A,B,C,D word into four little-endian words.
void put_counters(uint8_t *out, const field &f)
{
    unsigned int c[4] = {0, 0, 0, 0};
    sscanf(f.value, "%u,%u,%u,%u", &c[0], &c[1], &c[2], &c[3]);
    for (int i = 0; i < 4; i++)
        put_le32(out + 4 * i, c[i]);
}

void copy_text(char *out, size_t cap, const field &f) { memcpy(out, f.value, std::min(cap, f.len)); }

// Fills the first room bytes of the answer at out, zeroed before.
using filler = void (*)(const char *ifname, uint8_t *out, size_t room);

void sta_table(const char *ifname, uint8_t *out, size_t room, const char *file)
{
    state_text text;
    if (room < kTableHead || !read_state(text, "radio/%s/%s", ifname, file))
        return;
    size_t count = 0;
    each_line(text.view(), [&](std::string_view line) {
        if (count == kTableMax || kTableHead + (count + 1) * sizeof(ralink_sta) > room)
            return;
        ralink_sta s{};
        for (field f; next_field(line, f);) {
            if (f.key == "index") s.index = static_cast<uint8_t>(number(f));
            else if (f.key == "mac") mac_of(f, s.mac);
            else if (f.key == "counters") put_counters(s.counters, f);
            else if (f.key == "percent") s.percent = static_cast<uint8_t>(number(f));
            else if (f.key == "stat") put_le32(s.stat_value, static_cast<uint32_t>(number(f)));
            else if (f.key == "rank") put_le32(s.rank_value, static_cast<uint32_t>(number(f)));
            else if (f.key == "rssi") s.rssi = static_cast<uint8_t>(number(f));
        }
        memcpy(out + kTableHead + count++ * sizeof s, &s, sizeof s);
    });
    out[0] = static_cast<uint8_t>(count);
}

void stations(const char *ifname, uint8_t *out, size_t room) { sta_table(ifname, out, room, "stations"); }
void wds_peers(const char *ifname, uint8_t *out, size_t room) { sta_table(ifname, out, room, "wds"); }

void survey(const char *ifname, uint8_t *out, size_t room)
{
    state_text text;
    size_t count = 0;
    if (read_state(text, "radio/%s/survey", ifname))
        each_line(text.view(), [&](std::string_view line) {
            if (count == kSurveyMax || (count + 1) * sizeof(survey_record) > room)
                return;
            survey_record s{};
            for (field f; next_field(line, f);) {
                if (f.key == "bssid") mac_of(f, s.bssid);
                else if (f.key == "channel") s.channel = static_cast<uint8_t>(number(f));
                else if (f.key == "ssid") copy_text(s.ssid, sizeof s.ssid, f);
                else if (f.key == "security") copy_text(s.security, sizeof s.security, f);
                else if (f.key == "rssi") s.rssi = static_cast<uint8_t>(number(f));
                else if (f.key == "type") copy_text(s.wireless_type, sizeof s.wireless_type, f);
                else if (f.key == "ext") copy_text(s.ex_channel, sizeof s.ex_channel, f);
                else if (f.key == "dbm") put_le32(s.dbm, static_cast<uint32_t>(number(f)));
                else if (f.key == "hidden") s.hidden = static_cast<uint8_t>(number(f));
            }
            memcpy(out + count++ * sizeof s, &s, sizeof s);
        });
}

void wps_status(const char *ifname, uint8_t *out, size_t room)
{
    state_text text;
    uint8_t word[4] = {0, 0, 0, 0};
    if (read_state(text, "radio/%s/wps_status", ifname))
        put_le32(word, static_cast<uint32_t>(strtoul(text.view().data(), nullptr, 0)));
    memcpy(out, word, std::min(room, sizeof word));
}

// The profile file's bytes as they are, up to the driver's 968.
void wps_profile(const char *ifname, uint8_t *out, size_t room)
{
    state_text text;
    if (read_state(text, "radio/%s/wps_profile", ifname))
        memcpy(out, text.view().data(), std::min(room, text.size));
}

// Each sub-command's answer has the size of the driver's record.
struct ralink_command {
    uint16_t flags;
    const char *name;
    size_t size;
    filler fill;
};
constexpr ralink_command kRalink[] = {
    {0x0750, "wps_profile", 968, wps_profile},
    {0x0751, "wps_status", 4, wps_status},
    {0x0800, "stations", kTableSize, stations},
    {0x0802, "survey", kSurveyMax * sizeof(survey_record), survey},
    {0x0803, "wds", kTableSize, wds_peers},
};

answer ralink_private(const request &r)
{
    iw_point &data = static_cast<iwreq *>(r.arg)->u.data;
    const ralink_command *cmd = nullptr;
    for (const ralink_command &c : kRalink)
        cmd = c.flags == data.flags ? &c : cmd;
    if (!cmd || !is_ralink(r.ifname))
        return -EOPNOTSUPP;
    uint8_t channel[4] = {0, 0, 0, 0}; // the survey's channel word
    if (data.pointer && data.length >= sizeof channel)
        memcpy(channel, data.pointer, sizeof channel);
    if (int err = opening(r, cmd->name, "length=%u channel=%u", data.length,
                          channel[0] | channel[1] << 8 | channel[2] << 16 | static_cast<unsigned>(channel[3]) << 24))
        return -err;
    if (!data.pointer)
        return -EFAULT;
    // Never past the caller's length; the length tells what was answered.
    size_t room = std::min<size_t>(data.length, cmd->size);
    memset(data.pointer, 0, room);
    cmd->fill(r.ifname, static_cast<uint8_t *>(data.pointer), room);
    data.length = static_cast<uint16_t>(room);
    return 0;
}

} // namespace

bool is_radio(const char *ifname)
{
    return plain_name(ifname) && state_exists("radio/%s", ifname);
}

answer radio_wext(const request &r)
{
    if (!is_radio(r.ifname))
        return no_driver(r);
    if (r.number == SIOCIWFIRSTPRIV + 1)
        return ralink_private(r);
    return is_ralink(r.ifname) ? -EOPNOTSUPP : qca_wext(r);
}

answer qca_stations(const request &r)
{
    iw_point &data = static_cast<iwreq *>(r.arg)->u.data;
    if (is_ralink(r.ifname))
        return -EOPNOTSUPP;
    if (int err = opening(r, "stations", "length=%u flags=%u", data.length, data.flags))
        return -err;
    if (!data.pointer)
        return -EFAULT;
    auto *out = static_cast<uint8_t *>(data.pointer);
    size_t used = 0;
    bool full = false; // nothing goes behind an entry that did not fit
    state_text text;
    if (read_state(text, "radio/%s/stations", r.ifname))
        each_line(text.view(), [&](std::string_view line) {
            qca_entry_head e{};
            long size = kQcaEntrySize, len = -1;
            for (field f; next_field(line, f);) {
                if (f.key == "size") size = std::max(0L, number(f));
                else if (f.key == "len") len = number(f);
                else if (f.key == "mac") mac_of(f, e.mac);
                else if (f.key == "rssi") e.rssi = static_cast<int8_t>(number(f));
                else if (f.key == "rank") put_le16(e.rank, static_cast<uint32_t>(number(f)));
                else if (f.key == "stat") put_le32(e.stat, static_cast<uint32_t>(number(f)));
                else if (f.key == "counters") put_counters(e.counters, f);
            }
            put_le16(e.len, static_cast<uint32_t>(len < 0 ? size : len));
            full |= used + static_cast<size_t>(size) > data.length;
            if (full)
                return;
            memset(out + used, 0, static_cast<size_t>(size));
            memcpy(out + used, &e, std::min(sizeof e, static_cast<size_t>(size)));
            used += static_cast<size_t>(size);
        });
    data.length = static_cast<uint16_t>(used);
    return 0;
}

} // namespace vdev_model
