// The security words of the QCA survey. The driver reports only whether
// encryption is on, and the raw beacon elements; the WPA and RSN elements
// are read here and reduced to words such as "WPA1PSKWPA2PSK/TKIPAES".
#include <stdio.h>
#include <string.h>

#include <array>

#include "vesk_wlan.h"
#include "wlan/qca_security.hpp"

namespace {

static_assert(sizeof(vesk_cipher_set) == 12);
static_assert(offsetof(vesk_wlan_security, auth_mode_aux) == 4 && offsetof(vesk_wlan_security, cipher) == 12);
static_assert(offsetof(vesk_wlan_security, wpa) == 16 && offsetof(vesk_wlan_security, rsn) == 28);

// Cipher values.
enum : uint32_t { kWep = 0, kNone = 1, kTkip = 4, kCcmp = 6, kTkipCcmp = 8, kWep40Group = 10, kWep104Group = 11 };
// Authentication values.
enum : uint32_t { kOpen = 0, kWpa = 3, kWpaPsk = 4, kWpaNone = 5, kWpa2 = 6, kWpa2Psk = 7, kWpaWpa2 = 8, kWpaWpa2Psk = 9, kUnknownAuth = 10 };

constexpr std::array<const char *, 12> kCipherWords = {"WEP", "NONE", "UNKNOW", "UNKNOW", "TKIP", "UNKNOW",
                                                        "AES", "UNKNOW", "TKIPAES", "UNKNOW", "UNKNOW", "UNKNOW"};
constexpr std::array<const char *, 10> kAuthWords = {"OPEN",  "SHARED", "AUTOWEP", "WPA",      "WPAPSK",
                                                      "WPANONE", "WPA2", "WPA2PSK", "WPA1WPA2", "WPA1PSKWPA2PSK"};
constexpr char kUnknownWord[] = "UNKNOW";
constexpr size_t kSecurityText = 23; // "WPA1PSKWPA2PSK/TKIPAES" and its terminator

constexpr uint8_t kRsnId = 0x30;
constexpr uint8_t kVendorId = 0xDD;
constexpr uint8_t kWpaType = 1;
using oui = std::array<uint8_t, 3>;
constexpr oui kWpaOui = {0x00, 0x50, 0xF2};
constexpr oui kRsnOui = {0x00, 0x0F, 0xAC};

bool has_oui(const uint8_t *p, const oui &o) { return memcmp(p, o.data(), o.size()) == 0; }
unsigned le16(const uint8_t *p) { return p[0] | unsigned(p[1]) << 8; }

uint32_t group_value(uint8_t suite, uint32_t keep)
{
    switch (suite) {
    case 1: return kWep40Group;
    case 2: return kTkip;
    case 4: return kCcmp;
    case 5: return kWep104Group;
    default: return keep;
    }
}

uint32_t pairwise_value(uint8_t suite)
{
    switch (suite) {
    case 1: case 5: return kWep;
    case 2: return kTkip;
    case 4: return kCcmp;
    default: return kNone;
    }
}

// The authentication value of a suite; kOpen for one the WPA element passes over.
uint32_t auth_value(bool rsn, uint8_t suite)
{
    if (!rsn)
        return suite == 1 ? kWpa : suite == 2 ? kWpaPsk : kOpen;
    return suite <= 2 ? kWpaNone + suite : kUnknownAuth;
}

// One WPA or RSN element, e its bytes from the id on, cut to the payload.
void parse_element(std::span<const uint8_t> e, vesk_wlan_security &sec)
{
    const bool rsn = e[0] == kRsnId;
    const size_t elen = e.size();
    if (rsn ? elen < 4 : (elen < 8 || !has_oui(&e[2], kWpaOui) || e[5] != kWpaType))
        return;
    const oui &o = rsn ? kRsnOui : kWpaOui;
    vesk_cipher_set &set = rsn ? sec.rsn : sec.wpa;
    const size_t base = rsn ? 2 : 6; // the version's two bytes, not read
    if (base + 5 >= elen)
        return;
    if (has_oui(&e[base + 2], o))
        set.group_cipher = group_value(e[base + 5], set.group_cipher);
    if (base + 7 >= elen)
        return;
    const size_t n = le16(&e[base + 6]), after = base + 8 + 4 * n;
    if (elen < after)
        return;
    for (size_t i = base + 8; i < after; i += 4) {
        if (!has_oui(&e[i], o))
            continue;
        uint32_t c = pairwise_value(e[i + 3]);
        if (set.pair_cipher < c) {
            set.pair_cipher_aux = set.pair_cipher;
            set.pair_cipher = c;
        } else {
            set.pair_cipher_aux = c;
        }
    }
    if (after + 1 >= elen)
        return;
    const size_t m = le16(&e[after]);
    if (elen < after + 2 + 4 * m)
        return;
    for (size_t i = after + 2; i < after + 2 + 4 * m; i += 4) {
        uint32_t a = has_oui(&e[i], o) ? auth_value(rsn, e[i + 3]) : kOpen;
        if (a == kOpen)
            continue;
        (sec.auth_mode == 0 ? sec.auth_mode : sec.auth_mode_aux) = a;
    }
    const bool adhoc = sec.infrastructure == 0;
    if (!rsn) {
        if (adhoc) {
            sec.auth_mode = sec.auth_mode_aux = kWpaNone;
            sec.cipher = sec.wpa.group_cipher;
            if (sec.wpa.pair_cipher_aux == kNone)
                sec.wpa.pair_cipher_aux = sec.wpa.group_cipher;
        } else {
            sec.cipher = sec.wpa.pair_cipher;
        }
        return;
    }
    if (adhoc) {
        sec.wpa.pair_cipher_aux = sec.rsn.pair_cipher_aux;
        sec.wpa.group_cipher = sec.rsn.group_cipher;
        if (sec.rsn.pair_cipher_aux == kNone)
            sec.wpa.pair_cipher_aux = sec.rsn.group_cipher;
    }
    sec.cipher = sec.rsn.pair_cipher;
}

bool is_one_of(uint32_t v, uint32_t a, uint32_t b) { return v == a || v == b; }

} // namespace

