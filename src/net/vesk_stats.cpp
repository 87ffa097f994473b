// Traffic counters of one interface from /proc/net/dev, in whichever of the
// three layouts the running kernel writes.
#include <net/if.h>
#include <stddef.h>
#include <stdio.h>
#include <string.h>

#include <string_view>

#include "core/line_reader.hpp"
#include "sysapi.h"
#include "vesk_if.h"
#include "vesk_string.h"

static_assert(sizeof(vesk_if_stats) == 112, "4 x 64-bit, 19 x 32-bit, padded to 8");
static_assert(offsetof(vesk_if_stats, rx_packets) == 0);
static_assert(offsetof(vesk_if_stats, tx_bytes) == 24);
static_assert(offsetof(vesk_if_stats, rx_errors) == 32);
static_assert(offsetof(vesk_if_stats, collisions) == 60);
static_assert(offsetof(vesk_if_stats, rx_frame_errors) == 76);
static_assert(offsetof(vesk_if_stats, tx_window_errors) == 104);

namespace {

constexpr size_t kLine = 128;

// Kernels before 2.1.x have no byte counters; 2.1.x to 2.2 no compressed or
// multicast columns; later ones all sixteen.
enum class layout { packets_only, with_bytes, full };

layout layout_of(const char *header)
{
    if (strstr(header, "compressed"))
        return layout::full;
    if (strstr(header, "bytes"))
        return layout::with_bytes;
    return layout::packets_only;
}

// The interface name in front of the ":" of a row, and the numbers behind
// it. A name and its first number may touch ("eth0:123456"). Rows without
// a name, or with one longer than a kernel's, are empty.
std::string_view split_name(const char *line, const char **numbers)
{
    const char *p = vesk_char_skip_whitespace(line);
    const char *end = p;
    while (*end && *end != ':' && *end != ' ' && *end != '\t' && *end != '\n' && *end != '\r')
        end++;
    if (*end != ':' || static_cast<size_t>(end - p) >= IFNAMSIZ)
        return {};
    *numbers = end + 1;
    return {p, static_cast<size_t>(end - p)};
}

void scan_row(const char *numbers, layout kind, vesk_if_stats *s)
{
    unsigned long long rx_bytes = 0, rx_packets = 0, tx_bytes = 0, tx_packets = 0;
    int unused;
    switch (kind) {
    case layout::packets_only:
        sscanf(numbers, "%n%llu%u%u%u%u%n%n%n%llu%u%u%u%u%u", &unused, &rx_packets, &s->rx_errors, &s->rx_dropped,
               &s->rx_fifo_errors, &s->rx_frame_errors, &unused, &unused, &unused, &tx_packets, &s->tx_errors,
               &s->tx_dropped, &s->tx_fifo_errors, &s->collisions, &s->tx_carrier_errors);
        break;
    case layout::with_bytes:
        sscanf(numbers, "%llu%llu%u%u%u%u%n%n%llu%llu%u%u%u%u%u", &rx_bytes, &rx_packets, &s->rx_errors,
               &s->rx_dropped, &s->rx_fifo_errors, &s->rx_frame_errors, &unused, &unused, &tx_bytes, &tx_packets,
               &s->tx_errors, &s->tx_dropped, &s->tx_fifo_errors, &s->collisions, &s->tx_carrier_errors);
        break;
    case layout::full:
        sscanf(numbers, "%llu%llu%u%u%u%u%u%u%llu%llu%u%u%u%u%u%u", &rx_bytes, &rx_packets, &s->rx_errors,
               &s->rx_dropped, &s->rx_fifo_errors, &s->rx_frame_errors, &s->rx_compressed, &s->rx_multicast,
               &tx_bytes, &tx_packets, &s->tx_errors, &s->tx_dropped, &s->tx_fifo_errors, &s->collisions,
               &s->tx_carrier_errors, &s->tx_compressed);
        break;
    }
    s->rx_bytes = rx_bytes;
    s->rx_packets = rx_packets;
    s->tx_bytes = tx_bytes;
    s->tx_packets = tx_packets;
}

} // namespace

extern "C" int vesk_if_get_stats(const char *ifname, vesk_if_stats *stats)
{
    if (!ifname || !stats) {
        T_PRINTF("%s: input error!\n", __func__);
        return 0;
    }
    vesk::line_reader<kLine> dev("/proc/net/dev");
    if (!dev)
        return 0;
    memset(stats, 0, sizeof *stats);

    // The second header line names the columns, and so the layout.
    const char *header = nullptr;
    if (!dev.skip(1) || !(header = dev.next()))
        return 0;
    const layout kind = layout_of(header);

    const std::string_view wanted(ifname);
    while (const char *line = dev.next()) {
        const char *numbers = nullptr;
        std::string_view name = split_name(line, &numbers);
        if (name.empty() || name != wanted)
            continue;
        // A row cut short leaves the counters it does not reach at 0.
        scan_row(numbers, kind, stats);
        return 1;
    }
    return 0;
}
