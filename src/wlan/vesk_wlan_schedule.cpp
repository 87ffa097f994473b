// The radio and SSID schedule: which SSIDs are to be down, kept in the store
// record "wlif_info", and the switch that turns a radio off when all of them
// are down and brings SSIDs and radio back when one is to come up.
#include <stddef.h>
#include <string.h>

#include <bit>

#include "core/byte_order.hpp"
#include "core/command.hpp"
#include "quil.h"
#include "sysapi.h"
#include "vesk_wlan.h"

static_assert(sizeof(vesk_wlif_info) == 34);
static_assert(offsetof(vesk_wlif_info, radio_down) == 0);
static_assert(offsetof(vesk_wlif_info, down_mask) == 2);
static_assert(offsetof(vesk_wlif_info, slot_mask) == 10);
static_assert(offsetof(vesk_wlif_info, slot_mask[1]) == 22);
static_assert(sizeof(vesk_wl_basic) == 11);
static_assert(offsetof(vesk_wl_basic, ssid_count) == 1);
static_assert(sizeof(vesk_wds_basic) == 9);

namespace {

constexpr char kWlifInfo[] = "wlif_info";
constexpr unsigned char kRadios = 2;
constexpr int kSlots = 3;
constexpr int kSlotInForce = 1;
constexpr int kMaxSsids = 32; // bits of a mask
constexpr int kWdsPeers = 4;

// Operation modes of "radio_opmode_%d".
constexpr int kModeAp = 0;
constexpr int kMode3 = 3;
constexpr int kModeWds = 4;

enum onoff_status { kStays = 0, kTurnOff = 1, kStaysOff = 2, kTurnOn = 3 };

struct radio_names {
    const char *main;
    const char *prefix;
};
radio_names names_of(unsigned char radio) { return radio == 0 ? radio_names{"ra0", "ra"} : radio_names{"ath0", "ath"}; }

vesk_wlif_info read_wlif()
{
    vesk_wlif_info info = {};
    quil_get_value(&info, kWlifInfo);
    return info;
}

int write_wlif(const vesk_wlif_info &info) { return quil_set_value(&info, kWlifInfo); }

vesk_wl_basic read_basic(int radio_number)
{
    vesk_wl_basic basic = {};
    quil_get_value(&basic, "wl%dbasic", radio_number);
    return basic;
}

int opmode(int radio_number) { return quil_get_int_value("radio_opmode_%d", radio_number) & 0xFF; }

bool bad_radio(const char *func, unsigned char radio)
{
    if (radio < kRadios)
        return false;
    T_PRINTF("%s: input error!\n", func);
    return true;
}

// Hides and downs the SSIDs the mask names, brings the others up with their
// configured hiding, and then turns the radio on.
void bring_up(const char *func, unsigned char radio, int ssid_count, uint32_t down)
{
    const radio_names n = names_of(radio);
    for (int i = 0; i < ssid_count && i < kMaxSsids; i++) {
        if (down >> i & 1) {
            vesk::cmd::run(func, "iwpriv %s%d set HideSSID=1", n.prefix, i);
            vesk::cmd::run(func, "ifconfig %s%d down", n.prefix, i);
        } else {
            vesk::cmd::run(func, "ifconfig %s%d up", n.prefix, i);
            const int hide = quil_get_int_value("wl%d%dhidessid", radio + 1, i + 1);
            vesk::cmd::run(func, "iwpriv %s%d set HideSSID=%d", n.prefix, i, hide);
        }
    }
    vesk::cmd::run(func, "iwpriv %s set RadioOn=1", n.main);
}

} // namespace

extern "C" {

int vesk_wlan_get_wds_num(unsigned char radio)
{
    int peers = 0;
    for (int peer = 1; peer <= kWdsPeers; peer++) {
        vesk_wds_basic wds = {};
        quil_get_value(&wds, "wl%dwds_basic_%d", radio, peer);
        peers += wds.enable != 0;
    }
    return peers;
}

unsigned int vesk_find_SSID_will_be_down(unsigned char radio, int slot, unsigned int ssid_mask)
{
    if (bad_radio(__func__, radio))
        return 0;
    if (slot < 0 || slot >= kSlots) {
        T_PRINTF("%s: input error!\n", __func__);
        return 0;
    }
    vesk_wlif_info info = read_wlif();
    vesk::store_le32(info.slot_mask[radio][slot], ssid_mask);
    const bool on = quil_get_int_value("scheduleS_en") || quil_get_int_value("scheduleS_5g_en");
    const uint32_t in_force = on ? vesk::load_le32(info.slot_mask[radio][kSlotInForce]) : 0;
    vesk::store_le32(info.down_mask[radio], in_force);
    write_wlif(info);
    return in_force;
}

int reset_SSID_onoff_status(unsigned char radio)
{
    if (bad_radio(__func__, radio))
        return -1;
    vesk_wlif_info info = read_wlif();
    info.radio_down[radio] = 0;
    memset(info.down_mask[radio], 0, sizeof info.down_mask[radio]);
    memset(info.slot_mask[radio], 0, sizeof info.slot_mask[radio]);
    return write_wlif(info);
}

int vesk_SSID_get_onoff_status(unsigned char radio)
{
    if (bad_radio(__func__, radio))
        return kStays;
    int mode = opmode(radio + 1);
    if (mode == kModeWds)
        mode = vesk_wlan_get_wds_num(static_cast<unsigned char>(radio + 1));
    if (mode != kModeAp)
        return kStays;
    const vesk_wlif_info info = read_wlif();
    const int n = read_basic(radio + 1).ssid_count;
    const uint32_t counted = n >= kMaxSsids ? ~0u : (1u << n) - 1;
    const int down = std::popcount(vesk::load_le32(info.down_mask[radio]) & counted);
    switch (info.radio_down[radio]) {
    case 0: return down == n ? kTurnOff : kStays;
    case 1: return down == n ? kStaysOff : kTurnOn;
    default: return kStays;
    }
}

int vesk_check_Radio_onoff(unsigned char radio, int ssid_count)
{
    const int status = vesk_SSID_get_onoff_status(radio);
    if (status == kStays)
        return 0;
    vesk_wlif_info info = read_wlif();
    if (status == kTurnOff) {
        vesk::cmd::run(__func__, "iwpriv %s set RadioOn=0", names_of(radio).main);
        info.radio_down[radio] = 1;
        write_wlif(info);
    } else if (status == kTurnOn) {
        bring_up(__func__, radio, ssid_count, vesk::load_le32(info.down_mask[radio]));
        info.radio_down[radio] = 0;
        write_wlif(info);
    }
    return 1;
}

int vesk_wlan_handle_ap_wds_mode(unsigned char radio)
{
    const int number = radio == 0 ? 1 : radio;
    const vesk_wl_basic basic = read_basic(number);
    const int mode = opmode(number);
    if (!basic.enable)
        return 0;
    switch (mode) {
    case kModeAp: return 1;
    case kMode3: return 2;
    case kModeWds: return 3;
    default: return 0;
    }
}

} // extern "C"
