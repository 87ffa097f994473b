// Associated stations: the Ralink driver's finished table, the QCA driver's
// list of entries turned into the same records, client counts and the radio
// that holds a station.
#include <errno.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include <algorithm>

#include "core/byte_order.hpp"
#include "core/unique.hpp"
#include "sysapi.h"
#include "vesk_wlan.h"
#include "wlan/driver.hpp"
#include "wlan/slots.hpp"

static_assert(sizeof(vesk_sta_record) == 40);
static_assert(offsetof(vesk_sta_record, index) == 0);
static_assert(offsetof(vesk_sta_record, mac) == 1);
static_assert(offsetof(vesk_sta_record, counters) == 8);
static_assert(offsetof(vesk_sta_record, percent) == 27);
static_assert(offsetof(vesk_sta_record, stat_value) == 28);
static_assert(offsetof(vesk_sta_record, rank_value) == 32);
static_assert(offsetof(vesk_sta_record, rssi) == 36);
static_assert(sizeof(vesk_sta_table) == 2048);
static_assert(offsetof(vesk_sta_table, records) == 8);

namespace {

// One entry of the QCA driver's station list. Entries lie one behind the
// other, each len bytes long; only these fields are read.
struct qca_sta_entry {
    unsigned char len[2];
    unsigned char unused1[9];
    signed char rssi;
    unsigned char unused2[4];
    unsigned char mac[6];
    unsigned char unused3[118];
    unsigned char rank[2];
    unsigned char unused4[6];
    unsigned char stat[4];
    unsigned char counters[4][4];
    unsigned char unused5[16];
};
static_assert(sizeof(qca_sta_entry) == 184); // the shortest entry
static_assert(offsetof(qca_sta_entry, rssi) == 11);
static_assert(offsetof(qca_sta_entry, mac) == 16);
static_assert(offsetof(qca_sta_entry, rank) == 140);
static_assert(offsetof(qca_sta_entry, stat) == 148);
static_assert(offsetof(qca_sta_entry, counters) == 152);

constexpr size_t kQcaListSize = 24576;

void take_entry(const qca_sta_entry &e, unsigned char index, vesk_sta_record &rec)
{
    rec.index = index;
    memcpy(rec.mac, e.mac, sizeof rec.mac);
    rec.rssi = e.rssi;
    rec.percent = static_cast<unsigned char>(get_qca_percent(e.rssi));
    rec.rank_value = vesk::load_le16(e.rank);
    rec.stat_value = vesk::load_le32(e.stat);
    for (size_t i = 0; i < 4; i++)
        rec.counters[i] = vesk::load_le32(e.counters[i]);
}

// The number in an "ath<n>" name, the SSID interface of its stations.
unsigned char qca_index(const char *ifname)
{
    unsigned int n = 0;
    return sscanf(ifname, "ath%u", &n) == 1 ? static_cast<unsigned char>(n) : 0;
}

// A Ralink request whose driver fills table, 2048 bytes.
int ralink_table(const char *func, const char *ifname, uint16_t sub_command, void *table, const char *what)
{
    if (!table) {
        T_PRINTF("%s: input error!\n", func);
        return -1;
    }
    auto bytes = std::span(static_cast<std::byte *>(table), sizeof(vesk_sta_table));
    if (!vesk::wlan::driver_request(ifname, vesk::wlan::kRalinkPrivate, sub_command, bytes)) {
        T_PRINTF("ioctl error, %s:%s\n", what, strerror(errno));
        return -1;
    }
    return 1;
}

} // namespace

