// Wi-Fi Protected Setup: the Ralink driver's WPS status and profile, PINs
// with their check digit, and random hexadecimal keys.
#include <errno.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>
#include <unistd.h>

#include <array>
#include <span>

#include "core/command.hpp"
#include "core/random.hpp"
#include "sysapi.h"
#include "vesk_mac.h"
#include "vesk_wlan.h"
#include "wlan/driver.hpp"

namespace {

constexpr size_t kWpsProfileSize = 968;
constexpr unsigned int kPinBodies = 10000000; // seven digits

// Stands in for the LAN MAC when the board tool cannot tell it.
constexpr std::array<unsigned char, 6> kFallbackMac = {0x00, 0x1C, 0x2D, 0x3E, 0x4F, 0x50};

unsigned int pin_of(unsigned int body)
{
    return body * 10 + static_cast<unsigned int>(vesk_compute_pin_checksum(body));
}

// Each draw seeds anew: from the kernel's pool, or else from the clock and
// the process number.
void seed()
{
    if (!vesk::seed_from_pool())
        srand(static_cast<unsigned int>(time(nullptr) + getpid()));
}

} // namespace

extern "C" {

int vesk_get_wps_status(const char *ifname)
{
    uint32_t status = 0;
    if (!vesk::wlan::driver_request(ifname, vesk::wlan::kRalinkPrivate, vesk::wlan::kRalinkWpsStatus,
                                    vesk::wlan::bytes_of(status))) {
        T_PRINTF("[%s] ioctl error\n", __func__);
        return 0;
    }
    return static_cast<int>(status);
}

int vesk_get_wps_profile(const char *ifname, void *profile)
{
    if (!profile) {
        T_PRINTF("%s: input error!\n", __func__);
        return -1;
    }
    if (!vesk::wlan::driver_request(ifname, vesk::wlan::kRalinkPrivate, vesk::wlan::kRalinkWpsProfile,
                                    std::span(static_cast<std::byte *>(profile), kWpsProfileSize))) {
        T_PRINTF("ioctl error, getWscProfile:%s\n", strerror(errno));
        return -1;
    }
    return 0;
}

int vesk_compute_pin_checksum(unsigned int body)
{
    // From the last digit leftwards, the weights are 3 and 1 in turn.
    unsigned int sum = 0;
    for (int i = 0; i < 7; i++, body /= 10)
        sum += (i % 2 == 0 ? 3 : 1) * (body % 10);
    return static_cast<int>((10 - sum % 10) % 10);
}

unsigned int veesk_wlan_gen_wps_pincode_by_mac(const unsigned char *mac)
{
    if (!mac) {
        T_PRINTF("%s: input error!\n", __func__);
        return 0;
    }
    const unsigned int v = static_cast<unsigned int>(mac[3]) << 16 | mac[4] << 8 | mac[5];
    return pin_of(v % kPinBodies);
}

unsigned int vesk_wlan_gen_pincode_by_lan_mac(void)
{
    std::array<unsigned char, 6> mac = kFallbackMac;
    char out[80] = {};
    // A tool that ran and failed tells no MAC either: keep the fallback.
    if (vesk::cmd::capture(__func__, std::span(out), "board_config get ethaddr") > 0)
        vesk_mac_str_2_bin(mac.data(), out);
    return veesk_wlan_gen_wps_pincode_by_mac(mac.data());
}

unsigned int vesk_wlan_gen_pincode_by_random_num(void)
{
    seed();
    return pin_of(static_cast<unsigned int>(rand()) % 9000000 + 1000000);
}

int vesk_gen_random_hex_key(char *key, int len)
{
    if (!key && len > 0) {
        T_PRINTF("%s: input error!\n", __func__);
        return 1;
    }
    seed();
    for (int i = 0; i < len; i++) {
        int c;
        do
            c = rand() % 23 + '0';
        while (c > '9' && c < 'A');
        key[i] = static_cast<char>(c);
    }
    return 1;
}

} // extern "C"
