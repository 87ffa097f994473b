#include <stdio.h>

#include "cli.hpp"
#include "vesk_wan.h"

namespace {

constexpr int kMaxEntries = 64;

int ppp(int, char **argv)
{
    static const char *const kMeaning[] = {"daemon not running", "up", "no real default gateway or route"};
    int status = vesk_wan_get_ppp_status(argv[0], argv[1]);
    printf("%d %s\n", status, status >= 0 && status <= 2 ? kMeaning[status] : "");
    return 0;
}

int detect(int, char **)
{
    int mask = vesk_wan_detection();
    printf("%d%s%s%s\n", mask, mask & 1 ? " dhcp" : "", mask & 2 ? " pppoe" : "", mask & 4 ? " pptp" : "");
    return 0;
}

int to_text(int argc, char **argv)
{
    if (argc > kMaxEntries) {
        fprintf(stderr, "vesk wan ports: at most %d entries\n", kMaxEntries);
        return 2;
    }
    unsigned short list[kMaxEntries] = {};
    for (int i = 0; i < argc; i++) {
        unsigned int v;
        if (!cli::parse_uint(argv[i], &v) || v > 0xFFFF) {
            fprintf(stderr, "vesk wan ports: %s is no port number\n", argv[i]);
            return 2;
        }
        list[i] = static_cast<unsigned short>(v);
    }
    char text[8 * kMaxEntries];
    vesk_wan_port_range_list_to_string(list, argc, text, sizeof text);
    puts(text);
    return 0;
}

int to_list(int argc, char **argv)
{
    int count = 8;
    if (argc > 1 && (!cli::parse_int(argv[1], &count) || count < 1 || count > kMaxEntries)) {
        fprintf(stderr, "vesk wan list: COUNT must lie in 1..%d\n", kMaxEntries);
        return 2;
    }
    unsigned short list[kMaxEntries];
    vesk_wan_port_ranger_string_to_list(argv[0], list, count);
    for (int i = 0; i < count; i++)
        printf("%u%c", list[i], i + 1 < count ? ' ' : '\n');
    return 0;
}

constexpr cli::command kCommands[] = {
    {"ppp", "PIDNAME IFNAME", "PPP state: 0 no daemon, 1 up, 2 no real gateway", 2, ppp},
    {"detect", "", "WAN services found by the detector (mask; 8 always set)", 0, detect},
    {"ports", "START END ...", "port range list (start/end pairs, end 0: one port) as text", 1, to_text},
    {"list", "TEXT [COUNT]", "port range text such as \"80, 1000-2000\" as a list of COUNT entries (8)", 1,
     to_list},
};

} // namespace

extern const cli::family family_wan = {"wan", "PPP link state, WAN detection, port ranges", kCommands};
