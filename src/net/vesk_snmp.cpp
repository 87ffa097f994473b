// SNMP interface numbers: one row per interface name, one column per board
// layout.
#include "vesk_snmp.h"

#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <array>

#include "sysapi.h"
#include "vesk_wlan.h"

namespace {

constexpr uint8_t kNoIndex = 255;

// A run of rows "<prefix><first>", "<prefix><first + 1>", ...; each column
// counts up by one a row from its first number, a column of kNoIndex stays.
struct run {
    const char *prefix;
    int first;
    int count;
    uint8_t dual, mode3, mode1;
};
constexpr int kNoNumber = -1; // the name is the prefix alone

constexpr run kRuns[] = {
    {"eth", 2, 1, 1, 1, 1},        {"ra", 0, 1, 3, 2, 2},          {"ra", 1, 15, 19, 3, 3},
    {"wds", 0, 4, 38, 18, 18},     {"ath", 0, 1, 2, 2, 22},        {"ath", 1, 1, 4, 3, 23},
    {"ath", 2, 14, 5, 4, kNoIndex}, {"wds", 16, 4, 34, 18, kNoIndex}, {"br", 0, 1, 42, 22, kNoIndex},
    {"", kNoNumber, 1, 43, 23, kNoIndex},
};

struct snmp_row {
    char ifname[8];
    uint8_t index_dual;
    uint8_t index_mode3;
    uint8_t index_mode1;
};
static_assert(sizeof(snmp_row) == 11);

constexpr int kRows = [] {
    int n = 0;
    for (const run &r : kRuns)
        n += r.count;
    return n;
}();
static_assert(kRows == 43);

constexpr uint8_t step(uint8_t first, int i) { return first == kNoIndex ? kNoIndex : static_cast<uint8_t>(first + i); }

// The numbers are fixed; the names are written on first use.
constinit std::array<snmp_row, kRows> snmp_ifname_table = [] {
    std::array<snmp_row, kRows> rows{};
    size_t at = 0;
    for (const run &r : kRuns)
        for (int i = 0; i < r.count; i++, at++)
            rows[at] = {{}, step(r.dual, i), step(r.mode3, i), step(r.mode1, i)};
    return rows;
}();

bool names_filled;

} // namespace

extern "C" {

void vesk_snmp_init_ifname(void)
{
    size_t at = 0;
    for (const run &r : kRuns)
        for (int i = 0; i < r.count; i++, at++)
            if (r.first != kNoNumber)
                snprintf(snmp_ifname_table[at].ifname, sizeof snmp_ifname_table[at].ifname, "%s%d", r.prefix,
                         r.first + i);
}

int vesk_snmp_get_index_by_ifname(int radio, const char *ifname)
{
    if (!names_filled) {
        names_filled = true;
        vesk_snmp_init_ifname();
    }
    if (!ifname)
        return 0;
    for (const snmp_row &row : snmp_ifname_table) {
        if (strcmp(row.ifname, ifname) != 0)
            continue;
        switch (vesk_wlan_get_board_dual_mode(radio)) {
        case 4: return row.index_dual;
        case 3: return row.index_mode3;
        case 1: return row.index_mode1;
        default: T_PRINTF("Index for SNMP may be wrong!!\n"); return 0;
        }
    }
    return 0;
}

} // extern "C"
