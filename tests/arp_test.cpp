#include <arpa/inet.h>
#include <linux/if_ether.h>
#include <linux/if_packet.h>
#include <net/if.h>
#include <poll.h>
#include <sys/socket.h>

#include "exact_copy.hpp"
#include "net_helpers.hpp"
#include "vesk_arp.h"

namespace {

constexpr char kHeader[] = "IP address       HW type     Flags       HW address            Mask     Device\n";

TEST(ArpTable, KernelNeighbours)
{
    // Neighbours in the kernel's own table: 192.0.2.20 on br0 behind port eth2 (static forwarding entry),
    // 198.51.100.20 on eth1. Neighbours behind br0 are traced through the bridge's forwarding table.
    ASSERT_EQ(vdev::sh("bridge link set dev eth2 learning off && bridge fdb add 02:00:00:00:00:14 dev eth2 master"
                       " static && ip neigh add 192.0.2.20 lladdr 02:00:00:00:00:14 dev br0 nud permanent"
                       " && ip link add eth1 type veth peer name eth1p && ip link set eth1 up && ip addr add"
                       " 198.51.100.1/24 dev eth1 && ip neigh add 198.51.100.20 lladdr 0a:1b:2c:3d:4e:5f dev eth1"
                       " nud permanent"), 0);
    const struct { const char *ip, *ifname, *macstr; } cases[] = {
        {"192.0.2.20", "eth2", "020000000014"}, {"198.51.100.20", "eth1", "0a1b2c3d4e5f"},
        {"198.51.100.2", nullptr, "000000000000"}, // compared whole, not as a prefix
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.ip);
        const char *ifname;
        EXPECT_EQ(stderr_of([&] { ifname = vesk_arp_get_ifname_by_ip(c.ip); }), "");
        EXPECT_STREQ(ifname, c.ifname);
        EXPECT_STREQ(vesk_arp_get_macstr_by_ip(c.ip, 0), c.macstr);
    }
    EXPECT_TRUE(!vesk_arp_get_ifname_by_ip(nullptr) && !vesk_arp_get_macstr_by_ip(nullptr, 1) &&
                !vesk_arp_get_ip_by_macstr(nullptr));
    EXPECT_TRUE(vdev::commands().empty()); // no ping without do_ping
    EXPECT_STREQ(vesk_arp_get_macstr_by_ip("192.0.2.20", 1), "020000000014");
    EXPECT_STREQ(vesk_arp_get_macstr_by_ip("192.0.2.20;touch /tmp/owned", 1), "000000000000");
    EXPECT_EQ(vdev::commands(), std::vector<std::string>{"ping 192.0.2.20 -c 1 2>&1 >/dev/null"});
    EXPECT_FALSE(vdev::exists("/tmp/owned"));
    // A MAC in either case; a short one is never read past its end.
    for (auto [macstr, ip] : {std::pair{"0a1b2c3d4e5f", "198.51.100.20"}, {"0A1B2C3D4E5F", "198.51.100.20"},
                              {"020000000099", "0.0.0.0"}, {"0a1b2c3d4e5", "0.0.0.0"}})
        EXPECT_STREQ(vesk_arp_get_ip_by_macstr(exact_copy(macstr)), ip) << macstr;
}

TEST(ArpFile, RowsAsTheFileWritesThem)
{
    vdev::put("/proc/net/arp", std::string(kHeader) +
                                   "192.0.2.2        0x1         0x2         00:1A:2B:3C:4D:5E     *        eth1\n"
                                   "192.0.2.3        0x1         0x0         00:00:00:00:00:00\n"
                                   "192.0.2.4        0x1         0x2         02:00:00:00:00:04     *        ath0\n"
                                   "192.0.2.2        0x1         0x2         02:00:00:00:00:02     *        eth3\n"
                                   "192.0.2.8        0x1         none        02:00:00:00:00:08     *        eth8\n");
    const struct { const char *ip, *ifname, *macstr; } cases[] = {
        {"192.0.2.2", "eth1", "001A2B3C4D5E"}, // first row wins; case as in the file
        {"192.0.2.3", "-", "000000000000"},    // row ends early; incomplete entry
        {"192.0.2.4", "ath0", "020000000004"}, {"192.0.2.8", "-", ""}, // .8: no number in Flags, the scan stops
    };
    for (const auto &c : cases) {
        EXPECT_STREQ(vesk_arp_get_ifname_by_ip(c.ip), c.ifname) << c.ip;
        EXPECT_STREQ(vesk_arp_get_macstr_by_ip(c.ip, 0), c.macstr) << c.ip;
    }
    EXPECT_EQ(stderr_of([] { EXPECT_STREQ(vesk_arp_get_ip_by_macstr("020000000004"), "192.0.2.4"); }),
              "[00:1A:2B:3C:4D:5E] [02:00:00:00:00:04]\n"
              "[00:00:00:00:00:00] [02:00:00:00:00:04]\n"
              "[02:00:00:00:00:04] [02:00:00:00:00:04]\n");
    // A field longer than its column is cut and does not spill into the next
    // one; a row of 127 characters is whole, the 128th is cut off.
    const std::string row = "192.0.2.6 0x1 0x2 02:00:00:00:00:06 *";
    vdev::put("/proc/net/arp", std::string(kHeader) + "192.0.2.7 0x1 0x2 " + std::string(40, 'A') + " * " +
                                   std::string(30, 'e') + "\n" + row + std::string(127 - row.size() - 4, ' ') +
                                   "eth6\n192.0.2.11" + row.substr(9) + std::string(126 - row.size(), ' ') + "x\n");
    EXPECT_STREQ(vesk_arp_get_ifname_by_ip("192.0.2.7"), std::string(15, 'e').c_str());
    EXPECT_STREQ(vesk_arp_get_macstr_by_ip("192.0.2.7", 0), std::string(31, 'A').c_str());
    EXPECT_STREQ(vesk_arp_get_ifname_by_ip("192.0.2.6"), "eth6");
    EXPECT_STREQ(vesk_arp_get_ifname_by_ip("192.0.2.11"), "-");
    // No table: nothing found, nothing said.
    vdev::remove("/proc/net/arp");
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_arp_get_ifname_by_ip("192.0.2.2"), nullptr); }), "");
}