extern "C" {

int get_qca_percent(char rssi)
{
    const int x = static_cast<signed char>(rssi);
    int level;
    if (x >= 42)
        level = 94;
    else if (x >= 30)
        level = (9 * x - 264) / 12 + 85;
    else if (x >= 5)
        level = (80 * x - 388) / 25 + 5;
    else if (x >= 1)
        level = x;
    else
        level = 10;
    return level * 100 / 94;
}

int _vesk_wlan_get_ralink_sta_info(const char *ifname, vesk_sta_table *table, int)
{
    int rc = ralink_table(__func__, ifname, vesk::wlan::kRalinkStations, table, "get_sta_info");
    // A table holds 51 records whatever count the driver wrote.
    if (rc == 1)
        table->count = std::min<unsigned char>(table->count, VESK_STA_RECORDS);
    return rc;
}

int vesk_wlan_get_ralink_sta_info(const char *ifname, vesk_sta_table *table)
{
    return _vesk_wlan_get_ralink_sta_info(ifname, table, 0);
}

int vesk_wlan_get_ralink_sta_info_need_clear(const char *ifname, vesk_sta_table *table)
{
    return _vesk_wlan_get_ralink_sta_info(ifname, table, 1);
}

int vesk_wlan_get_wds_info(const char *ifname, void *table)
{
    return ralink_table(__func__, ifname, vesk::wlan::kRalinkWdsPeers, table, "get_wds_peer_info");
}

int _vesk_wlan_get_qca_sta_info(const char *ifname, vesk_sta_table *table, int need_clear)
{
    if (!ifname || !table) {
        T_PRINTF("%s: input error!\n", __func__);
        return -1;
    }
    vesk::unique_heap list(calloc(1, kQcaListSize));
    if (!list) {
        T_PRINTF("%s: Unable to allocate memory for station list\n", __func__);
        return -1;
    }
    const std::span entries(static_cast<std::byte *>(list.get()), kQcaListSize);
    uint16_t answered = 0;
    if (!vesk::wlan::driver_request(ifname, vesk::wlan::kQcaStations, static_cast<uint16_t>(need_clear), entries,
                                    &answered)) {
        T_PRINTF("ioctl error, get_sta_info:%s\n", strerror(errno));
        return -1;
    }
    size_t left = std::min<size_t>(answered, kQcaListSize);
    if (left < sizeof(qca_sta_entry))
        return -1;
    const unsigned char index = qca_index(ifname);
    size_t pos = 0;
    int taken = 0;
    // The list may hold more than a table: the walk stops at the table's end,
    // and at an entry whose length could not move it on.
    while (left >= sizeof(qca_sta_entry) && taken < VESK_STA_RECORDS) {
        qca_sta_entry e;
        memcpy(&e, entries.data() + pos, sizeof e);
        take_entry(e, index, table->records[taken++]);
        const size_t len = vesk::load_le16(e.len);
        if (len == 0 || len > left)
            break;
        left -= len;
        pos += len;
    }
    table->count = static_cast<unsigned char>(std::min(table->count + taken, VESK_STA_RECORDS));
    return 1;
}

int vesk_wlan_get_qca_sta_info(const char *ifname, vesk_sta_table *table)
{
    return _vesk_wlan_get_qca_sta_info(ifname, table, 0);
}

int vesk_wlan_get_qca_sta_info_need_clear(const char *ifname, vesk_sta_table *table)
{
    return _vesk_wlan_get_qca_sta_info(ifname, table, 1);
}

int vesk_wlan_get_qca_client_num(const char *ifname)
{
    vesk_sta_table table = {};
    vesk_wlan_get_qca_sta_info(ifname, &table);
    return table.count;
}

int vesk_wlan_get_ralink_client_num(const char *ifname) { return vesk_get_rt_wifi_stat(ifname, "ClinetsNum"); }

int vesk_get_radio_idx_by_mac(const unsigned char *mac)
{
    if (!mac) {
        T_PRINTF("%s: input error!\n", __func__);
        return -1;
    }
    struct radio_hit {
        bool found;
        int32_t rank;
    };
    auto look = [mac](const char *ifname) {
        vesk_sta_table table = {};
        vesk_wlan_get_sta_info(ifname, &table);
        for (const vesk_sta_record &rec : std::span(table.records, std::min<size_t>(table.count, VESK_STA_RECORDS)))
            if (memcmp(rec.mac, mac, sizeof rec.mac) == 0)
                return radio_hit{true, rec.rank_value};
        return radio_hit{false, 0};
    };
    const radio_hit ra = look("ra0"), ath = look("ath0");
    if (!ra.found)
        return ath.found ? 1 : -1;
    return ath.found && ath.rank < ra.rank ? 1 : 0;
}

} // extern "C"
