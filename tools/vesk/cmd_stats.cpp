#include "cli.hpp"
#include "vesk_if.h"

namespace {

int show(int, char **argv)
{
    vesk_if_stats s;
    if (!vesk_if_get_stats(argv[0], &s))
        return cli::miss("no counters for %s", argv[0]);
    cli::record()
        .number_u("rx_bytes", s.rx_bytes)
        .number_u("rx_packets", s.rx_packets)
        .number_u("rx_errors", s.rx_errors)
        .number_u("rx_dropped", s.rx_dropped)
        .number_u("rx_fifo_errors", s.rx_fifo_errors)
        .number_u("rx_frame_errors", s.rx_frame_errors)
        .number_u("rx_compressed", s.rx_compressed)
        .number_u("rx_multicast", s.rx_multicast)
        .number_u("tx_bytes", s.tx_bytes)
        .number_u("tx_packets", s.tx_packets)
        .number_u("tx_errors", s.tx_errors)
        .number_u("tx_dropped", s.tx_dropped)
        .number_u("tx_fifo_errors", s.tx_fifo_errors)
        .number_u("collisions", s.collisions)
        .number_u("tx_carrier_errors", s.tx_carrier_errors)
        .number_u("tx_compressed", s.tx_compressed);
    return cli::kAnswer;
}

constexpr cli::command kCommands[] = {
    {"show", "IFNAME", "traffic counters of an interface from /proc/net/dev", 1, show},
};

} // namespace

extern const cli::family family_stats = {"stats", "interface traffic counters", kCommands};
