// Interface counters from /proc/net/dev: the running kernel's file and the
// two older layouts.
#include <arpa/inet.h>
#include <string.h>
#include <sys/socket.h>

#include "net_helpers.hpp"
#include "vesk_if.h"

namespace {

constexpr char kHeadFull[] =
    "Inter-|   Receive                                                |  Transmit\n"
    " face |bytes    packets errs drop fifo frame compressed multicast|bytes    packets errs drop fifo colls carrier "
    "compressed\n";
constexpr char kZero[] = "0 0 0 0 0 0 0 0 0 0 0 0 0 0 0 0";

// The counters of ifname read into a block of 0xAA bytes: the sixteen that
// the file fills in the column order of a full row; the seven that it never
// fills must be 0.
std::string stats_row(const char *ifname, int result)
{
    vesk_if_stats s;
    memset(&s, 0xAA, sizeof s);
    EXPECT_EQ(vesk_if_get_stats(ifname, &s), result);
    char text[400];
    snprintf(text, sizeof text, "%llu %llu %u %u %u %u %u %u %llu %llu %u %u %u %u %u %u",
             (unsigned long long)s.rx_bytes, (unsigned long long)s.rx_packets, s.rx_errors, s.rx_dropped,
             s.rx_fifo_errors, s.rx_frame_errors, s.rx_compressed, s.rx_multicast, (unsigned long long)s.tx_bytes,
             (unsigned long long)s.tx_packets, s.tx_errors, s.tx_dropped, s.tx_fifo_errors, s.collisions,
             s.tx_carrier_errors, s.tx_compressed);
    EXPECT_EQ(s.rx_length_errors | s.rx_over_errors | s.rx_crc_errors | s.rx_missed_errors | s.tx_aborted_errors |
                  s.tx_heartbeat_errors | s.tx_window_errors, 0u);
    return text;
}

TEST(Stats, RunningKernel)
{
    // Three datagrams to ourselves over lo, each received before the reading,
    // so the counters have settled: nothing else moves them in the device's
    // own namespace, however loaded the machine is.
    ASSERT_EQ(vdev::sh("ip link set lo up"), 0);
    const int fd = socket(AF_INET, SOCK_DGRAM, 0);
    sockaddr_in a = {AF_INET, 0, {htonl(INADDR_LOOPBACK)}, {}};
    socklen_t len = sizeof a;
    const timeval bound = {5, 0};
    ASSERT_EQ(setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &bound, sizeof bound), 0);
    ASSERT_EQ(bind(fd, (sockaddr *)&a, sizeof a), 0);
    ASSERT_EQ(getsockname(fd, (sockaddr *)&a, &len), 0); // the port bind chose
    char byte;
    for (int i = 0; i < 3; i++) {
        ASSERT_EQ(sendto(fd, "x", 1, 0, (sockaddr *)&a, sizeof a), 1);
        ASSERT_EQ(recv(fd, &byte, 1, 0), 1);
    }
    close(fd);
    vesk_if_stats s;
    ASSERT_EQ(vesk_if_get_stats("lo", &s), 1);
    EXPECT_GE(s.tx_packets, 3u);
    for (auto [name, value] : {std::pair<const char *, unsigned long long>{"rx_bytes", s.rx_bytes},
                               {"rx_packets", s.rx_packets}, {"tx_bytes", s.tx_bytes}, {"tx_packets", s.tx_packets}})
        EXPECT_EQ(std::to_string(value) + "\n", vdev::read(std::string("/sys/class/net/lo/statistics/") + name));
}

TEST(Stats, LayoutsBadInputAndMissingFile)
{
    const std::string full = kHeadFull;
    const struct { const char *name; std::string file; const char *ifname; int result; const char *row; } cases[] = {
        {"full", full + "    lo: 5 6 0 0 0 0 0 0 5 6 0 0 0 0 0 0\n  eth0:1000 10 1 2 3 4 5 6 2000 20 7 8 9 11 12 13\n",
         "eth0", 1, "1000 10 1 2 3 4 5 6 2000 20 7 8 9 11 12 13"},
        {"bytes, no compressed",
         "Inter-|   Receive                           |  Transmit\n"
         " face |bytes    packets errs drop fifo frame|bytes    packets errs drop fifo colls carrier\n"
         "  eth0: 1000 10 1 2 3 4 2000 20 7 8 9 11 12\n",
         "eth0", 1, "1000 10 1 2 3 4 0 0 2000 20 7 8 9 11 12 0"},
        {"packets only",
         "Inter-|   Receive                  |  Transmit\n"
         " face |packets errs drop fifo frame|packets errs drop fifo colls carrier\n"
         "  eth0: 10 1 2 3 4 20 7 8 9 11 12\n",
         "eth0", 1, "0 10 1 2 3 4 0 0 0 20 7 8 9 11 12 0"},
        {"64-bit counters", full + "eth1: 18446744073709551615 4294967296 0 0 0 0 0 0 1 2\n", "eth1", 1,
         "18446744073709551615 4294967296 0 0 0 0 0 0 1 2 0 0 0 0 0 0"},
        {"row cut at 128 bytes",
         full + "  eth0: 1111111111111111 2222222222 3 4 5 6 7 8 9999999999999999 8888888888 " +
             "77777777 66666666 55555555 44444444" + std::string(20, ' ') + "3333333 2222222\n",
         "eth0", 1, "1111111111111111 2222222222 3 4 5 6 7 8 9999999999999999 8888888888 77777777 66666666 55555555 "
                    "44444444 0 0"},
        {"prefix of a name does not match", full + "  eth0: 1 2 3\n", "eth", 0, kZero},
        {"one header line", "Inter-|   Receive\n", "eth0", 0, kZero},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        vdev::put("/proc/net/dev", c.file);
        EXPECT_EQ(stats_row(c.ifname, c.result), c.row);
    }
    vesk_if_stats s;
    EXPECT_EQ(stderr_of([&] { EXPECT_EQ(vesk_if_get_stats(nullptr, &s) + vesk_if_get_stats("eth0", nullptr), 0); }),
              "vesk_if_get_stats: input error!\nvesk_if_get_stats: input error!\n");
    vdev::remove("/proc/net/dev");
    memset(&s, 0xAA, sizeof s);
    EXPECT_EQ(vesk_if_get_stats("lo", &s), 0);
    EXPECT_EQ(s.rx_packets, 0xAAAAAAAAAAAAAAAAull); // untouched
}

} // namespace