namespace vesk::wlan {

void parse_security_ies(std::span<const uint8_t> ie, vesk_wlan_security &sec)
{
    for (size_t off = 0; off + 1 < ie.size(); off += ie[off + 1] + 2) {
        if (ie[off] != kRsnId && ie[off] != kVendorId)
            continue;
        parse_element(ie.subspan(off, std::min<size_t>(ie[off + 1] + 2, ie.size() - off)), sec);
    }
}

} // namespace vesk::wlan

extern "C" {

void init_security(vesk_wlan_security *sec)
{
    sec->auth_mode = sec->auth_mode_aux = 0;
    sec->cipher = sec->privacy ? kWep : kNone;
    sec->wpa = sec->rsn = {kNone, kNone, kNone};
}

const char *ieee80211_get_enc_type(unsigned char value)
{
    return value < kCipherWords.size() ? kCipherWords[value] : kUnknownWord;
}

const char *ieee80211_get_auth_mode(unsigned char value)
{
    return value < kAuthWords.size() ? kAuthWords[value] : kUnknownWord;
}

void get_security_str(char *dst, const vesk_wlan_security *sec)
{
    const uint32_t auth = sec->auth_mode, aux = sec->auth_mode_aux;
    const uint32_t w1 = sec->wpa.pair_cipher, w2 = sec->wpa.pair_cipher_aux;
    const uint32_t r1 = sec->rsn.pair_cipher, r2 = sec->rsn.pair_cipher_aux;
    const uint32_t mixed = (w1 == r1 && w2 == r2 && w2 == kNone) ? w1 : kTkipCcmp;
    uint32_t shown = auth, cipher;
    if (auth < kWpa || auth > kWpaWpa2Psk) {
        if (sec->cipher == kNone || sec->cipher == kWep) {
            snprintf(dst, kSecurityText, "%s", ieee80211_get_enc_type(uint8_t(sec->cipher)));
            return;
        }
        cipher = sec->cipher;
    } else if (auth == kWpaNone) {
        cipher = w1;
    } else if (aux == 0) {
        if (is_one_of(auth, kWpa, kWpaPsk))
            cipher = w2 == kNone ? w1 : kTkipCcmp;
        else if (is_one_of(auth, kWpa2, kWpa2Psk))
            cipher = r2 == kNone ? r1 : kTkipCcmp;
        else
            cipher = kNone;
    } else if (is_one_of(auth, kWpaPsk, kWpa2Psk)) {
        shown = is_one_of(aux, kWpaPsk, kWpa2Psk) ? kWpaWpa2Psk : auth;
        cipher = mixed;
    } else if (is_one_of(auth, kWpa, kWpa2)) {
        shown = is_one_of(aux, kWpa, kWpa2) ? kWpaWpa2 : auth;
        cipher = mixed;
    } else {
        shown = kOpen;
        cipher = kNone;
    }
    snprintf(dst, kSecurityText, "%s/%s", ieee80211_get_auth_mode(uint8_t(shown)), ieee80211_get_enc_type(uint8_t(cipher)));
}

} // extern "C"