// The ARP frames that reach ifname (the first within 2 s, the next ones
// within 0.2 s), from a packet socket bound before send() runs.
template <typename F> std::vector<std::vector<unsigned char>> frames_on(const char *ifname, F send)
{
    int fd = socket(AF_PACKET, SOCK_RAW, htons(ETH_P_ARP));
    sockaddr_ll ll{AF_PACKET, htons(ETH_P_ARP), static_cast<int>(if_nametoindex(ifname)), 0, 0, 0, {}};
    EXPECT_EQ(bind(fd, reinterpret_cast<sockaddr *>(&ll), sizeof ll), 0);
    send();
    std::vector<std::vector<unsigned char>> got;
    unsigned char buf[1600];
    ssize_t n;
    for (pollfd p{fd, POLLIN, 0}; poll(&p, 1, got.empty() ? 2000 : 200) == 1 && (n = recv(fd, buf, 1600, 0)) > 0;)
        got.emplace_back(buf, buf + n);
    close(fd);
    return got;
}

TEST(GratArp, FrameOfTheBridgeOrNothing)
{
    auto frames = frames_on("lan0", [] { EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_send_grat_arp(), 1); }), ""); });
    ASSERT_EQ(frames.size(), 1u);
    // A broadcast ARP reply from br0's MAC and address to a zero MAC.
    const std::vector<unsigned char> mac = sys_mac("br0");
    std::vector<unsigned char> want(6, 0xFF);
    want.insert(want.end(), mac.begin(), mac.end());
    want.insert(want.end(), {0x08, 0x06, 0x00, 0x01, 0x08, 0x00, 6, 4, 0x00, 0x02});
    want.insert(want.end(), mac.begin(), mac.end());
    want.insert(want.end(), {192, 0, 2, 1, 0, 0, 0, 0, 0, 0});
    want.insert(want.end(), {0, 0, 0, 0xFF}); // the target word 0xFF000000 in the little-endian host's order
    want.resize(60);
    EXPECT_EQ(frames[0], want);
    // Without the bridge's address, or the bridge, it gives up and says why.
    ASSERT_EQ(vdev::sh("ip addr flush dev br0"), 0);
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_send_grat_arp(), 0); }), "vesk_send_grat_arp: cannot get ip, quit!\n");
    ASSERT_EQ(vdev::sh("ip link del br0"), 0);
    EXPECT_EQ(stderr_of([] { EXPECT_EQ(vesk_send_grat_arp(), 0); }), "vesk_send_grat_arp: cannot get MAC, quit!\n");
}

TEST(Arpping, LongestNameAndFailures)
{
    // ethernet12345 has the longest name that the send address can carry.
    ASSERT_EQ(vdev::sh("ip link add ethernet12345 type veth peer name cap13"
                       " && ip link set ethernet12345 up && ip link set cap13 up"), 0);
    const std::vector<unsigned char> mac = {0x02, 0xFE, 0xDC, 0xBA, 0x98, 0x76};
    const struct { const unsigned char *mac; const char *ifname; int result; const char *message; } cases[] = {
        {mac.data(), "ethernet12345", 1, ""}, {mac.data(), "nosuch0", 1, "ARP send fail\n"},
        {mac.data(), "ethernet123456", -1, "arpping: interface name too long: ethernet123456\n"}, // beyond sa_data
        {mac.data(), nullptr, -1, "arpping: input is NULL!\n"},
        {nullptr, "eth2", -1, "arpping: input is NULL!\n"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(stderr_of([&] { EXPECT_EQ(arpping(0, 0, c.mac, c.ifname), c.result); }), c.message) << c.message;
    auto o = without_descriptors([&] { return arpping(0, 0, mac.data(), "eth2") == -1; });
    EXPECT_EQ(o.status, 0);
    EXPECT_EQ(o.err, "Error: Could not open raw socket");
}

} // namespace
