// The bridge's forwarding table through the kernel's bridge control requests
// (SIOCDEVPRIVATE with BRCTL_* sub-commands), and removal with "bridge fdb".
#include "core/command.hpp"
#include "core/placeholders.hpp"
#include "vesk_br.h"

#include <errno.h>
#include <net/if.h>
#include <stddef.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdint>

#include "core/ifreq.hpp"
#include "sysapi.h"
#include "vesk_string.h"

namespace {

constexpr unsigned long BRCTL_GET_PORT_LIST = 7;
constexpr unsigned long BRCTL_GET_FDB_ENTRIES = 18;
constexpr int kMaxPorts = 1024;       // the kernel's BR_MAX_PORTS
constexpr unsigned long kBatch = 128; // entries per read
constexpr int kBusyAttempts = 10;
// The kernel caps one read at a page of entries; this caps our scratch
// buffer whatever the caller asks for.
constexpr unsigned long kMaxRead = 4096;

// The kernel's struct __fdb_entry as it copies it out.
struct kernel_fdb_entry {
    uint8_t mac_addr[6];
    uint8_t port_no; // low byte of the port number
    uint8_t is_local;
    uint32_t ageing_timer_value;
    uint8_t port_hi; // high byte, for bridges of more than 255 ports
    uint8_t pad0;
    uint16_t unused;
};
static_assert(sizeof(kernel_fdb_entry) == 16);
static_assert(offsetof(kernel_fdb_entry, port_no) == 6);
static_assert(offsetof(kernel_fdb_entry, is_local) == 7);
static_assert(offsetof(kernel_fdb_entry, port_hi) == 12);

static_assert(sizeof(vesk_br_fdb_entry) == 10);
static_assert(offsetof(vesk_br_fdb_entry, port_no) == 6);
static_assert(offsetof(vesk_br_fdb_entry, is_local) == 8);

// The four argument words of a bridge control request. The kernel reads them
// as unsigned long, so their width is the machine word (4 bytes on the
// device), not a fixed one.
using brctl_args = unsigned long[4];
static_assert(sizeof(brctl_args) == 4 * sizeof(void *));

char br_ifname_buffer[IF_NAMESIZE];

int brctl(int sock, const char *bridge, brctl_args &args)
{
    ifreq req;
    if (!vesk::make_ifreq(req, bridge))
        return -1;
    req.ifr_data = reinterpret_cast<char *>(args);
    return ioctl(sock, SIOCDEVPRIVATE, &req);
}

// The port number of the first entry that holds mac_bin, or 0.
unsigned int find_port(const vesk_br_fdb_entry *fdbs, size_t count, const unsigned char *mac_bin)
{
    for (size_t i = 0; i < count; i++)
        if (memcmp(fdbs[i].mac_addr, mac_bin, sizeof fdbs[i].mac_addr) == 0)
            return fdbs[i].port_no;
    return 0;
}

// Fills br_ifname_buffer with the name of port port_no of bridge; false when
// there is no such port.
bool port_name(int sock, const char *bridge, unsigned int port_no)
{
    int32_t ifindex[kMaxPorts] = {};
    brctl_args args = {BRCTL_GET_PORT_LIST, reinterpret_cast<unsigned long>(ifindex), kMaxPorts, 0};
    if (brctl(sock, bridge, args) < 0) {
        fprintf(stderr, "list ports for bridge:'%s' failed: %s\n", bridge, strerror(errno));
        return false;
    }
    // Port 0 is never a real port.
    if (port_no == 0 || port_no >= kMaxPorts || ifindex[port_no] <= 0)
        return false;
    return if_indextoname(static_cast<unsigned int>(ifindex[port_no]), br_ifname_buffer) != nullptr;
}

// Reads the whole forwarding table into a growing array; false after a
// failure that has been reported.
bool read_table(int sock, const char *bridge, vesk::unique_heap &table, size_t &count)
{
    count = 0;
    for (;;) {
        void *grown = realloc(table.get(), (count + kBatch) * sizeof(vesk_br_fdb_entry));
        if (!grown) {
            fputs("Out of memory\n", stderr);
            return false;
        }
        table.release();
        table.reset(grown);
        auto *fdbs = static_cast<vesk_br_fdb_entry *>(grown);
        int n = br_read_fdb(bridge, fdbs + count, count, kBatch, sock);
        if (n == 0)
            return true;
        if (n < 0) {
            fprintf(stderr, "read of forward table failed: %s\n", strerror(errno));
            return false;
        }
        count += static_cast<size_t>(n);
    }
}

} // namespace

