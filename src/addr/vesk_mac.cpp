// MAC addresses between six bytes and text, and tests on them.
#include "vesk_mac.h"

#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include "sysapi.h"
#include "vesk_string.h"

namespace {

constexpr size_t kMacLen = 6;
constexpr size_t kPlainDigits = 12;
constexpr size_t kCanonicalText = 18; // "XX:XX:XX:XX:XX:XX" and its terminator

// A text argument is copied here before its colons go; 79 characters fit.
struct work_area {
    char text[80];
};

// Copies text into area with its colons removed. False when text does not
// fit: such a text is no address in any form.
bool copy_without_colons(work_area &area, const char *text)
{
    size_t len = strnlen(text, sizeof area.text);
    if (len >= sizeof area.text)
        return false;
    memcpy(area.text, text, len + 1);
    vesk_string_remove_char(area.text, ':');
    return true;
}

// The address as one 48-bit number, byte 0 the most significant.
uint64_t range_value(const unsigned char *mac)
{
    uint64_t v = 0;
    for (size_t i = 0; i < kMacLen; i++)
        v = (v << 8) | mac[i];
    return v;
}

} // namespace

extern "C" {

int vesk_mac_bin_2_str(char *dst_str, const unsigned char *mac_bin)
{
    if (!dst_str) {
        T_PRINTF("Error! %s dst_str is null!\n", __func__);
        return 0;
    }
    return snprintf(dst_str, kCanonicalText, "%02X:%02X:%02X:%02X:%02X:%02X", mac_bin[0], mac_bin[1], mac_bin[2],
                    mac_bin[3], mac_bin[4], mac_bin[5]);
}

int vesk_mac_str_2_bin(unsigned char *mac_bin, const char *mac_str)
{
    if (!mac_str) {
        T_PRINTF("Error! %s input is NULL!\n", __func__);
        return 0;
    }
    memset(mac_bin, 0, kMacLen);
    work_area area;
    if (!copy_without_colons(area, mac_str))
        return 0;
    // Two digits a field in running order, wherever the colons stood.
    unsigned int field[kMacLen];
    if (sscanf(area.text, "%02X%02X%02X%02X%02X%02X", &field[0], &field[1], &field[2], &field[3], &field[4],
               &field[5]) != static_cast<int>(kMacLen))
        return 0;
    for (size_t i = 0; i < kMacLen; i++)
        mac_bin[i] = static_cast<unsigned char>(field[i]);
    return 1;
}

int vesk_mac_add_colon(char *macstr)
{
    if (strnlen(macstr, kPlainDigits + 1) != kPlainDigits) {
        T_PRINTF("Error! %s, macstr len is invalied\n", __func__);
        return 0;
    }
    // From the back, so that no pair is overwritten before it moves.
    macstr[kCanonicalText - 1] = '\0';
    for (int pair = kMacLen - 1; pair >= 0; pair--) {
        macstr[pair * 3 + 1] = macstr[pair * 2 + 1];
        macstr[pair * 3] = macstr[pair * 2];
        if (pair)
            macstr[pair * 3 - 1] = ':';
    }
    return 1;
}

int vesk_mac_is_valid_str(const char *mac_str)
{
    if (!mac_str) {
        T_PRINTF("%s: input is NULL!\n", __func__);
        return 0;
    }
    work_area area;
    if (!copy_without_colons(area, mac_str) || strlen(area.text) != kPlainDigits) {
        T_PRINTF("%s: mac_str[%s] len error!\n", __func__, mac_str);
        return 0;
    }
    for (size_t i = 0; i < kPlainDigits; i++) {
        if (static_cast<unsigned char>(area.text[i]) >= 0x80)
            return 0;
    }
    return 1;
}

int vesk_mac_bin_is_equal(const unsigned char *mac1, const unsigned char *mac2)
{
    if (!mac1 || !mac2) {
        T_PRINTF("%s: input error!\n", __func__);
        return 0;
    }
    for (size_t i = 0; i < kMacLen; i++) {
        if (mac1[i] != mac2[i])
            return 0;
    }
    return 1;
}

int vesk_mac_is_in_range_str(const char *bound1, const char *bound2, const char *mac_str)
{
    const char *texts[] = {bound1, bound2, mac_str};
    uint64_t value[3];
    for (const char *text : texts) {
        if (!vesk_mac_is_valid_str(text)) {
            T_PRINTF("%s: input is incorrect!\n", __func__);
            return 0;
        }
    }
    for (size_t i = 0; i < 3; i++) {
        // A text that passed the check but is not hexadecimal stays all zero.
        unsigned char mac[kMacLen];
        vesk_mac_str_2_bin(mac, texts[i]);
        value[i] = range_value(mac);
    }
    uint64_t low = value[0] < value[1] ? value[0] : value[1];
    uint64_t high = value[0] < value[1] ? value[1] : value[0];
    return (low <= value[2] && value[2] <= high) ? 1 : 0;
}

} // extern "C"
