// Look-ups in the kernel's ARP table and the gratuitous ARP of the LAN bridge.
#include "core/command.hpp"
#include "core/placeholders.hpp"
#include "vesk_arp.h"

#include <arpa/inet.h>
#include <ctype.h>
#include <linux/if_ether.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>
#include <strings.h>
#include <sys/socket.h>

#include <cstdint>
#include <string_view>

#include "core/ifreq.hpp"
#include "core/line_reader.hpp"
#include "core/words.hpp"
#include "sysapi.h"
#include "vesk_br.h"
#include "vesk_if.h"
#include "vesk_mac.h"
#include "vesk_string.h"

namespace {

constexpr char kArpTable[] = "/proc/net/arp";
constexpr size_t kArpLine = 128;
constexpr size_t kField = 32;
constexpr size_t kDevice = 16;
constexpr size_t kMacDigits = 12;

char arp_ifname_buffer[kDevice];
char arp_macstr_buffer[kField];
char arp_ip_buffer[kField];

// One row of the table; Mask and Device read "-" when the row ends early.
struct arp_row {
    char ip[kField];
    char hw[kField];
    char mask[kField];
    char device[kDevice];
};

// "0x" and at least one hexadecimal digit, as the HW type and Flags columns.
bool is_hex_word(std::string_view word)
{
    return word.size() > 2 && word.compare(0, 2, "0x") == 0 && isxdigit(static_cast<unsigned char>(word[2]));
}

// Splits a row into its columns. Mask and Device stay "-" when the row ends
// early; a field longer than its column is cut, and its rest does not spill
// into the next column.
arp_row parse_row(std::string_view line)
{
    arp_row row{};
    vesk::put_text(row.mask, "-");
    vesk::put_text(row.device, "-");
    vesk::put_text(row.ip, vesk::next_word(line));
    if (!is_hex_word(vesk::next_word(line)) || !is_hex_word(vesk::next_word(line)))
        return row;
    vesk::put_text(row.hw, vesk::next_word(line));
    std::string_view mask = vesk::next_word(line);
    if (!mask.empty())
        vesk::put_text(row.mask, mask);
    std::string_view device = vesk::next_word(line);
    if (!device.empty())
        vesk::put_text(row.device, device);
    return row;
}

// Walks the rows of the ARP table, header skipped, until visit returns true.
// False when the table cannot be read or no row was taken.
template <typename Visit>
bool each_arp_row(Visit visit)
{
    vesk::line_reader<kArpLine> table(kArpTable);
    if (!table || !table.skip(1))
        return false;
    while (const char *line = table.next()) {
        arp_row row = parse_row(line);
        if (row.ip[0] && visit(row))
            return true;
    }
    return false;
}

// The ARP reply that arpping broadcasts.
struct arp_frame {
    uint8_t eth_dst[6];
    uint8_t eth_src[6];
    uint8_t eth_type[2];
    uint8_t hw_type[2];
    uint8_t proto_type[2];
    uint8_t hw_len;
    uint8_t proto_len;
    uint8_t operation[2];
    uint8_t sender_mac[6];
    uint8_t sender_ip[4];
    uint8_t target_mac[6];
    uint8_t target_ip[4];
    uint8_t fill[18];
};
static_assert(sizeof(arp_frame) == 60);
static_assert(offsetof(arp_frame, eth_type) == 12);
static_assert(offsetof(arp_frame, hw_type) == 14);
static_assert(offsetof(arp_frame, operation) == 20);
static_assert(offsetof(arp_frame, sender_mac) == 22);
static_assert(offsetof(arp_frame, sender_ip) == 28);
static_assert(offsetof(arp_frame, target_mac) == 32);
static_assert(offsetof(arp_frame, target_ip) == 38);
static_assert(offsetof(arp_frame, fill) == 42);
// The send address: a bare sockaddr whose 14 data bytes carry the name.
static_assert(sizeof(sockaddr) == 16 && sizeof(sockaddr::sa_data) == 14);

} // namespace

