// What the kernel knows about one interface: addresses, flags, index, MTU;
// the Ethernet driver's LAN-state request, the host name and name look-ups.
#include "core/command.hpp"
#include "core/placeholders.hpp"
#include "vesk_if.h"

#include <arpa/inet.h>
#include <ctype.h>
#include <errno.h>
#include <linux/if_ether.h>
#include <netdb.h>
#include <netinet/in.h>
#include <stdio.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdint>

#include "core/ifreq.hpp"
#include "sysapi.h"

namespace {

using vesk::ioctl_status;
using vesk::query_if;

constexpr size_t kAddrText = 16;           // "255.255.255.255" and its terminator
constexpr size_t kHostText = INET6_ADDRSTRLEN;
// The Ethernet driver's private request (SIOCDEVPRIVATE + 13).
constexpr unsigned long SIOCDEVSTATE = 0x89FD;
static_assert(SIOCDEVSTATE == SIOCDEVPRIVATE + 13);

char if_ip_buffer[kAddrText];
char if_dst_ip_buffer[kAddrText];
char if_mask_buffer[kAddrText];
char if_subnet_buffer[kAddrText];
char host_ip_buffer[kHostText];

in_addr sin_addr_of(const sockaddr &sa)
{
    sockaddr_in sin;
    memcpy(&sin, &sa, sizeof sin);
    return sin.sin_addr;
}

void put_addr(char *buf, in_addr addr) { inet_ntop(AF_INET, &addr, buf, kAddrText); }

void put_no_addr(char *buf) { snprintf(buf, kAddrText, "%s", vesk::kNoAnswer); }

// A null name is reported with the name of the query that got it.
bool null_name(const char *func, const char *ifname)
{
    if (ifname)
        return false;
    T_PRINTF("%s: interface is NULL!\n", func);
    return true;
}

// The common start of a query: the name is checked, then the request is
// issued on an internet socket.
bool ask(const char *func, const char *ifname, unsigned long request, ifreq &req)
{
    return !null_name(func, ifname) && query_if(ifname, request, req);
}

// One address query into one of the text buffers.
char *addr_text(const char *func, const char *ifname, unsigned long request, char *buf)
{
    if (null_name(func, ifname))
        return nullptr;
    ifreq req;
    if (!query_if(ifname, request, req)) {
        put_no_addr(buf);
        return buf;
    }
    // SIOCGIFADDR, SIOCGIFDSTADDR and SIOCGIFNETMASK answer in different
    // members of one union; all lie at the same place.
    put_addr(buf, sin_addr_of(req.ifr_addr));
    return buf;
}

// Opens the socket of a query that reports a failed open with perror().
ioctl_status reported_ioctl(vesk::sock_kind kind, unsigned long request, ifreq &req)
{
    ioctl_status st = vesk::socket_ioctl(kind, request, &req);
    if (st == ioctl_status::no_socket)
        perror("socket()");
    return st;
}

} // namespace

