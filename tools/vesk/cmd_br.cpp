#include <stdio.h>
#include <sys/socket.h>
#include <unistd.h>

#include "cli.hpp"
#include "vesk_br.h"
#include "vesk_mac.h"

namespace {

int port(int argc, char **argv)
{
    unsigned char mac[6];
    if (!vesk_mac_str_2_bin(mac, argv[0])) {
        fprintf(stderr, "vesk br port: %s is not a MAC address\n", argv[0]);
        return 2;
    }
    return cli::print_text(brtable_find_if_by_mac(mac, argc > 1 ? argv[1] : "br0"));
}

int fdb(int argc, char **argv)
{
    const char *bridge = argc > 0 ? argv[0] : "br0";
    int sock = socket(AF_INET, SOCK_STREAM, 0);
    if (sock < 0) {
        perror("vesk br fdb: socket");
        return 1;
    }
    vesk_br_fdb_entry batch[128];
    unsigned long offset = 0;
    int n;
    printf("port local mac\n");
    while ((n = br_read_fdb(bridge, batch, offset, 128, sock)) > 0) {
        for (int i = 0; i < n; i++) {
            const unsigned char *m = batch[i].mac_addr;
            printf("%4u %5s %02X:%02X:%02X:%02X:%02X:%02X\n", batch[i].port_no, batch[i].is_local ? "yes" : "no",
                   m[0], m[1], m[2], m[3], m[4], m[5]);
        }
        offset += static_cast<unsigned long>(n);
    }
    if (n < 0)
        perror("vesk br fdb");
    close(sock);
    return n < 0 ? 1 : 0;
}

int del(int, char **argv)
{
    printf("%d\n", vesk_del_br_fdb(argv[0]));
    return 0;
}

constexpr cli::command kCommands[] = {
    {"port", "MAC [BRIDGE]", "bridge port that MAC was learnt on (bridge br0 by default)", 1, port},
    {"fdb", "[BRIDGE]", "the forwarding table as the kernel hands it out", 0, fdb},
    {"del", "MAC", "remove xx:xx:xx:xx:xx:xx from every device with the bridge tool", 1, del},
};

} // namespace

extern const cli::family family_br = {"br", "LAN bridge forwarding table", kCommands};