extern "C" {

char *vesk_arp_get_ifname_by_ip(const char *ip)
{
    if (!ip)
        return nullptr;
    bool found = each_arp_row([&](const arp_row &row) {
        if (strcmp(row.ip, ip) != 0)
            return false;
        if (strstr(row.device, "br")) {
            // Behind a bridge: the port the neighbour's MAC was learnt on.
            unsigned char mac[6];
            vesk_mac_str_2_bin(mac, row.hw);
            snprintf(arp_ifname_buffer, sizeof arp_ifname_buffer, "%s", brtable_find_if_by_mac(mac, row.device));
        } else {
            snprintf(arp_ifname_buffer, sizeof arp_ifname_buffer, "%s", row.device);
        }
        return true;
    });
    return found ? arp_ifname_buffer : nullptr;
}

const char *vesk_arp_get_macstr_by_ip(const char *ip, int do_ping)
{
    if (!ip)
        return nullptr;
    in_addr addr;
    if (do_ping && inet_pton(AF_INET, ip, &addr) == 1) // only an address is worth a ping
        vesk::cmd::run(__func__, "ping %s -c 1 2>&1 >/dev/null", ip);
    bool found = each_arp_row([&](const arp_row &row) {
        if (strcmp(row.ip, ip) != 0)
            return false;
        snprintf(arp_macstr_buffer, sizeof arp_macstr_buffer, "%s", row.hw);
        vesk_string_remove_char(arp_macstr_buffer, ':');
        return true;
    });
    return found ? arp_macstr_buffer : vesk::kNoMac;
}

const char *vesk_arp_get_ip_by_macstr(const char *macstr)
{
    if (!macstr)
        return nullptr;
    if (strnlen(macstr, kMacDigits) < kMacDigits)
        return vesk::kNoAddress;
    // "XX:XX:XX:XX:XX:XX" from the first 12 characters.
    char key[18];
    for (size_t i = 0; i < kMacDigits; i++) {
        char c = macstr[i];
        key[i / 2 * 3 + i % 2] = (c >= 'a' && c <= 'z') ? static_cast<char>(c - 32) : c;
    }
    for (size_t i = 2; i < sizeof key - 1; i += 3)
        key[i] = ':';
    key[sizeof key - 1] = '\0';
    bool found = each_arp_row([&](const arp_row &row) {
        T_PRINTF("[%s] [%s]\n", row.hw, key);
        // Linux prints the column in lower case, other kernels in upper.
        if (strcasecmp(row.hw, key) != 0)
            return false;
        snprintf(arp_ip_buffer, sizeof arp_ip_buffer, "%s", row.ip);
        return true;
    });
    return found ? arp_ip_buffer : vesk::kNoAddress;
}

int arpping(unsigned int target_ip, unsigned int sender_ip, const unsigned char *sender_mac, const char *ifname)
{
    sockaddr addr{};
    if (!sender_mac || !ifname) {
        T_PRINTF("%s: input is NULL!\n", __func__);
        return -1;
    }
    // SOCK_PACKET names the interface in sa_data and ends the name at its
    // last byte, so 13 characters is the most that reach the kernel whole.
    if (strnlen(ifname, sizeof addr.sa_data) >= sizeof addr.sa_data) {
        T_PRINTF("%s: interface name too long: %s\n", __func__, ifname);
        return -1;
    }
    vesk::unique_fd sock = vesk::open_socket({AF_PACKET, SOCK_PACKET, htons(ETH_P_ARP)});
    if (!sock) {
        T_PRINTF("Error: Could not open raw socket");
        return -1;
    }
    int on = 1;
    if (setsockopt(sock.get(), SOL_SOCKET, SO_BROADCAST, &on, sizeof on) < 0) {
        T_PRINTF("Error: Could not setsocketopt on raw socket");
        return -1;
    }

    arp_frame frame{};
    memset(frame.eth_dst, 0xFF, sizeof frame.eth_dst);
    memcpy(frame.eth_src, sender_mac, 6);
    frame.eth_type[0] = 0x08;
    frame.eth_type[1] = 0x06;
    frame.hw_type[1] = 0x01;
    frame.proto_type[0] = 0x08;
    frame.hw_len = 6;
    frame.proto_len = 4;
    frame.operation[1] = 0x02; // a reply: neighbours update without answering
    memcpy(frame.sender_mac, sender_mac, 6);
    // Both words go in as the caller holds them (network order from inet_addr).
    memcpy(frame.sender_ip, &sender_ip, 4);
    memcpy(frame.target_ip, &target_ip, 4);

    memcpy(addr.sa_data, ifname, strlen(ifname));
    if (sendto(sock.get(), &frame, sizeof frame, 0, &addr, sizeof addr) < 0)
        T_PRINTF("ARP send fail\n");
    return 1;
}

int vesk_send_grat_arp(void)
{
    static constexpr char kBridge[] = "br0";
    unsigned char mac[6];
    if (!vesk_if_get_hw_addr(kBridge, mac)) {
        T_PRINTF("%s: cannot get MAC, quit!\n", __func__);
        return 0;
    }
    char ip[16];
    snprintf(ip, sizeof ip, "%s", vesk_if_get_ip(kBridge));
    if (strcmp(ip, vesk::kNoAnswer) == 0) {
        T_PRINTF("%s: cannot get ip, quit!\n", __func__);
        return 0;
    }
    // The target word 0xFF000000 lands as 00 00 00 FF on the little-endian
    // board; receivers take the frame for its sender fields only.
    return arpping(0xFF000000, inet_addr(ip), mac, kBridge);
}

} // extern "C"