extern "C" {

int vesk_if_get_hw_addr(const char *ifname, unsigned char *mac_bin)
{
    if (null_name(__func__, ifname))
        return 0;
    ifreq req;
    if (!mac_bin || !vesk::make_ifreq(req, ifname))
        return 0;
    if (reported_ioctl(vesk::kInetDgram, SIOCGIFHWADDR, req) != ioctl_status::ok)
        return 0;
    memcpy(mac_bin, req.ifr_hwaddr.sa_data, 6);
    return 1;
}

char *vesk_if_get_ip(const char *ifname) { return addr_text(__func__, ifname, SIOCGIFADDR, if_ip_buffer); }

char *vesk_if_get_dst_ip(const char *ifname)
{
    return addr_text(__func__, ifname, SIOCGIFDSTADDR, if_dst_ip_buffer);
}

char *vesk_if_get_mask(const char *ifname) { return addr_text(__func__, ifname, SIOCGIFNETMASK, if_mask_buffer); }

char *vesk_if_get_subnet(const char *ifname)
{
    if (null_name(__func__, ifname))
        return nullptr;
    ifreq req;
    if (!query_if(ifname, SIOCGIFNETMASK, req)) {
        put_no_addr(if_subnet_buffer);
        return if_subnet_buffer;
    }
    in_addr mask = sin_addr_of(req.ifr_netmask);
    if (vesk::socket_ioctl(vesk::kInetDgram, SIOCGIFADDR, &req) != ioctl_status::ok) {
        put_no_addr(if_subnet_buffer);
        return if_subnet_buffer;
    }
    in_addr net = sin_addr_of(req.ifr_addr);
    net.s_addr &= mask.s_addr;
    put_addr(if_subnet_buffer, net);
    return if_subnet_buffer;
}

int vesk_if_is_existed(const char *ifname)
{
    if (null_name(__func__, ifname))
        return 0;
    ifreq req;
    if (!vesk::make_ifreq(req, ifname))
        return 0;
    // Existence is told by a readable hardware address, asked on a packet
    // socket as the firmware always has.
    const vesk::sock_kind packet{AF_PACKET, SOCK_PACKET, htons(ETH_P_ALL)};
    return reported_ioctl(packet, SIOCGIFHWADDR, req) == ioctl_status::ok ? 1 : 0;
}

int vesk_if_is_ip_ready(const char *ifname)
{
    ifreq req;
    if (!ask(__func__, ifname, SIOCGIFADDR, req))
        return 0;
    return sin_addr_of(req.ifr_addr).s_addr != 0 ? 1 : 0;
}

int vesk_if_is_up(const char *ifname)
{
    ifreq req;
    if (!ask(__func__, ifname, SIOCGIFFLAGS, req))
        return 0;
    return (req.ifr_flags & IFF_UP) ? 1 : 0;
}

int vesk_if_get_index(const char *ifname)
{
    ifreq req;
    return ask(__func__, ifname, SIOCGIFINDEX, req) ? req.ifr_ifindex : 0;
}

int vesk_if_get_mtu(const char *ifname)
{
    ifreq req;
    return ask(__func__, ifname, SIOCGIFMTU, req) ? req.ifr_mtu : 0;
}

int vesk_if_set_lan_state(const char *ifname, int state)
{
    if (!ifname)
        return 0;
    vesk::unique_fd sock = vesk::open_socket(vesk::kInetDgram);
    if (!sock) {
        T_PRINTF("%s: socket error!\n", __func__);
        return 0;
    }
    ifreq req;
    int32_t value = state; // the driver reads a 32-bit word
    int rc = -1;
    if (vesk::make_ifreq(req, ifname)) {
        req.ifr_data = reinterpret_cast<char *>(&value);
        rc = ioctl(sock.get(), SIOCDEVSTATE, &req);
    }
    if (rc == 0 || errno == ENODEV) // a board without that port is fine
        return 1;
    T_PRINTF("%s: SIOCDEVSTATE on '%s' failed: %s\n", __func__, ifname, strerror(errno));
    return 0;
}

int vesk_net_set_hostname(const char *hostname)
{
    static constexpr char kFallback[] = "localhost.localdomain";
    // The kernel's name is set as far as it goes; the result is the file's.
    const char *name = hostname && *hostname ? hostname : kFallback;
    [[maybe_unused]] const int kernel = sethostname(name, strlen(name));
    // The fallback is the kernel's only: the file gets an empty line.
    if (!hostname || !*hostname)
        return vesk::cmd::run(__func__, "echo  > /etc/hostname");
    return vesk::cmd::run(__func__, "echo %s > /etc/hostname", hostname);
}

char *vesk_get_host_ip_by_name(const char *node, int family)
{
    addrinfo hints{};
    hints.ai_family = family;
    hints.ai_socktype = SOCK_STREAM;
    addrinfo *head = nullptr;
    int rc = getaddrinfo(node, nullptr, &hints, &head);
    vesk::unique_addrinfo list(head);
    if (rc != 0) {
        fprintf(stderr, "getaddrinfo: %s\n", gai_strerror(rc));
        return host_ip_buffer;
    }
    const addrinfo *first = list.get();
    if (first && first->ai_family == AF_INET) {
        sockaddr_in sin;
        memcpy(&sin, first->ai_addr, sizeof sin);
        inet_ntop(AF_INET, &sin.sin_addr, host_ip_buffer, sizeof host_ip_buffer);
    } else if (first && first->ai_family == AF_INET6) {
        sockaddr_in6 sin6;
        memcpy(&sin6, first->ai_addr, sizeof sin6);
        inet_ntop(AF_INET6, &sin6.sin6_addr, host_ip_buffer, sizeof host_ip_buffer);
    }
    return host_ip_buffer;
}

} // extern "C"
