#include <stdio.h>

#include "cli.hpp"
#include "vesk_wan.h"

namespace {

constexpr int kMaxEntries = 64;

int ppp(int, char **argv)
{
    static constexpr const char *kMeaning[] = {"down", "up", "no-gateway"};
    const int status = vesk_wan_get_ppp_status(argv[0], argv[1]);
    if (status < 0 || status > 2)
        return cli::miss("state %d", status);
    cli::record().number("status", status).text("meaning", kMeaning[status]);
    return cli::kAnswer;
}

int detect(int, char **)
{
    const int mask = vesk_wan_detection();
    cli::record()
        .number("mask", mask)
        .number("dhcp", mask & 1 ? 1 : 0)
        .number("pppoe", mask & 2 ? 1 : 0)
        .number("pptp", mask & 4 ? 1 : 0);
    return cli::kAnswer;
}

int to_text(int argc, char **argv)
{
    if (argc > kMaxEntries)
        return cli::refuse("at most %d entries", kMaxEntries);
    unsigned short list[kMaxEntries] = {};
    for (int i = 0; i < argc; i++) {
        unsigned int v;
        if (!cli::parse_uint(argv[i], &v, 0xFFFF))
            return cli::kUsage;
        list[i] = static_cast<unsigned short>(v);
    }
    char text[8 * kMaxEntries];
    vesk_wan_port_range_list_to_string(list, argc, text, sizeof text);
    return cli::text(text);
}

int to_list(int argc, char **argv)
{
    int count = 8;
    if (argc > 1 && !cli::parse_int(argv[1], &count, 1, kMaxEntries))
        return cli::kUsage;
    unsigned short list[kMaxEntries];
    vesk_wan_port_ranger_string_to_list(argv[0], list, count);
    cli::list entries;
    for (int i = 0; i < count; i += 2) {
        cli::record r;
        r.number("start", list[i]);
        if (i + 1 < count)
            r.number("end", list[i + 1]);
    }
    return cli::kAnswer;
}

constexpr cli::command kCommands[] = {
    {"ppp", "PIDNAME IFNAME", "PPP state: status 0 down (no daemon), 1 up, 2 no-gateway, and its meaning", 2, ppp},
    {"detect", "", "WAN services found by the detector: mask (8 always set), dhcp, pppoe, pptp", 0, detect},
    {"ports", "START END ...", "port range list (start/end pairs, end 0: one port) as text", 1, to_text},
    {"list", "TEXT [COUNT]", "port range text such as \"80, 1000-2000\" as COUNT entries (8): start end a line", 1,
     to_list},
};

} // namespace

extern const cli::family family_wan = {"wan", "PPP link state, WAN detection, port ranges", kCommands};
