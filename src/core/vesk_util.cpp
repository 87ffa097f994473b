// Escaping user text for web pages and shell command lines, and drawing
// random numbers from the kernel's pool.
#include "core/command.hpp"
#include "vesk_util.h"

#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <time.h>

#include <algorithm>
#include <array>

#include "core/random.hpp"
#include "sysapi.h"
#include "vesk_if.h"

namespace {

constexpr std::array<unsigned char, 16> shell_special_chars = {
    '"', '#', '$', '&', '\'', '(', ')', '*', ';', '<', '>', '\\', '`', '|', '~', ' ',
};

bool needs_escape(unsigned char c, int for_shell)
{
    if (for_shell)
        return std::find(shell_special_chars.begin(), shell_special_chars.end(), c) != shell_special_chars.end();
    return c == '"' || c == '\\';
}

// Bytes as the board's compiler sees a plain char: signed.
uint32_t signed_byte(unsigned char b) { return static_cast<uint32_t>(static_cast<int32_t>(static_cast<int8_t>(b))); }

} // namespace

extern "C" {

void vesk_util_check_string(const char *text, char *out, int for_shell)
{
    if (!out)
        return;
    if (!text) {
        *out = '\0';
        return;
    }
    // The terminator is copied too, so out always ends.
    do {
        if (needs_escape(static_cast<unsigned char>(*text), for_shell))
            *out++ = '\\';
        *out++ = *text;
    } while (*text++);
}

void vesk_util_check_string_on_web(const char *text, char *out) { vesk_util_check_string(text, out, 0); }

void vesk_util_check_string_on_shell_cmd(const char *text, char *out) { vesk_util_check_string(text, out, 1); }

int vesk_util_generate_random_num(void)
{
    return vesk::seed_from_pool() ? rand() : 0;
}

int vesk_util_generate_random_seed(const char *ifname)
{
    unsigned char mac[6] = {};
    const uint32_t now = static_cast<uint32_t>(time(nullptr));
    if (ifname)
        vesk_if_get_hw_addr(ifname, mac);
    // Bytes 2..5 as signed values, first byte highest, in modulo-2^32 sums.
    uint32_t mac_value = signed_byte(mac[2]);
    for (int i = 3; i < 6; i++)
        mac_value = mac_value * 256 + signed_byte(mac[i]);
    T_PRINTF("Mac: %u, rtcTime:%u\n", mac_value, now);
    return vesk::cmd::run(__func__, "echo %u > /dev/urandom", mac_value + now);
}

} // extern "C"
