// Vendor names of MAC addresses from the IEEE OUI table built into the
// library (vesk_oui_list, generated from the registry listing).
#include <stddef.h>
#include <string.h>

#include "core/bits.hpp"
#include "vesk_mac.h"
#include "vesk_oui_list.hpp"

namespace {

static_assert(sizeof(vesk_oui_entry) == 104);
static_assert(offsetof(vesk_oui_entry, oui) == 0);
static_assert(offsetof(vesk_oui_entry, vendor_name) == 4);

// A bisection over N records reaches every one of records 1..N-1 within
// msb32(N) probes, since 2^msb32(N) > N.
constexpr int kOuiProbes = vesk::msb32(vesk::kOuiRecords);
static_assert(vesk::kOuiRecords >= 2 && (uint64_t{1} << kOuiProbes) > vesk::kOuiRecords);

constexpr unsigned char kLocalBit = 0x02; // locally administered: same vendor

constexpr uint32_t kMaxKey = 0xFFFFFF; // three bytes

// A bisection over the whole table. Both bounds move to mid, never past it,
// and mid > low while they differ: record 0, the sentinel, is never compared.
const char *bisect(uint32_t key)
{
    uint32_t low = 0, high = vesk::kOuiRecords - 1;
    for (int probe = 0; probe < kOuiProbes; probe++) {
        uint32_t mid = low + (high - low + 1) / 2;
        uint32_t oui = vesk_oui_list[mid].oui;
        if (oui < key)
            low = mid;
        else if (oui == key)
            return vesk_oui_list[mid].vendor_name;
        else
            high = mid;
    }
    return nullptr;
}

} // namespace

extern "C" {

const char *vesk_mac_oui_to_vendor_name(vesk_oui_entry oui_entry)
{
    const uint32_t key = oui_entry.oui;
    if (key > kMaxKey)
        return nullptr;
    // The records of the key's 16-bit prefix, then the last of them whose
    // low byte is at most the key's: a branch-free halving over a few bytes.
    const uint8_t low = key & 0xFF;
    const uint32_t first = vesk::kOuiFirst[key >> 8];
    uint32_t len = vesk::kOuiFirst[(key >> 8) + 1] - first;
    if (len == 0)
        return nullptr;
    const uint8_t *at = vesk::kOuiLow + first;
    while (len > 1) {
        const uint32_t half = len / 2;
        at = at[half] <= low ? at + half : at;
        len -= half;
    }
    if (*at != low)
        return nullptr;
    const uint32_t record = static_cast<uint32_t>(at - vesk::kOuiLow);
    // Rows that share a key answer with the row the bisection meets first.
    if (record > first && at[-1] == low)
        return bisect(key);
    return vesk_oui_list[record].vendor_name;
}

const char *vesk_mac_to_vendor_name(const char *mac_str)
{
    if (!mac_str) {
        // The conversion reports the null text and leaves no bytes to key on.
        unsigned char unused[6];
        vesk_mac_str_2_bin(unused, nullptr);
        return nullptr;
    }
    unsigned char mac[6];
    vesk_mac_str_2_bin(mac, mac_str); // a refused text has left six zero bytes
    vesk_oui_entry entry{};
    entry.oui = (uint32_t{static_cast<unsigned char>(mac[0] & ~kLocalBit)} << 16) | (uint32_t{mac[1]} << 8) |
                mac[2];
    return vesk_mac_oui_to_vendor_name(entry);
}

} // extern "C"
