// IPv4 addresses between dotted text and host-order numbers.
#include "vesk_ip.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <stdio.h>
#include <string.h>

#include "core/unique.hpp"
#include "sysapi.h"

namespace {

constexpr size_t kAddrText = 16; // "255.255.255.255" and its terminator

char ipaddr_text_buffer[kAddrText];
char first_addr_buffer[kAddrText];

void format_addr(unsigned int ipaddr, char *dst)
{
    snprintf(dst, kAddrText, "%d.%d.%d.%d", (ipaddr >> 24) & 0xFF, (ipaddr >> 16) & 0xFF,
             (ipaddr >> 8) & 0xFF, ipaddr & 0xFF);
}

} // namespace

extern "C" {

int vesk_ipaddr_2_str(unsigned int ipaddr, char *dst)
{
    if (!dst) {
        T_PRINTF("Error! [%s] dst is null\n", __func__);
        return 0;
    }
    format_addr(ipaddr, dst);
    return 1;
}

char *vesk_get_ipaddr_str(unsigned int ipaddr)
{
    format_addr(ipaddr, ipaddr_text_buffer);
    return ipaddr_text_buffer;
}

unsigned int vesk_str_2_ipaddr(const char *ipaddr_str)
{
    if (!ipaddr_str || !*ipaddr_str) {
        T_PRINTF("Error! [%s] ipaddr_str is null\n", __func__);
        return 0;
    }
    int a, b, c, d;
    if (sscanf(ipaddr_str, "%d.%d.%d.%d", &a, &b, &c, &d) != 4) {
        T_PRINTF("Error! [%s] Invalid IP address!\n", __func__);
        return 0;
    }
    // Out-of-range fields are added in with their carry or borrow.
    return (static_cast<unsigned int>(a) << 24) + (static_cast<unsigned int>(b) << 16) +
           (static_cast<unsigned int>(c) << 8) + static_cast<unsigned int>(d);
}

int vesk_check_same_subnet(unsigned int ip1, unsigned int ip2, unsigned int mask)
{
    return ((ip1 ^ ip2) & mask) == 0 ? 1 : 0;
}

int vesk_check_same_subnet_str(const char *ip1, const char *ip2, unsigned int mask)
{
    unsigned int a = vesk_str_2_ipaddr(ip1);
    unsigned int b = vesk_str_2_ipaddr(ip2);
    return vesk_check_same_subnet(a, b, mask);
}

char *vesk_ip_get_1st_addr_info(const char *node)
{
    memset(first_addr_buffer, 0, sizeof first_addr_buffer);
    addrinfo hints{};
    hints.ai_flags = AI_CANONNAME;
    hints.ai_family = AF_INET;
    hints.ai_socktype = SOCK_DGRAM;
    hints.ai_protocol = 0;
    addrinfo *head = nullptr;
    if (!node || getaddrinfo(node, nullptr, &hints, &head) != 0)
        return nullptr;
    vesk::unique_addrinfo list(head);
    if (!head)
        return nullptr;
    auto *sin = reinterpret_cast<const sockaddr_in *>(head->ai_addr);
    if (!inet_ntop(AF_INET, &sin->sin_addr, first_addr_buffer, sizeof first_addr_buffer))
        return nullptr;
    return first_addr_buffer;
}

} // extern "C"
