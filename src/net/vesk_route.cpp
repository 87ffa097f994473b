// Gateways from the kernel's route table and DNS servers from the resolver
// files.
#include <net/if.h>
#include <stdint.h>
#include <stdio.h>
#include <string.h>

#include <string_view>

#include "core/placeholders.hpp"
#include "core/line_reader.hpp"
#include "core/words.hpp"
#include "sysapi.h"
#include "vesk_if.h"

namespace {

constexpr size_t kAddrText = 16;
constexpr size_t kRouteLine = 256;
constexpr size_t kResolvLine = 256;
constexpr size_t kWord = 80;     // file name, first word and address of a resolver line
constexpr size_t kDnsText = 128;

constexpr char kRouteTable[] = "/proc/net/route";

char gateway_buffer[kAddrText];
char default_gateway_buffer[kAddrText];
char dns_buffer[kDnsText];

struct route_entry {
    std::string_view iface;
    uint32_t destination;
    uint32_t gateway;
};

// One data line of /proc/net/route. Lines without all eight columns, and
// those whose interface name could not be a kernel's, are not routes.
bool parse_route(const char *line, route_entry *route)
{
    std::string_view rest(line);
    route->iface = vesk::next_word(rest);
    if (route->iface.empty() || route->iface.size() >= IFNAMSIZ)
        return false;
    unsigned int destination, gateway, flags, mask;
    int refcnt, use, metric;
    if (sscanf(route->iface.data() + route->iface.size(), "%x %x %x %d %d %d %x", &destination, &gateway,
               &flags, &refcnt, &use, &metric, &mask) != 7)
        return false;
    route->destination = destination;
    route->gateway = gateway;
    return true;
}

// The kernel prints the address word in the processor's byte order, so on
// the little-endian board the lowest byte is the first octet.
void format_route_addr(uint32_t word, char *dst)
{
    snprintf(dst, kAddrText, "%d.%d.%d.%d", static_cast<int>(word & 0xFF), static_cast<int>((word >> 8) & 0xFF),
             static_cast<int>((word >> 16) & 0xFF), static_cast<int>(word >> 24));
}

// Writes the gateway of the first route that wants() accepts and that has
// a gateway, or "---".
template <typename Pred>
char *first_gateway(char *dst, Pred wants)
{
    snprintf(dst, kAddrText, "%s", vesk::kNoAnswer);
    vesk::line_reader<kRouteLine> table(kRouteTable);
    if (!table.skip(1))
        return dst;
    route_entry route;
    while (const char *line = table.next()) {
        if (parse_route(line, &route) && route.gateway != 0 && wants(route)) {
            format_route_addr(route.gateway, dst);
            break;
        }
    }
    return dst;
}

bool counts_as_server(std::string_view addr, int allow_ipv6)
{
    if (addr == vesk::kPppPlaceholderPeer || addr == vesk::kNoAddress)
        return false;
    return allow_ipv6 || addr.find(':') == std::string_view::npos;
}

} // namespace

extern "C" {

char *vesk_if_get_gateway(const char *ifname)
{
    if (!ifname) {
        T_PRINTF("%s: interface = NULL!\n", __func__);
        return nullptr;
    }
    std::string_view name(ifname);
    return first_gateway(gateway_buffer, [name](const route_entry &r) { return r.iface == name; });
}

char *vesk_if_get_default_gateway(void)
{
    return first_gateway(default_gateway_buffer, [](const route_entry &r) { return r.destination == 0; });
}

char *__vesk_if_get_dns_full(const char *path, int index, const char *suffix, int allow_ipv6)
{
    snprintf(dns_buffer, sizeof dns_buffer, "%s", vesk::kNoAnswer);
    if (!path)
        return dns_buffer;

    char file_name[kWord];
    int n = suffix ? snprintf(file_name, sizeof file_name, "%s.%s", path, suffix)
                   : snprintf(file_name, sizeof file_name, "%s", path);
    if (n < 0 || static_cast<size_t>(n) >= sizeof file_name)
        return dns_buffer; // a cut name would open some other file
    vesk::line_reader<kResolvLine> file(file_name);
    if (!file)
        return dns_buffer;

    const bool one = index == 1 || index == 2;
    char list[kDnsText];
    size_t len = 0;
    int counter = 0;
    while (const char *line = file.next()) {
        std::string_view rest(line);
        if (vesk::next_word(rest) != "nameserver")
            continue;
        counter++; // dropped servers keep their place in the count
        std::string_view addr = vesk::next_word(rest);
        if (addr.empty() || addr.size() >= kWord || !counts_as_server(addr, allow_ipv6))
            continue;
        if (one && counter != index)
            continue;
        if (len + addr.size() + 1 > sizeof list)
            continue; // the list keeps only servers that fit whole
        memcpy(list + len, addr.data(), addr.size());
        len += addr.size();
        list[len++] = ',';
    }
    if (len > 0) {
        memcpy(dns_buffer, list, len - 1); // without the last ","
        dns_buffer[len - 1] = '\0';
    }
    return dns_buffer;
}

char *vesk_if_get_dns_full(int index, const char *suffix)
{
    return __vesk_if_get_dns_full("/etc/resolv.conf", index, suffix, 0);
}

char *vesk_if_get_v6_dns(int index) { return __vesk_if_get_dns_full("/etc/resolv_ipv6.conf", index, nullptr, 1); }

char *vesk_if_get_dns(void) { return vesk_if_get_dns_full(0, nullptr); }

} // extern "C"
