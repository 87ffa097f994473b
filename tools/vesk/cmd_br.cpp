#include <stdio.h>
#include <sys/socket.h>

#include "cli.hpp"
#include "core/unique.hpp"
#include "vesk_br.h"

namespace {

int port(int argc, char **argv)
{
    unsigned char mac[6];
    if (!cli::parse_mac(argv[0], mac))
        return cli::kUsage;
    return cli::answer(brtable_find_if_by_mac(mac, argc > 1 ? argv[1] : "br0"));
}

int fdb(int argc, char **argv)
{
    const char *bridge = argc > 0 ? argv[0] : "br0";
    vesk::unique_fd sock(socket(AF_INET, SOCK_STREAM, 0));
    vesk_br_fdb_entry batch[128];
    int n = sock ? br_read_fdb(bridge, batch, 0, 128, sock.get()) : -1;
    if (n < 0)
        return cli::miss("no forwarding table for %s", bridge);
    cli::list rows;
    for (unsigned long offset = 0; n > 0;) {
        for (int i = 0; i < n; i++) {
            const unsigned char *m = batch[i].mac_addr;
            char mac[18];
            snprintf(mac, sizeof mac, "%02X:%02X:%02X:%02X:%02X:%02X", m[0], m[1], m[2], m[3], m[4], m[5]);
            cli::record().number("port", batch[i].port_no).number("local", batch[i].is_local ? 1 : 0).text("mac", mac);
        }
        offset += static_cast<unsigned long>(n);
        n = br_read_fdb(bridge, batch, offset, 128, sock.get());
    }
    return cli::kAnswer;
}

int del(int, char **argv)
{
    if (!cli::is_mac(argv[0]) || argv[0][2] != ':')
        return cli::refuse("%s is not a MAC address xx:xx:xx:xx:xx:xx", argv[0]);
    return cli::done(vesk_del_br_fdb(argv[0]), "running the bridge tool");
}

constexpr cli::command kCommands[] = {
    {"port", "MAC [BRIDGE]", "bridge port that MAC was learnt on (bridge br0 by default)", 1, port},
    {"fdb", "[BRIDGE]", "the forwarding table: one line per entry of port, local (1/0), mac", 0, fdb},
    {"del", "MAC", "remove xx:xx:xx:xx:xx:xx from every device with the bridge tool", 1, del},
};

} // namespace

extern const cli::family family_br = {"br", "LAN bridge forwarding table", kCommands};