extern "C" {

int br_read_fdb(const char *bridge, vesk_br_fdb_entry *fdbs, unsigned long offset, unsigned long num, int sock)
{
    if (!bridge || !fdbs) {
        errno = EINVAL;
        return -1;
    }
    if (num > kMaxRead)
        num = kMaxRead;
    if (num == 0)
        return 0;
    vesk::unique_heap buf(calloc(num, sizeof(kernel_fdb_entry)));
    if (!buf) {
        errno = ENOMEM;
        return -1;
    }
    brctl_args args = {BRCTL_GET_FDB_ENTRIES, reinterpret_cast<unsigned long>(buf.get()), num, offset};
    int n = -1;
    for (int attempt = 1; attempt <= kBusyAttempts; attempt++) {
        n = brctl(sock, bridge, args);
        if (n >= 0 || errno != EAGAIN || attempt == kBusyAttempts)
            break;
        sleep(0);
    }
    if (n <= 0)
        return n;
    if (static_cast<unsigned long>(n) > num) // never trust a count past the buffer
        n = static_cast<int>(num);
    const auto *raw = static_cast<const unsigned char *>(buf.get());
    for (int i = 0; i < n; i++) {
        const unsigned char *e = raw + static_cast<size_t>(i) * sizeof(kernel_fdb_entry);
        memcpy(fdbs[i].mac_addr, e + offsetof(kernel_fdb_entry, mac_addr), 6);
        fdbs[i].port_no = static_cast<uint16_t>(e[offsetof(kernel_fdb_entry, port_no)] |
                                                e[offsetof(kernel_fdb_entry, port_hi)] << 8);
        fdbs[i].is_local = e[offsetof(kernel_fdb_entry, is_local)];
    }
    return n;
}

char *brtable_find_if_by_mac(const unsigned char *mac_bin, const char *bridge)
{
    if (mac_bin && bridge) {
        vesk::unique_fd sock = vesk::open_socket({AF_INET, SOCK_STREAM, 0});
        vesk::unique_heap table;
        size_t count = 0;
        if (sock && read_table(sock.get(), bridge, table, count)) {
            unsigned int port_no = find_port(static_cast<vesk_br_fdb_entry *>(table.get()), count, mac_bin);
            if (port_name(sock.get(), bridge, port_no))
                return br_ifname_buffer;
        }
    }
    snprintf(br_ifname_buffer, sizeof br_ifname_buffer, "%s", vesk::kUnknown);
    return br_ifname_buffer;
}

int vesk_del_br_fdb(const char *mac_str)
{
    // \z, not $: PCRE's $ also matches before a final newline.
    if (!mac_str || !vesk_reg_match("^([0-9a-fA-F][0-9a-fA-F]:){5}([0-9a-fA-F][0-9a-fA-F])\\z", mac_str))
        return 0;
    char out[1024] = {};
    if (vesk::cmd::capture(__func__, out, "bridge fdb show | grep %s", mac_str) < 0)
        return 0;
    // A full buffer ends in a line that may have been cut: leave that one,
    // rather than name a device by part of its name.
    size_t used = strlen(out);
    if (used == sizeof out - 1 && out[used - 1] != '\n') {
        char *last = strrchr(out, '\n');
        *(last ? last + 1 : out) = '\0';
    }
    char dev[32] = {};
    char *save = nullptr;
    for (char *line = strtok_r(out, "\n", &save); line; line = strtok_r(nullptr, "\n", &save)) {
        if (sscanf(line, "%*s dev %31s", dev) != 1)
            continue;
        vesk::cmd::run(__func__, "bridge fdb del %s dev %s\n", mac_str, dev);
    }
    return 1;
}

} // extern "C"
