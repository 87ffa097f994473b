#include <inttypes.h>
#include <stdio.h>

#include "cli.hpp"
#include "vesk_if.h"

namespace {

int show(int, char **argv)
{
    vesk_if_stats s;
    if (!vesk_if_get_stats(argv[0], &s)) {
        fprintf(stderr, "vesk stats show: no counters for %s\n", argv[0]);
        return 1;
    }
    printf("rx_bytes %" PRIu64 "\nrx_packets %" PRIu64 "\nrx_errors %" PRIu32 "\nrx_dropped %" PRIu32
           "\nrx_fifo_errors %" PRIu32 "\nrx_frame_errors %" PRIu32 "\nrx_compressed %" PRIu32 "\nrx_multicast %" PRIu32
           "\n",
           s.rx_bytes, s.rx_packets, s.rx_errors, s.rx_dropped, s.rx_fifo_errors, s.rx_frame_errors, s.rx_compressed,
           s.rx_multicast);
    printf("tx_bytes %" PRIu64 "\ntx_packets %" PRIu64 "\ntx_errors %" PRIu32 "\ntx_dropped %" PRIu32
           "\ntx_fifo_errors %" PRIu32 "\ncollisions %" PRIu32 "\ntx_carrier_errors %" PRIu32 "\ntx_compressed %" PRIu32
           "\n",
           s.tx_bytes, s.tx_packets, s.tx_errors, s.tx_dropped, s.tx_fifo_errors, s.collisions, s.tx_carrier_errors,
           s.tx_compressed);
    return 0;
}

constexpr cli::command kCommands[] = {
    {"show", "IFNAME", "traffic counters of an interface from /proc/net/dev", 1, show},
};

} // namespace

extern const cli::family family_stats = {"stats", "interface traffic counters", kCommands};
